// Byte counts and rates written for people: "512 B", "12.4 MiB",
// "248 MiB/s".
#ifndef IDXBASE_TOOLS_BYTE_UNITS_H_
#define IDXBASE_TOOLS_BYTE_UNITS_H_

#include <cstdint>
#include <string>

namespace idxbase_tool {

// Whole bytes below 1 KiB; otherwise the largest binary unit that keeps
// the number at 1 or more, with three significant digits ("1.50 KiB",
// "12.4 MiB", "248 MiB").
std::string FormatBytes(double bytes);
// FormatBytes(bytes / seconds) + "/s"; a zero duration counts as one
// microsecond.
std::string FormatRate(std::uint64_t bytes, double seconds);

}  // namespace idxbase_tool

#endif  // IDXBASE_TOOLS_BYTE_UNITS_H_
