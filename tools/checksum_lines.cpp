#include "checksum_lines.h"

#include <algorithm>
#include <cctype>

namespace idxbase_tool {
namespace {

constexpr std::size_t kDigits = 32;

// Undoes the escapes of ShownName; false for an unknown escape.
bool Unescape(std::string_view text, std::string& name) {
  name.clear();
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      name += text[i];
      continue;
    }
    if (++i == text.size()) return false;
    const char c = text[i];
    if (c != '\\' && c != 'n' && c != 'r') return false;
    name += c == 'n' ? '\n' : c == 'r' ? '\r' : '\\';
  }
  return true;
}

}  // namespace

bool IsDigest(std::string_view text) {
  return text.size() == kDigits && std::all_of(text.begin(), text.end(), [](char c) {
           return std::isxdigit(static_cast<unsigned char>(c)) != 0;
         });
}

std::string ToCase(std::string_view text, bool upper) {
  std::string result(text);
  for (char& c : result) {
    const auto byte = static_cast<unsigned char>(c);
    c = static_cast<char>(upper ? std::toupper(byte) : std::tolower(byte));
  }
  return result;
}

std::string ShownName(std::string_view name) {
  std::string escaped;
  for (char c : name) {
    const char* escape = c == '\\' ? "\\\\" : c == '\n' ? "\\n" : c == '\r' ? "\\r" : nullptr;
    if (escape != nullptr) {
      escaped += escape;
    } else {
      escaped += c;
    }
  }
  return escaped.size() == name.size() ? escaped : "\\" + escaped;
}

std::string ChecksumLine(std::string_view digits, std::string_view name) {
  const std::string shown = ShownName(name);
  const bool escaped = shown.size() != name.size();
  return (escaped ? "\\" : "") + ToCase(digits, false) + "  " + shown.substr(escaped ? 1 : 0);
}

bool ParseChecksumLine(std::string_view line, std::string& digits, std::string& name) {
  const bool escaped = !line.empty() && line[0] == '\\';
  if (escaped) line.remove_prefix(1);
  if (line.size() <= kDigits + 2 || !IsDigest(line.substr(0, kDigits)) || line[kDigits] != ' ' ||
      (line[kDigits + 1] != ' ' && line[kDigits + 1] != '*')) {
    return false;
  }
  const std::string_view rest = line.substr(kDigits + 2);
  if (escaped) {
    if (!Unescape(rest, name)) return false;
  } else {
    name = rest;
  }
  digits = ToCase(line.substr(0, kDigits), true);
  return true;
}

bool StartsWithChecksumLine(std::string_view text) {
  std::string digits;
  std::string name;
  return ParseChecksumLine(text.substr(0, text.find('\n')), digits, name);
}

}  // namespace idxbase_tool
