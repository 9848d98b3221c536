// Collections of the foundation layer: an untyped pointer collection and a
// value list of strings. Positions run from 1 to Size().
#ifndef IDXBASE_KOR_COLLECTIONS_H_
#define IDXBASE_KOR_COLLECTIONS_H_

#include <vector>

#include "idxbase/export.h"
#include "idxbase/kor_string.h"

namespace KORCollec {
// What RemoveAll does with the collection's storage: 0 keeps the
// allocation for reuse, 1 releases it. Other values keep it.
enum MemoryHandling : int {
  KeepMemory = 0,
  ReleaseMemory = 1,
};
}  // namespace KORCollec

// Common base of the foundation's collections; owns nothing itself.
class IDXBASE_API KORCollecRoot {
 public:
  KORCollecRoot() = default;
  KORCollecRoot(const KORCollecRoot&) = default;
  KORCollecRoot& operator=(const KORCollecRoot&) = default;
  virtual ~KORCollecRoot();
};

// A growable sequence of untyped pointers, positions from 1.
//
// Never owns what the pointers designate; copies copy the pointers. One
// thread at a time per object.
//
// Positions outside 1..Size() never cause undefined behaviour: the const
// operator[] gives null, and the non-const operator[] gives a reference to
// a scratch slot of this object that is reset to null on each such access
// and is not an element. Operations that return an int return the number
// of elements affected, or for Append and InsertAt the new element's
// position, or 0 when the position was invalid.
class IDXBASE_API KORRawCollPV : public KORCollecRoot {
 public:
  // Reserves room for `initialCapacity` elements (negative reads as 0).
  explicit KORRawCollPV(int initialCapacity = 0);
  KORRawCollPV(const KORRawCollPV&) = default;
  KORRawCollPV& operator=(const KORRawCollPV&) = default;
  ~KORRawCollPV() override;

  int Size() const { return static_cast<int>(m_Elements.size()); }
  void*& operator[](int position);
  void* operator[](int position) const {
    return IsValid(position) ? m_Elements[static_cast<std::size_t>(position - 1)] : nullptr;
  }

  // Appends `element`; returns its position.
  int Append(void* element);
  // Inserts `element` so that it takes `position` (1..Size()+1); returns
  // the position, or 0 when `position` is out of range.
  int InsertAt(int position, void* element);
  // Position of the first element equal to `element` at or after `from`
  // (positions below 1 read as 1); 0 when there is none.
  int Locate(const void* element, int from = 1) const;
  // Removes every element equal to `element`; returns how many.
  int RemoveValue(const void* element);
  // Removes `count` elements starting at `position`, fewer when the end
  // comes first; returns how many were removed (0 for a bad position).
  int RemovePosition(int position, unsigned int count = 1);
  // Removes every element; returns how many.
  int RemoveAll(KORCollec::MemoryHandling mode = KORCollec::KeepMemory);
  // Keeps the first occurrence of each pointer, in order. When `removed`
  // is not null, each removed duplicate is appended to it. Returns how
  // many were removed.
  int RemoveDuplicates(KORRawCollPV* removed = nullptr);

  // Same pointers in the same order.
  bool operator==(const KORRawCollPV& other) const;
  bool operator!=(const KORRawCollPV& other) const;

 private:
  bool IsValid(int position) const { return position >= 1 && position <= Size(); }

  std::vector<void*> m_Elements;
  void* m_Scratch = nullptr;
};

// A value list of strings, positions from 1. Owns its strings; copies are
// independent. One thread at a time per object. An out-of-range position
// never causes undefined behaviour: the const operator[] gives a shared
// empty string, the non-const one a scratch string of this object that is
// emptied on each such access and is not an element.
class IDXBASE_API KORListValKORUnicodeString : public KORCollecRoot {
 public:
  KORListValKORUnicodeString() = default;
  KORListValKORUnicodeString(const KORListValKORUnicodeString&) = default;
  KORListValKORUnicodeString& operator=(const KORListValKORUnicodeString&) = default;
  ~KORListValKORUnicodeString() override;

  int Size() const { return static_cast<int>(m_Elements.size()); }
  // Appends a copy of `text`; returns its position.
  int Append(const KORUnicodeString& text);
  KORUnicodeString& operator[](int position);
  const KORUnicodeString& operator[](int position) const;
  // Removes every string; returns how many.
  int RemoveAll(KORCollec::MemoryHandling mode = KORCollec::KeepMemory);

  bool operator==(const KORListValKORUnicodeString& other) const;
  bool operator!=(const KORListValKORUnicodeString& other) const;

 private:
  std::vector<KORUnicodeString> m_Elements;
  KORUnicodeString m_Scratch;
};

#endif  // IDXBASE_KOR_COLLECTIONS_H_
