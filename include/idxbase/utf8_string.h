// The UTF-8 bytes of a Unicode string in a buffer of its own.
#ifndef IDXBASE_UTF8_STRING_H_
#define IDXBASE_UTF8_STRING_H_

#include "idxbase/export.h"
#include "idxbase/kor_string.h"

// Holds the UTF-8 form of a KORUnicodeString, zero-terminated, for code
// that hands text to byte-oriented consumers.
//
// A conversion allocates (with malloc) 4 bytes per character plus one, the
// longest possible result and a terminating zero, zeroes them all, and
// lets KORUnicodeString::ConvertToUTF8 write the bytes and report their
// number (without the terminating zero), which GetSize returns. So the
// bytes after the UTF-8 form are zero up to the end of the buffer.
//
// Ownership: the object owns its buffer and frees it (with free) when it
// converts again, is assigned or is destroyed; a pointer obtained from it
// is valid until then. Copies and assignment copy the bytes (the GetSize()
// bytes and a terminating zero) into a buffer of their own, so each object
// frees only its own.
//
// No status is reported. When an allocation fails the buffer is null:
// after a conversion GetSize() is then the capacity it asked for, after a
// copy the source's size.
//
// One thread at a time per object.
class IDXBASE_API BBDUTF8String {
 public:
  // The conversion of the empty string: one zero byte, size 0.
  BBDUTF8String();
  BBDUTF8String(const KORUnicodeString& text);  // NOLINT: implicit by design
  BBDUTF8String(const BBDUTF8String& other);
  BBDUTF8String& operator=(const BBDUTF8String& other);
  ~BBDUTF8String();

  // The zero-terminated bytes (null only after a failed allocation).
  operator const char*() const;
  char* GetCharPtr();
  // The byte count of the last conversion or copy.
  unsigned long long GetSize();

  // Replaces the content by the conversion of `text`; pointers obtained
  // earlier become invalid.
  void SetString(const KORUnicodeString& text);

  // The conversion into a caller-held buffer: frees `buffer` unless it is
  // null, then sets it to a new buffer (malloc) holding the UTF-8 form and
  // `size` to its byte count, as described above. Requires: `buffer` null
  // or a buffer from an earlier call. The caller releases the last buffer
  // with free, or passes it to another call.
  static void ConvertToUTF8(const KORUnicodeString& text, char*& buffer, unsigned long long& size);

 private:
  char* m_Buffer = nullptr;       // owned; zero-terminated
  unsigned long long m_Size = 0;  // bytes before the terminating zero
};

#endif  // IDXBASE_UTF8_STRING_H_
