#include "byte_units.h"

#include <cstdio>

namespace idxbase_tool {

std::string FormatBytes(double bytes) {
  char text[32];
  if (bytes < 1024.0) {
    std::snprintf(text, sizeof text, "%.0f B", bytes);
    return text;
  }
  static const char* const kUnits[] = {"KiB", "MiB", "GiB", "TiB", "PiB"};
  int unit = 0;
  bytes /= 1024.0;
  while (bytes >= 1024.0 && unit < 4) {
    bytes /= 1024.0;
    ++unit;
  }
  const int decimals = bytes < 10.0 ? 2 : bytes < 100.0 ? 1 : 0;
  std::snprintf(text, sizeof text, "%.*f %s", decimals, bytes, kUnits[unit]);
  return text;
}

std::string FormatRate(std::uint64_t bytes, double seconds) {
  const double duration = seconds > 1e-6 ? seconds : 1e-6;
  return FormatBytes(static_cast<double>(bytes) / duration) + "/s";
}

}  // namespace idxbase_tool
