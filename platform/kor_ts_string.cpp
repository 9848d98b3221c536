#include <utility>

#include "idxbase/kor_string.h"

// Every operation holds the object's mutex. Operations that involve a
// second object never hold both mutexes in an order of their own: they
// either copy the other object's text first, under its mutex alone, or
// take both together with std::scoped_lock, which avoids deadlock. An
// operation of an object with itself takes its mutex once.

KORSysTSUnicodeString::KORSysTSUnicodeString(const char* utf8) : m_Text(utf8) {}

KORSysTSUnicodeString::KORSysTSUnicodeString(const KORUnicodeString& text) : m_Text(text) {}

KORSysTSUnicodeString::KORSysTSUnicodeString(const KORSysTSUnicodeString& other)
    : m_Text(other.ToUnicodeString()) {}

KORSysTSUnicodeString::KORSysTSUnicodeString(KORSysTSUnicodeString&& other) noexcept {
  std::lock_guard<std::mutex> lock(other.m_Mutex);
  m_Text = std::move(other.m_Text);
}

KORSysTSUnicodeString& KORSysTSUnicodeString::operator=(const KORSysTSUnicodeString& other) {
  if (this != &other) {
    std::scoped_lock lock(m_Mutex, other.m_Mutex);
    m_Text = other.m_Text;
  }
  return *this;
}

KORSysTSUnicodeString& KORSysTSUnicodeString::operator=(KORSysTSUnicodeString&& other) noexcept {
  if (this != &other) {
    std::scoped_lock lock(m_Mutex, other.m_Mutex);
    m_Text = std::move(other.m_Text);
  }
  return *this;
}

KORSysTSUnicodeString& KORSysTSUnicodeString::operator=(const char* utf8) {
  KORUnicodeString text(utf8);
  std::lock_guard<std::mutex> lock(m_Mutex);
  m_Text = std::move(text);
  return *this;
}

KORSysTSUnicodeString& KORSysTSUnicodeString::operator+=(const KORSysTSUnicodeString& other) {
  // For a += a the copy is taken under the one mutex before it is held
  // again below.
  const KORUnicodeString tail = other.ToUnicodeString();
  std::lock_guard<std::mutex> lock(m_Mutex);
  m_Text += tail;
  return *this;
}

KORSysTSUnicodeString& KORSysTSUnicodeString::operator+=(const char* utf8) {
  const KORUnicodeString tail(utf8);
  std::lock_guard<std::mutex> lock(m_Mutex);
  m_Text += tail;
  return *this;
}

void KORSysTSUnicodeString::Append(const KORSysTSUnicodeString& other) { *this += other; }

bool KORSysTSUnicodeString::operator==(const KORSysTSUnicodeString& other) const {
  if (this == &other) return true;
  std::scoped_lock lock(m_Mutex, other.m_Mutex);
  return m_Text == other.m_Text;
}

bool KORSysTSUnicodeString::operator!=(const KORSysTSUnicodeString& other) const {
  return !(*this == other);
}

int KORSysTSUnicodeString::GetLengthInChar() const {
  std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Text.GetLengthInChar();
}

const char* KORSysTSUnicodeString::ConvertToChar() const {
  std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Text.ConvertToChar();
}

const char* KORSysTSUnicodeString::CastToCharPtr() const {
  std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Text.CastToCharPtr();
}

bool KORSysTSUnicodeString::BuildFromNum(int value, const char* format) {
  std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Text.BuildFromNum(value, format);
}

bool KORSysTSUnicodeString::BuildFromNum(double value, const char* format) {
  std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Text.BuildFromNum(value, format);
}

void KORSysTSUnicodeString::ConvertToUTF8(char* buffer, unsigned long long* size) const {
  std::lock_guard<std::mutex> lock(m_Mutex);
  m_Text.ConvertToUTF8(buffer, size);
}

KORUnicodeString KORSysTSUnicodeString::ToUnicodeString() const {
  std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Text;
}

KORSysTSUnicodeString operator+(const KORSysTSUnicodeString& left,
                                const KORSysTSUnicodeString& right) {
  KORSysTSUnicodeString result(left);
  result += right;
  return result;
}

KORSysTSUnicodeString operator+(const KORSysTSUnicodeString& left, const char* right) {
  KORSysTSUnicodeString result(left);
  result += right;
  return result;
}
