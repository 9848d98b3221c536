// printf-style formatting of one number, for KORUnicodeString::BuildFromNum.
#ifndef IDXBASE_PLATFORM_KOR_NUMBER_FORMAT_H_
#define IDXBASE_PLATFORM_KOR_NUMBER_FORMAT_H_

#include <string>

namespace idxbase::detail {

// The conversion character of `format` when it holds exactly one
// conversion, made of optional flags ("-+ #0"), optional width digits, an
// optional '.' with precision digits, and a conversion character; "%%" may
// appear anywhere. '\0' for a null format, no conversion, several, or a
// malformed one ('*', length modifiers, a missing conversion character).
// The caller decides whether the character suits its value's type.
char SingleConversion(const char* format);

// `value` formatted by `format`, which SingleConversion has accepted with
// a conversion of the value's type (d, i, c; o, u, x, X; e, f, g, a and
// their capitals). The result is made well-formed UTF-8 and ends at the
// first zero byte (which "%c" can produce). False when formatting fails.
bool FormatNumber(const char* format, int value, std::string& out);
bool FormatNumber(const char* format, unsigned int value, std::string& out);
bool FormatNumber(const char* format, double value, std::string& out);

}  // namespace idxbase::detail

#endif  // IDXBASE_PLATFORM_KOR_NUMBER_FORMAT_H_
