#include "idxbase/utf8_string.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

// The longest UTF-8 form of `characters` characters and a terminating zero.
// Computed in 64 bits, so that no length overflows.
unsigned long long Capacity(int characters) {
  return static_cast<unsigned long long>(characters) * 4 + 1;
}

char* Allocate(unsigned long long bytes) { return static_cast<char*>(std::malloc(bytes)); }

}  // namespace

BBDUTF8String::BBDUTF8String() { ConvertToUTF8(KORUnicodeString(), m_Buffer, m_Size); }

BBDUTF8String::BBDUTF8String(const KORUnicodeString& text) {
  ConvertToUTF8(text, m_Buffer, m_Size);
}

// The bytes and a terminating zero; a null source buffer copies as null.
BBDUTF8String::BBDUTF8String(const BBDUTF8String& other) : m_Size(other.m_Size) {
  if (other.m_Buffer == nullptr) return;
  m_Buffer = Allocate(m_Size + 1);
  if (m_Buffer == nullptr) return;
  std::memcpy(m_Buffer, other.m_Buffer, m_Size);
  m_Buffer[m_Size] = '\0';
}

BBDUTF8String& BBDUTF8String::operator=(const BBDUTF8String& other) {
  if (this == &other) return *this;
  BBDUTF8String copy(other);
  std::swap(m_Buffer, copy.m_Buffer);
  std::swap(m_Size, copy.m_Size);
  return *this;
}

BBDUTF8String::~BBDUTF8String() {
  std::free(m_Buffer);
  m_Buffer = nullptr;
  m_Size = 0;
}

BBDUTF8String::operator const char*() const { return m_Buffer; }

char* BBDUTF8String::GetCharPtr() { return m_Buffer; }

unsigned long long BBDUTF8String::GetSize() { return m_Size; }

void BBDUTF8String::SetString(const KORUnicodeString& text) {
  ConvertToUTF8(text, m_Buffer, m_Size);
}

void BBDUTF8String::ConvertToUTF8(const KORUnicodeString& text, char*& buffer,
                                  unsigned long long& size) {
  std::free(buffer);
  buffer = nullptr;
  size = Capacity(text.GetLengthInChar());
  buffer = Allocate(size);
  if (buffer == nullptr) return;
  std::memset(buffer, 0, size);
  text.ConvertToUTF8(buffer, &size);
}
