// md5sum's checksum lines, which "idxbase checksum --gnu" writes and reads:
// "<32 hexadecimal digits>  <name>" (or " *<name>", md5sum's binary mark).
// A name with a backslash or a line end is escaped (\\, \n, \r) and its
// line starts with a backslash.
#ifndef IDXBASE_TOOLS_CHECKSUM_LINES_H_
#define IDXBASE_TOOLS_CHECKSUM_LINES_H_

#include <string>
#include <string_view>

namespace idxbase_tool {

// True for exactly 32 hexadecimal digits, in either case.
bool IsDigest(std::string_view text);
// `text` in upper case (or lower case), byte by byte in the C locale.
std::string ToCase(std::string_view text, bool upper);

// `name` as md5sum shows it: escaped, with a backslash before it, when it
// holds a backslash or a line end; unchanged otherwise.
std::string ShownName(std::string_view name);
// The line for a file: the digits in lower case, two blanks, the name
// (escaped as ShownName escapes it). No line end.
std::string ChecksumLine(std::string_view digits, std::string_view name);
// Reads one line (without its line end): sets `digits` (upper case) and
// `name` (unescaped). False for anything else, also an unknown escape.
[[nodiscard]] bool ParseChecksumLine(std::string_view line, std::string& digits, std::string& name);
// True when the first line of `text` is a checksum line.
bool StartsWithChecksumLine(std::string_view text);

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_CHECKSUM_LINES_H_
