// A hash table from 32-bit integer keys to fixed-size values stored inside
// its nodes, meant as the base of typed tables.
#ifndef IDXBASE_HASH_TABLE_H_
#define IDXBASE_HASH_TABLE_H_

#include <cstdint>

#include "idxbase/export.h"
#include "idxbase/kor_types.h"

// Maps int keys to values of a fixed number of bytes. A derived class
// chooses the value size and offers typed access through the protected
// operations; RemoveElem and copying are public.
//
// Layout: a fixed array of chain heads whose count is a power of two,
// chosen once from the requested size: the smallest power of two not below
// half of it (requested sizes below 2 count as 10, so they get 8 buckets),
// so that a table holding the requested number of keys has about two per
// chain. The bucket of a
// key is IDX_IntegerHash(key) masked with the count minus 1. A new key is
// linked at the head of its chain. The table never grows and keeps no
// element count.
//
// Ownership: the table owns its bucket array and its nodes, each one
// malloc block holding the node header and then the value bytes (aligned
// for a pointer). Values are raw bytes: PutElem copies them in, GetElem
// hands out their address (valid until the key is removed or the table
// emptied or destroyed), and nothing ever runs a destructor on them, so
// values must be trivially copyable.
//
// Copies are deep: a copy or an assigned table gets nodes of its own with
// the same keys, values and iteration order, and each table frees only its
// own nodes. Assignment also takes the source's bucket count and value
// size.
//
// Out of memory, nothing is dereferenced and nothing is thrown; each case
// writes a debug trace line (IDX_Base_Trace::Debug):
//   - the bucket array: the table gets no buckets (bucket count 0); it
//     stores nothing, finds nothing and its iterators are finished at once;
//   - a new node: PutElem leaves the table unchanged (the key stays
//     absent); overwriting an existing key needs no memory;
//   - copying: a copy that cannot get all its memory holds no elements; an
//     assignment that cannot leaves the target unchanged.
//
// Negative requested sizes count as 0; a negative value size counts as 0
// (nodes without value bytes).
//
// Threads: none are used and no lock is taken; a table and its iterators
// are used by one thread at a time.
class IDXBASE_API BBDVerySimpleHashTable {
 public:
  // A chain node. The value bytes follow the header directly, at
  // sizeof(LinkedListElem) bytes from its start.
  struct LinkedListElem {
    int key;
    LinkedListElem* next;  // next node of the same chain, null at the end
  };

  // Walks every element once: buckets in ascending order, and within a
  // bucket the most recently inserted key first. Holds a pointer to its
  // table, which must stay alive and unchanged while the iterator is used.
  class IDXBASE_API BBDVerySimpleHashTableIterator {
   public:
    BBDVerySimpleHashTableIterator(const BBDVerySimpleHashTableIterator& other);
    BBDVerySimpleHashTableIterator& operator=(const BBDVerySimpleHashTableIterator& other);
    ~BBDVerySimpleHashTableIterator();

    // True once the walk is over (at once for an empty table).
    bool IsFinished();
    // Moves to the next element: KOR_S_OK when there is one, KOR_S_FALSE
    // when the walk is over. Requires: !IsFinished().
    KORStatus Next();
    // Sets `key` and `value` (the address of the value bytes) from the
    // current element; KOR_S_OK. Requires: !IsFinished().
    KORStatus GetElem(int& key, const void*& value);

   private:
    friend class BBDVerySimpleHashTable;
    // Positioned on the first element of `table`.
    explicit BBDVerySimpleHashTableIterator(BBDVerySimpleHashTable& table);

    BBDVerySimpleHashTable* m_Table;
    LinkedListElem* m_Current;  // null once the walk is over
    std::int32_t m_Bucket;      // current chain; the bucket count once over
  };

  BBDVerySimpleHashTable(const BBDVerySimpleHashTable& other);
  BBDVerySimpleHashTable& operator=(const BBDVerySimpleHashTable& other);

  // Unlinks and frees the node of `key`; nothing when there is none.
  void RemoveElem(int key);

 protected:
  // A table sized for `requestedSize` keys whose values take `elementSize`
  // bytes.
  BBDVerySimpleHashTable(int requestedSize, int elementSize);
  virtual ~BBDVerySimpleHashTable();

  // The address of the value bytes of `key`, or null.
  void* GetElem(int key);
  // Copies the value size bytes at `value` into the node of `key`, which
  // is created at the head of its chain when there is none. Requires:
  // `value` valid for the value size.
  void PutElem(int key, const void* value);
  // Frees every node; the bucket array and count stay.
  void Empty();
  // An iterator positioned on the first element.
  BBDVerySimpleHashTableIterator GetIterator();

 private:
  // The node of `key`. When there is none: with `create`, a new node
  // linked at the head of its chain whose value bytes are not initialised
  // (null, with a trace, when memory runs out); without, null.
  LinkedListElem* GetElemFromKey(int key, bool create);

  std::int32_t m_BucketCount;  // a power of two; 0 only without memory
  std::int32_t m_ElementSize;  // value bytes per node
  LinkedListElem** m_Buckets;  // chain heads, null for an empty chain
};

#endif  // IDXBASE_HASH_TABLE_H_
