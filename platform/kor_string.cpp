#include "idxbase/kor_string.h"

#include <cstring>
#include <string_view>

#include "platform/kor_number_format.h"
#include "platform/kor_utf8.h"

namespace {

bool IsOneOf(char c, const char* set) { return c != '\0' && std::strchr(set, c) != nullptr; }

}  // namespace

KORUnicodeString::KORUnicodeString(const char* utf8)
    : m_Text(idxbase::detail::ToWellFormedUtf8(utf8)) {}

KORUnicodeString& KORUnicodeString::operator=(const char* utf8) {
  // Built aside first: `utf8` may point into this string's own text.
  m_Text = idxbase::detail::ToWellFormedUtf8(utf8);
  return *this;
}

KORUnicodeString& KORUnicodeString::operator+=(const KORUnicodeString& other) {
  // Joining two well-formed texts gives a well-formed text.
  m_Text += other.m_Text;
  return *this;
}

KORUnicodeString& KORUnicodeString::operator+=(const char* utf8) {
  m_Text += idxbase::detail::ToWellFormedUtf8(utf8);
  return *this;
}

void KORUnicodeString::Append(const KORUnicodeString& other) { *this += other; }

bool KORUnicodeString::operator==(const KORUnicodeString& other) const {
  return m_Text == other.m_Text;
}

bool KORUnicodeString::operator!=(const KORUnicodeString& other) const { return !(*this == other); }

int KORUnicodeString::GetLengthInChar() const { return idxbase::detail::CountCodePoints(m_Text); }

bool KORUnicodeString::BuildFromNum(int value, const char* format) {
  m_Text.clear();
  const char conversion = idxbase::detail::SingleConversion(format);
  if (IsOneOf(conversion, "dic")) {
    return idxbase::detail::FormatNumber(format, value, m_Text);
  }
  if (IsOneOf(conversion, "ouxX")) {
    // These conversions take an unsigned int: pass the same bits as one.
    return idxbase::detail::FormatNumber(format, static_cast<unsigned int>(value), m_Text);
  }
  return false;
}

bool KORUnicodeString::BuildFromNum(double value, const char* format) {
  m_Text.clear();
  const char conversion = idxbase::detail::SingleConversion(format);
  if (!IsOneOf(conversion, "eEfFgGaA")) return false;
  return idxbase::detail::FormatNumber(format, value, m_Text);
}

void KORUnicodeString::ConvertToUTF8(char* buffer, unsigned long long* size) const {
  if (buffer == nullptr || size == nullptr) return;
  const unsigned long long capacity = *size;
  std::size_t written = 0;
  while (written < m_Text.size()) {
    const std::size_t next =
        idxbase::detail::Utf8CharacterSize(static_cast<unsigned char>(m_Text[written]));
    if (written + next > capacity) break;
    written += next;
  }
  std::memcpy(buffer, m_Text.data(), written);
  if (written < capacity) buffer[written] = '\0';
  *size = written;
}

KORUnicodeString operator+(const KORUnicodeString& left, const KORUnicodeString& right) {
  KORUnicodeString result(left);
  result += right;
  return result;
}

KORUnicodeString operator+(const KORUnicodeString& left, const char* right) {
  KORUnicodeString result(left);
  result += right;
  return result;
}
