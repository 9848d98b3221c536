// 8-bit strings behind shared, copy-on-write handles, abstract binary
// identifiers and value lists of strings. All of them order their bytes
// like IDX_Base_ByteArray::SortCompare.
#ifndef IDXBASE_STRINGS_H_
#define IDXBASE_STRINGS_H_

#include <cstdint>

#include "idxbase/base_types.h"
#include "idxbase/export.h"
#include "idxbase/kor_collections.h"

// Storage record of IDX_Base_String. A new record is {null, 0, 0, 1}.
struct IDX_Base_StringRep {
  char* data = nullptr;        // first character, or null; always owned
  std::uint32_t capacity = 0;  // bytes allocated
  std::uint32_t size = 0;      // length in bytes
  std::uint32_t refCount = 1;  // handles sharing the record
};

// An 8-bit string with an explicit length. The bytes are opaque (embedded
// zero bytes are kept) and not zero-terminated: use GetLength.
//
// Ownership, copies and threads as for IDX_Base_ByteArray: copies share a
// reference-counted record (the last handle releases it); SetData gives
// the handle a private record first; storage is allocated to exactly the
// length, never shrunk, and zero past the length after every write.
// Storage allocation failure leaves a valid empty string; nothing is
// reported. Handles that share a record are used by one thread at a time.
class IDXBASE_API IDX_Base_String {
 public:
  // An empty handle (no record).
  IDX_Base_String() = default;
  // Shares `other`'s record.
  IDX_Base_String(const IDX_Base_String& other);
  // Releases the own record and shares `other`'s; nothing happens when
  // both already share one.
  IDX_Base_String& operator=(const IDX_Base_String& other);
  virtual ~IDX_Base_String();

  // Replaces the contents by a copy of `length` bytes at `text`; nothing
  // happens when the string already holds exactly `text` and `length`.
  // Requires: `text` valid for `length` bytes; it may lie in the string's
  // own storage.
  void SetData(const char* text, unsigned int length);
  // SetData(nullptr, 0): no bytes, storage kept (zeroed). Unlike a default
  // handle, a cleared string has a record and compares normally.
  void Clear();
  // The first character, or null for an empty handle.
  const char* GetData() const;
  // The length in bytes, 0 for an empty handle.
  unsigned int GetLength() const;

  // Orders the bytes as IDX_Base_ByteArray::SortCompare does: `result` -1,
  // 0 or 1; an empty `other` handle counts as no bytes. IDX_False, with
  // `result` 0 and the debug trace
  // "IDX_Base_String.SortCompare.InvalidString", when this handle is empty.
  IDX_Bool SortCompare(const IDX_Base_String& other, short& result) const;
  // True when SortCompare succeeds with a non-zero result: false for an
  // empty handle (with the trace) and for shared or equal contents.
  bool operator!=(const IDX_Base_String& other) const;
  // Prints the characters with "%s" on standard output (so up to the first
  // zero byte); nothing when there are no characters.
  void Dump() const;

 private:
  IDX_Base_StringRep* m_Rep = nullptr;
};

// An abstract binary identifier: the subclass supplies and keeps the
// bytes, the base compares and hashes them. The base owns nothing.
//
// The hash is cached in the object the first time it is non-zero and is
// never cleared, so an identifier's bytes must not change once its hash
// has been taken. A copy or an assignment starts with an empty cache, since
// the subclass decides which bytes it copies. One thread at a time per
// object.
class IDXBASE_API IDX_Base_Identifier {
 public:
  IDX_Base_Identifier() = default;
  IDX_Base_Identifier(const IDX_Base_Identifier& other);
  IDX_Base_Identifier& operator=(const IDX_Base_Identifier& other);
  virtual ~IDX_Base_Identifier();

  // The identifier's bytes (valid for GetSize() bytes) and their number.
  virtual const unsigned char* GetData() const = 0;
  virtual unsigned int GetSize() const = 0;

  // Equality of the bytes, by SortCompare.
  IDX_Bool operator==(const IDX_Base_Identifier& other) const;
  IDX_Bool operator!=(const IDX_Base_Identifier& other) const;
  // IDX_True when the identifier holds exactly the `size` bytes at `bytes`.
  // Requires: `bytes` valid for `size` bytes.
  IDX_Bool Equals(const unsigned char* bytes, unsigned int size) const;
  // The four-byte XOR fold of IDX_Base_ByteArray::GetHashKey, cached here.
  unsigned int GetHashKey() const;
  // Orders the bytes as IDX_Base_ByteArray::SortCompare does; always
  // IDX_True.
  IDX_Bool SortCompare(const IDX_Base_Identifier& other, short& result) const;

 private:
  mutable std::uint32_t hashKey = 0;
};

// A value list of IDX_Base_String, positions from 1 to Size().
//
// Owns its element handles (one small allocation each); each handle shares
// the record of the string it was copied from, so appending and copying a
// list copy no characters. Copies and assignment build new handles. One
// thread at a time per list and per shared string.
class IDXBASE_API KORListValIDX_Base_String : public KORCollecRoot {
 public:
  KORListValIDX_Base_String();
  // An empty list with room for `initialCapacity` elements; the second
  // argument is not used.
  explicit KORListValIDX_Base_String(int initialCapacity);
  KORListValIDX_Base_String(int initialCapacity, int unused);
  KORListValIDX_Base_String(const KORListValIDX_Base_String& other);
  // Replaces the elements by handles sharing `other`'s strings, in order.
  KORListValIDX_Base_String& operator=(const KORListValIDX_Base_String& other);
  ~KORListValIDX_Base_String() override;

  // Appends a handle that shares `text`'s record.
  void Append(const IDX_Base_String& text);
  // The element at `position`. Requires: 1 <= position <= Size().
  IDX_Base_String& operator[](int position);
  const IDX_Base_String& operator[](int position) const;
  int Size() const;
  // Deletes every element handle, then empties the collection with `mode`.
  void RemoveAll(KORCollec::MemoryHandling mode);

  // 1 when both lists hold equal strings in the same order, else 0. An
  // empty string handle in this list traces
  // "IDX_Base_String.SortCompare.InvalidString" and counts as equal to its
  // partner.
  int operator==(const KORListValIDX_Base_String& other) const;
  // 1 when the lists differ, else 0.
  int operator!=(const KORListValIDX_Base_String& other) const;

 private:
  KORRawCollPV m_Elements;  // IDX_Base_String* owned by the list
};

#endif  // IDXBASE_STRINGS_H_
