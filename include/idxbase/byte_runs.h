// Runs of bytes behind shared, copy-on-write handles: a buffer that copies
// or refers to the caller's bytes, and a byte array that always owns a copy
// and can hash, order and print itself.
#ifndef IDXBASE_BYTE_RUNS_H_
#define IDXBASE_BYTE_RUNS_H_

#include <cstdint>

#include "idxbase/base_types.h"
#include "idxbase/export.h"

// Storage record of IDX_Base_Buffer. A new record is {null, 0, 0, 1, 1}
// and holds no storage.
struct IDX_Base_BufferRep {
  unsigned char* data = nullptr;  // first byte, or null
  std::uint32_t capacity = 0;     // bytes allocated when owned; 0 for caller bytes
  std::uint32_t size = 0;         // valid bytes
  std::uint32_t refCount = 1;     // handles sharing the record
  std::int32_t ownsData = 1;      // 1: `data` is released with the record
  // Only while `ownsData` is 0: the storage that the record owned before it
  // was switched to referred bytes lying inside it, kept so that they stay
  // valid (null otherwise). Released with the record or at the next write
  // that leaves it.
  unsigned char* held = nullptr;
  std::uint32_t heldCapacity = 0;
};

// Storage record of IDX_Base_ByteArray. A new record is {null, 0, 0, 0, 1}.
struct IDX_Base_ByteArrayRep {
  unsigned char* data = nullptr;  // first byte, or null; always owned
  std::uint32_t capacity = 0;     // bytes allocated
  std::uint32_t hashKey = 0;      // cached GetHashKey; 0 while not computed
  std::uint32_t size = 0;         // valid bytes
  std::uint32_t refCount = 1;     // handles sharing the record
};

// A byte buffer that either owns a copy of its bytes or refers to bytes
// that the caller keeps.
//
// Ownership: the handle shares a reference-counted record; the last handle
// releases it. Owned storage is allocated to exactly the requested size
// with realloc and released with free; it is never shrunk by SetData or
// Allocate, and bytes between the size and the capacity are zero after
// every write. Referred bytes belong to the caller, who keeps them alive
// and unchanged while any handle refers to them; the buffer never writes,
// reallocates or releases them.
//
// Copies share the record (a pointer copy and a count change); every write
// (SetData, Allocate, Resize, GetDataForWriting) first gives the handle a
// private record, so other handles never see the change. Storage
// allocation failure leaves a valid empty record (no bytes, capacity 0);
// nothing is reported.
//
// Threads: the counts are plain integers, so handles that share a record
// are used by one thread at a time.
class IDXBASE_API IDX_Base_Buffer {
 public:
  // An empty handle (no record).
  IDX_Base_Buffer() = default;
  // Shares `other`'s record.
  IDX_Base_Buffer(const IDX_Base_Buffer& other);
  // Releases the own record and shares `other`'s; nothing happens when
  // both already share one.
  IDX_Base_Buffer& operator=(const IDX_Base_Buffer& other);
  virtual ~IDX_Base_Buffer();

  // Replaces the contents by `size` bytes at `data`: a copy when `copy` is
  // IDX_True, otherwise a reference to the caller's bytes. Nothing happens
  // when the buffer already holds exactly `data` and `size`.
  // Requires: `data` valid for `size` bytes. A copy may come from the
  // buffer's own storage. When the buffer refers to bytes, `data` is what
  // GetData gives and the capacity is 0. Bytes that lie wholly inside the
  // buffer's own storage are referred to in place: the record keeps that
  // storage (its `held` field) instead of releasing it, and releases it
  // when the last handle sharing the record lets go of the record, or when
  // the handle writes the record again and no longer refers into it (after
  // a copy has read its bytes). Any other switch to referred bytes releases
  // the old storage.
  void SetData(const unsigned char* data, unsigned int size, IDX_Bool copy);
  // The first byte, or null for an empty handle.
  const unsigned char* GetData() const;
  // The number of valid bytes, 0 for an empty handle.
  unsigned int GetSize() const;
  // Gives the handle a private, owned copy first, then returns its bytes
  // (null for an empty handle or no bytes). Writes through the pointer are
  // seen by this handle only.
  unsigned char* GetDataForWriting();
  // Gives the buffer exactly `size` bytes in a new private, owned record,
  // keeping the leading bytes; bytes past the old size are zero.
  void Resize(unsigned int size);
  // Releases the record and leaves the handle empty.
  void FreeImpl();

 protected:
  // Replaces the contents by `size` zero bytes in a private, owned record.
  void Allocate(unsigned int size);
  // Copies the contents into a private, owned record unless the handle is
  // already its record's only, owning user.
  void MakeUnique();

 private:
  IDX_Base_BufferRep* m_Rep = nullptr;
};

// A byte array that owns a copy of its bytes and can hash, order and print
// them.
//
// Ownership, copies and threads as for IDX_Base_Buffer (without the
// referring mode). The hash is cached in the shared record: GetHashKey is
// const but writes the cache, which all sharers see; SetData clears it.
class IDXBASE_API IDX_Base_ByteArray {
 public:
  // An empty handle (no record).
  IDX_Base_ByteArray() = default;
  // Shares `other`'s record.
  IDX_Base_ByteArray(const IDX_Base_ByteArray& other);
  // Releases the own record and shares `other`'s; nothing happens when
  // both already share one.
  IDX_Base_ByteArray& operator=(const IDX_Base_ByteArray& other);
  virtual ~IDX_Base_ByteArray();

  // Replaces the contents by a copy of `size` bytes at `data`; nothing
  // happens when the array already holds exactly `data` and `size`.
  // Requires: `data` valid for `size` bytes; it may lie in the array's own
  // storage.
  void SetData(const unsigned char* data, unsigned int size);
  // SetData(nullptr, 0): no bytes, storage kept (zeroed). Unlike a default
  // handle, a cleared array has a record and compares normally.
  void Clear();
  // The first byte, or null for an empty handle.
  const unsigned char* GetData() const;
  // The number of valid bytes, 0 for an empty handle.
  unsigned int GetSize() const;

  // A four-byte XOR fold of the bytes: byte k goes into accumulator byte
  // (k + 1) mod 4; the accumulator, read as a little-endian signed 32-bit
  // integer, gives its absolute value (0x80000000 stays). 0 for an empty
  // handle or no bytes. A non-zero result is cached in the record.
  unsigned int GetHashKey() const;
  // Orders this array before (`result` < 0), with (0) or after (> 0)
  // `other`: unsigned bytes in lexicographic order, a proper prefix first;
  // `result` is -1, 0 or 1. An empty `other` handle counts as no bytes.
  // IDX_False, with `result` 0 and the debug trace
  // "IDX_Base_ByteArray.SortCompare.InvalidArray", when this handle is
  // empty; IDX_True otherwise.
  IDX_Bool SortCompare(const IDX_Base_ByteArray& other, short& result) const;

  // Sets `text` to a new char array (released by the caller with
  // delete[]) holding two upper-case hexadecimal digits per byte and a
  // terminating zero. Leaves `text` untouched when there are no bytes.
  void DumpAsHexa(char*& text) const;
  // Prints the hexadecimal text as "[%s]" on standard output; nothing when
  // there are no bytes.
  void DumpAsHexa() const;
  // Prints "[", each byte as itself when it is an ASCII letter or digit and
  // as "." otherwise, then "]" on standard output; nothing when there are
  // no bytes.
  void DumpPrintable() const;

 private:
  IDX_Base_ByteArrayRep* m_Rep = nullptr;
};

#endif  // IDXBASE_BYTE_RUNS_H_
