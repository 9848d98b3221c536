// Unicode strings of the foundation layer.
#ifndef IDXBASE_KOR_STRING_H_
#define IDXBASE_KOR_STRING_H_

#include <mutex>
#include <string>

#include "idxbase/export.h"

// A Unicode string held as UTF-8.
//
// Construction from `const char*` reads zero-terminated UTF-8; a null
// pointer gives the empty string. Byte sequences that are not valid UTF-8
// are each replaced by U+FFFD, so the held text is always well-formed and a
// character never takes more than four bytes.
//
// Owns its text. Copies are independent. One thread at a time per object
// (see KORSysTSUnicodeString for a string shared between threads).
class IDXBASE_API KORUnicodeString {
 public:
  KORUnicodeString() = default;
  KORUnicodeString(const char* utf8);  // NOLINT: implicit by design
  KORUnicodeString(const KORUnicodeString&) = default;
  KORUnicodeString(KORUnicodeString&&) noexcept = default;
  KORUnicodeString& operator=(const KORUnicodeString&) = default;
  KORUnicodeString& operator=(KORUnicodeString&&) noexcept = default;
  KORUnicodeString& operator=(const char* utf8);
  ~KORUnicodeString() = default;

  KORUnicodeString& operator+=(const KORUnicodeString& other);
  KORUnicodeString& operator+=(const char* utf8);
  void Append(const KORUnicodeString& other);

  bool operator==(const KORUnicodeString& other) const;
  bool operator!=(const KORUnicodeString& other) const;

  // Number of Unicode characters (code points), not bytes.
  int GetLengthInChar() const;
  // Zero-terminated UTF-8; valid until the string is next changed or
  // destroyed. Both names give the same bytes.
  const char* ConvertToChar() const { return m_Text.c_str(); }
  const char* CastToCharPtr() const { return m_Text.c_str(); }

  // Replaces the content with `value` formatted by the printf-style
  // `format`, which must hold exactly one conversion for that type
  // (d, i, o, u, x, X or c for int; e, E, f, F, g, G, a or A for double),
  // with optional flags, width and precision, and any literal text.
  // Returns false, leaving the string empty, for any other format.
  bool BuildFromNum(int value, const char* format);
  bool BuildFromNum(double value, const char* format);

  // Writes the UTF-8 bytes into `buffer`. On entry `*size` is the capacity
  // of `buffer` in bytes; on return it is the number of bytes written,
  // without a terminating zero. Only whole characters are written; a zero
  // follows them when there is room for it. Nothing happens when `buffer`
  // or `size` is null.
  void ConvertToUTF8(char* buffer, unsigned long long* size) const;

 private:
  std::string m_Text;
};

IDXBASE_API KORUnicodeString operator+(const KORUnicodeString& left, const KORUnicodeString& right);
IDXBASE_API KORUnicodeString operator+(const KORUnicodeString& left, const char* right);

// The same string operations, safe for concurrent use: every operation
// holds the object's own mutex while it runs. `ConvertToChar` and
// `CastToCharPtr` return a pointer that stays valid only until the string
// is next changed, by any thread.
class IDXBASE_API KORSysTSUnicodeString {
 public:
  KORSysTSUnicodeString() = default;
  KORSysTSUnicodeString(const char* utf8);              // NOLINT: implicit by design
  KORSysTSUnicodeString(const KORUnicodeString& text);  // NOLINT
  KORSysTSUnicodeString(const KORSysTSUnicodeString& other);
  KORSysTSUnicodeString(KORSysTSUnicodeString&& other) noexcept;
  KORSysTSUnicodeString& operator=(const KORSysTSUnicodeString& other);
  KORSysTSUnicodeString& operator=(KORSysTSUnicodeString&& other) noexcept;
  KORSysTSUnicodeString& operator=(const char* utf8);
  ~KORSysTSUnicodeString() = default;

  KORSysTSUnicodeString& operator+=(const KORSysTSUnicodeString& other);
  KORSysTSUnicodeString& operator+=(const char* utf8);
  void Append(const KORSysTSUnicodeString& other);

  bool operator==(const KORSysTSUnicodeString& other) const;
  bool operator!=(const KORSysTSUnicodeString& other) const;

  int GetLengthInChar() const;
  const char* ConvertToChar() const;
  const char* CastToCharPtr() const;
  bool BuildFromNum(int value, const char* format);
  bool BuildFromNum(double value, const char* format);
  void ConvertToUTF8(char* buffer, unsigned long long* size) const;

  // A copy of the text as a plain string.
  KORUnicodeString ToUnicodeString() const;

 private:
  mutable std::mutex m_Mutex;
  KORUnicodeString m_Text;
};

IDXBASE_API KORSysTSUnicodeString operator+(const KORSysTSUnicodeString& left,
                                            const KORSysTSUnicodeString& right);
IDXBASE_API KORSysTSUnicodeString operator+(const KORSysTSUnicodeString& left, const char* right);

#endif  // IDXBASE_KOR_STRING_H_
