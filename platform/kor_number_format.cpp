#include "platform/kor_number_format.h"

#include <cstdio>
#include <cstring>

#include "platform/kor_utf8.h"

namespace idxbase::detail {
namespace {

bool IsFlag(char c) { return c != '\0' && std::strchr("-+ #0", c) != nullptr; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Reads the conversion directive that follows a '%' at `cursor` and
// returns its conversion character, leaving `cursor` after it; '\0' when
// the format ends first.
char ReadConversion(const char*& cursor) {
  while (IsFlag(*cursor)) ++cursor;
  while (IsDigit(*cursor)) ++cursor;
  if (*cursor == '.') {
    ++cursor;
    while (IsDigit(*cursor)) ++cursor;
  }
  const char conversion = *cursor;
  if (conversion != '\0') ++cursor;
  return conversion;
}

// Turns the bytes snprintf wrote into the caller's text.
bool Finish(int written, const std::string& buffer, std::string& out) {
  if (written < 0) return false;
  out = ToWellFormedUtf8(buffer.c_str());
  return true;
}

// The format has been checked by SingleConversion and matches the value's
// type, which is what -Wformat-nonliteral would otherwise ask for.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

int Measure(const char* format, int value) { return std::snprintf(nullptr, 0, format, value); }
int Measure(const char* format, unsigned int value) {
  return std::snprintf(nullptr, 0, format, value);
}
int Measure(const char* format, double value) { return std::snprintf(nullptr, 0, format, value); }

int Write(std::string& buffer, const char* format, int value) {
  return std::snprintf(buffer.data(), buffer.size(), format, value);
}
int Write(std::string& buffer, const char* format, unsigned int value) {
  return std::snprintf(buffer.data(), buffer.size(), format, value);
}
int Write(std::string& buffer, const char* format, double value) {
  return std::snprintf(buffer.data(), buffer.size(), format, value);
}

#pragma GCC diagnostic pop

template <typename Number>
bool FormatWith(const char* format, Number value, std::string& out) {
  const int needed = Measure(format, value);
  if (needed < 0) return false;
  std::string buffer(static_cast<std::size_t>(needed) + 1, '\0');
  return Finish(Write(buffer, format, value), buffer, out);
}

}  // namespace

char SingleConversion(const char* format) {
  if (format == nullptr) return '\0';
  char found = '\0';
  int conversions = 0;
  const char* cursor = format;
  while (*cursor != '\0') {
    if (*cursor++ != '%') continue;
    if (*cursor == '%') {
      ++cursor;
      continue;
    }
    const char conversion = ReadConversion(cursor);
    if (conversion == '\0') return '\0';
    found = conversion;
    ++conversions;
  }
  return conversions == 1 ? found : '\0';
}

bool FormatNumber(const char* format, int value, std::string& out) {
  return FormatWith(format, value, out);
}

bool FormatNumber(const char* format, unsigned int value, std::string& out) {
  return FormatWith(format, value, out);
}

bool FormatNumber(const char* format, double value, std::string& out) {
  return FormatWith(format, value, out);
}

}  // namespace idxbase::detail
