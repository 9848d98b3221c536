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

BBDUTF8String::BBDUTF8String() { ConvertToUTF8(KORUnicodeString(), buffer_, size_); }

BBDUTF8String::BBDUTF8String(const KORUnicodeString& text) { ConvertToUTF8(text, buffer_, size_); }

// The bytes and a terminating zero; a null source buffer copies as null.
BBDUTF8String::BBDUTF8String(const BBDUTF8String& other) : size_(other.size_) {
  if (other.buffer_ == nullptr) return;
  buffer_ = Allocate(size_ + 1);
  if (buffer_ == nullptr) return;
  std::memcpy(buffer_, other.buffer_, size_);
  buffer_[size_] = '\0';
}

BBDUTF8String& BBDUTF8String::operator=(const BBDUTF8String& other) {
  if (this == &other) return *this;
  BBDUTF8String copy(other);
  std::swap(buffer_, copy.buffer_);
  std::swap(size_, copy.size_);
  return *this;
}

BBDUTF8String::~BBDUTF8String() {
  std::free(buffer_);
  buffer_ = nullptr;
  size_ = 0;
}

BBDUTF8String::operator const char*() const { return buffer_; }

char* BBDUTF8String::GetCharPtr() { return buffer_; }

unsigned long long BBDUTF8String::GetSize() { return size_; }

void BBDUTF8String::SetString(const KORUnicodeString& text) { ConvertToUTF8(text, buffer_, size_); }

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
