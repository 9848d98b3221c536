// UTF-8 helpers shared by the platform's string classes.
#ifndef IDXBASE_PLATFORM_KOR_UTF8_H_
#define IDXBASE_PLATFORM_KOR_UTF8_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace idxbase::detail {

// The replacement character U+FFFD, encoded.
inline constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

// Appends `bytes` to `out` as well-formed UTF-8: each maximal ill-formed
// subsequence (an overlong form, a surrogate, a value above U+10FFFF, a
// truncated sequence or a stray continuation byte) becomes U+FFFD.
void AppendWellFormedUtf8(std::string_view bytes, std::string& out);

// `text` read as zero-terminated bytes and made well-formed; "" for null.
std::string ToWellFormedUtf8(const char* text);

// Bytes of the character whose first byte is `lead`, in well-formed text.
std::size_t Utf8CharacterSize(unsigned char lead);

// Number of code points of well-formed `text`.
int CountCodePoints(std::string_view text);

}  // namespace idxbase::detail

#endif  // IDXBASE_PLATFORM_KOR_UTF8_H_
