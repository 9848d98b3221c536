#include "csv_values.h"

#include <charconv>
#include <cmath>

#include "idxbase/filter_parser.h"

namespace idxbase_tool {

bool ReadIntSlowly(std::string_view text, std::int32_t& value) {
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  return result.ec == std::errc() && result.ptr == end;
}

bool ReadFloatSlowly(std::string_view text, float& value) {
  const char* end = text.data() + text.size();
  float read = 0;
  const auto result = std::from_chars(text.data(), end, read);
  if (result.ec != std::errc() || result.ptr != end || !std::isfinite(read)) return false;
  value = read;
  return true;
}

bool TimeReader::ReadSlowly(std::string_view text, std::int64_t& seconds) {
  KORTime time = KORTime::FromEpochSeconds(0);
  if (!BBDFilterParser::ParseTime(text, time)) return false;
  seconds = time.GetEpochSeconds();
  // The text starts with a real date: learn it.
  KORTime midnight = KORTime::FromEpochSeconds(0);
  if (text.size() >= 10 && BBDFilterParser::ParseTime(text.substr(0, 10), midnight)) {
    const auto number = [&text](std::size_t at, std::size_t count) {
      unsigned value = 0;
      for (std::size_t i = at; i < at + count; ++i) value = value * 10 + (text[i] - '0');
      return value;
    };
    const unsigned year = number(0, 4);
    days_[Slot(year, number(5, 2), number(8, 2))] = {static_cast<int>(year),
                                                     midnight.GetEpochSeconds()};
  }
  return true;
}

}  // namespace idxbase_tool
