// The reference-counted, copy-on-write storage record shared by the
// byte-run handles (IDX_Base_Buffer, IDX_Base_ByteArray, IDX_Base_String).
//
// A handle holds a pointer to a record, or null while it is empty. Copies
// share the record and count it; a write first detaches the handle onto a
// record of its own; the last share releases the bytes and the record.
// Owned bytes are allocated to exactly the size asked for through
// Reallocate (allocation.h) and released with free; the records themselves
// are created with new.
#ifndef IDXBASE_BASE_SHARED_RECORD_H_
#define IDXBASE_BASE_SHARED_RECORD_H_

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "base/allocation.h"
#include "idxbase/byte_runs.h"

namespace idxbase::detail {

// Releases the storage a record owns: its bytes, or for a buffer record
// that refers to other bytes the storage it holds under them, if any.
template <typename Rep>
void ReleaseStorage(Rep& rep) {
  std::free(rep.data);
}
inline void ReleaseStorage(IDX_Base_BufferRep& rep) {
  std::free(rep.ownsData == 1 ? rep.data : rep.held);
}

// True when the `count` bytes at `bytes` lie inside the `capacity` bytes at
// `storage`.
template <typename Byte>
bool LiesWithin(const Byte* bytes, std::uint32_t count, const Byte* storage,
                std::uint32_t capacity) {
  if (bytes == nullptr || storage == nullptr) return false;
  const auto first = reinterpret_cast<std::uintptr_t>(bytes);
  const auto begin = reinterpret_cast<std::uintptr_t>(storage);
  return first >= begin && first - begin <= capacity && count <= capacity - (first - begin);
}

// The operations on a record type Rep with the fields data, capacity, size
// and refCount. All are static; a handle passes its record pointer.
template <typename Rep>
class SharedRecord {
 public:
  using Byte = std::remove_pointer_t<decltype(Rep::data)>;

  // The record for a new copy of a handle: `rep` with one more share, or
  // null for an empty handle.
  static Rep* Share(Rep* rep) {
    if (rep != nullptr) ++rep->refCount;
    return rep;
  }

  // Drops the handle's share and leaves `rep` null. The last share
  // releases the owned bytes and the record.
  static void Release(Rep*& rep) {
    if (rep == nullptr) return;
    if (--rep->refCount == 0) {
      ReleaseStorage(*rep);
      delete rep;
    }
    rep = nullptr;
  }

  // Handle assignment: nothing when both already share one record.
  static void Assign(Rep*& target, Rep* source) {
    if (target == source) return;
    Rep* shared = Share(source);
    Release(target);
    target = shared;
  }

  // Makes the handle the only user of its record before a write: an
  // unshared record is kept as it is; a shared one is left to the other
  // handles and the handle gets a new record, as does an empty handle.
  static Rep& Detach(Rep*& rep) {
    if (rep != nullptr && rep->refCount < 2) return *rep;
    Rep* fresh = new Rep();
    if (rep != nullptr) --rep->refCount;
    rep = fresh;
    return *fresh;
  }

  // Replaces the contents of a private, owned record by a copy of the
  // `count` bytes at `bytes`, with zeros up to the capacity. Bytes that lie
  // in the record's own storage are moved within it (they fit, so the
  // storage is not reallocated under them).
  static void Fill(Rep& rep, const Byte* bytes, std::uint32_t count) {
    if (LiesWithin(bytes, count, rep.data, rep.capacity)) {
      std::memmove(rep.data, bytes, count);
    } else {
      if (!Reserve(rep, count)) return;
      if (count != 0) std::memcpy(rep.data, bytes, count);
    }
    rep.size = count;
    ZeroFrom(rep, count);
  }

  // Replaces the contents of a private, owned record by `count` zero bytes;
  // the whole capacity is zeroed.
  static void FillZero(Rep& rep, std::uint32_t count) {
    if (!Reserve(rep, count)) return;
    rep.size = count;
    ZeroFrom(rep, 0);
  }

 private:
  // Grows owned storage to exactly `count` bytes when it holds fewer. When
  // that fails, the storage is released and the record left without bytes
  // (data null, capacity and size 0), and the result is false.
  [[nodiscard]] static bool Reserve(Rep& rep, std::uint32_t count) {
    if (count <= rep.capacity) return true;
    void* grown = Reallocate(rep.data, count);
    if (grown == nullptr) {
      std::free(rep.data);
      rep.data = nullptr;
      rep.capacity = 0;
      rep.size = 0;
      return false;
    }
    rep.data = static_cast<Byte*>(grown);
    rep.capacity = count;
    return true;
  }

  static void ZeroFrom(Rep& rep, std::uint32_t from) {
    if (rep.capacity > from) std::memset(rep.data + from, 0, rep.capacity - from);
  }
};

}  // namespace idxbase::detail

#endif  // IDXBASE_BASE_SHARED_RECORD_H_
