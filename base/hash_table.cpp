#include "idxbase/hash_table.h"

#include <cstdlib>
#include <cstring>

#include "base/allocation.h"
#include "base/hash_table_internal.h"
#include "base/integer_mix.h"
#include "idxbase/trace.h"

namespace idxbase::detail {

// The smallest power of two not below the half, by smearing the highest
// set bit of half - 1 into every lower bit.
std::int32_t HashTableBucketCount(int requestedSize) {
  int size = requestedSize < 0 ? 0 : requestedSize;
  if (size / 2 == 0) size = 10;
  std::uint32_t x = static_cast<std::uint32_t>(size / 2) - 1;
  x |= x >> 1;
  x |= x >> 2;
  x |= x >> 4;
  x |= x >> 8;
  x |= x >> 16;
  return static_cast<std::int32_t>(x + 1);
}

}  // namespace idxbase::detail

namespace {

using Node = BBDVerySimpleHashTable::LinkedListElem;
using idxbase::detail::Allocate;

// The value bytes start right after the header, which keeps them aligned
// for a pointer.
static_assert(sizeof(Node) % alignof(Node*) == 0, "value bytes must stay pointer-aligned");

unsigned char* ValueOf(Node* node) { return reinterpret_cast<unsigned char*>(node) + sizeof(Node); }
const unsigned char* ValueOf(const Node* node) {
  return reinterpret_cast<const unsigned char*>(node) + sizeof(Node);
}

// IDX_IntegerHash of the key, masked; inlined, as every operation starts
// here.
std::uint32_t BucketOf(int key, std::int32_t bucketCount) {
  return idxbase::detail::IntegerMix(static_cast<std::uint32_t>(key)) &
         (static_cast<std::uint32_t>(bucketCount) - 1);
}

// The chain head that `key` belongs to. Requires: `buckets` not null.
Node*& HeadOf(Node** buckets, std::int32_t bucketCount, int key) {
  return buckets[BucketOf(key, bucketCount)];
}

// The node of `key` in the chain starting at `node`, or null.
Node* FindInChain(Node* node, int key) {
  while (node != nullptr && node->key != key) node = node->next;
  return node;
}

// A node for `key` in front of `next`, with uninitialised value bytes; null
// when memory runs out.
Node* NewNode(int key, Node* next, std::int32_t valueBytes) {
  void* block = Allocate(sizeof(Node) + static_cast<std::size_t>(valueBytes));
  if (block == nullptr) return nullptr;
  Node* node = static_cast<Node*>(block);
  node->key = key;
  node->next = next;
  return node;
}

// `count` empty chain heads; null when memory runs out.
Node** NewBuckets(std::int32_t count) {
  const std::size_t bytes = static_cast<std::size_t>(count) * sizeof(Node*);
  void* block = Allocate(bytes);
  if (block != nullptr) std::memset(block, 0, bytes);
  return static_cast<Node**>(block);
}

void FreeChain(Node* node) {
  while (node != nullptr) {
    Node* next = node->next;
    std::free(node);
    node = next;
  }
}

void FreeBuckets(Node** buckets, std::int32_t count) {
  if (buckets == nullptr) return;
  for (std::int32_t i = 0; i < count; ++i) FreeChain(buckets[i]);
  std::free(buckets);
}

// Appends copies of the chain `source` at `*tail`, in the same order.
// False when memory runs out; the nodes copied so far are linked then.
bool CopyChain(const Node* source, Node** tail, std::int32_t valueBytes) {
  for (; source != nullptr; source = source->next) {
    Node* copy = NewNode(source->key, nullptr, valueBytes);
    if (copy == nullptr) return false;
    std::memcpy(ValueOf(copy), ValueOf(source), static_cast<std::size_t>(valueBytes));
    *tail = copy;
    tail = &copy->next;
  }
  return true;
}

// A new bucket array holding copies of the `count` chains at `source`;
// null, with nothing left allocated, when memory runs out.
Node** CopyBuckets(Node* const* source, std::int32_t count, std::int32_t valueBytes) {
  Node** copy = NewBuckets(count);
  if (copy == nullptr) return nullptr;
  for (std::int32_t i = 0; i < count; ++i) {
    if (!CopyChain(source[i], &copy[i], valueBytes)) {
      FreeBuckets(copy, count);
      return nullptr;
    }
  }
  return copy;
}

// The first non-empty chain at or after `from`, or `count` when there is
// none.
std::int32_t FirstChainFrom(Node* const* buckets, std::int32_t count, std::int32_t from) {
  while (from < count && buckets[from] == nullptr) ++from;
  return from;
}

}  // namespace

BBDVerySimpleHashTable::BBDVerySimpleHashTable(int requestedSize, int elementSize)
    : m_BucketCount(idxbase::detail::HashTableBucketCount(requestedSize)),
      m_ElementSize(elementSize < 0 ? 0 : elementSize),
      m_Buckets(NewBuckets(m_BucketCount)) {
  if (m_Buckets != nullptr) return;
  IDX_Base_Trace::Debug("BBDVerySimpleHashTable: no memory for %d buckets; the table stays empty",
                        m_BucketCount);
  m_BucketCount = 0;
}

// A table without buckets (its own allocation failed) copies as one.
BBDVerySimpleHashTable::BBDVerySimpleHashTable(const BBDVerySimpleHashTable& other)
    : m_BucketCount(other.m_BucketCount),
      m_ElementSize(other.m_ElementSize),
      m_Buckets(other.m_Buckets == nullptr
                    ? nullptr
                    : CopyBuckets(other.m_Buckets, other.m_BucketCount, other.m_ElementSize)) {
  if (m_Buckets != nullptr || other.m_Buckets == nullptr) return;
  IDX_Base_Trace::Debug("BBDVerySimpleHashTable: no memory to copy the table; the copy is empty");
  m_BucketCount = 0;
}

BBDVerySimpleHashTable& BBDVerySimpleHashTable::operator=(const BBDVerySimpleHashTable& other) {
  if (this == &other) return *this;
  Node** copy = nullptr;
  if (other.m_Buckets != nullptr) {
    copy = CopyBuckets(other.m_Buckets, other.m_BucketCount, other.m_ElementSize);
    if (copy == nullptr) {
      IDX_Base_Trace::Debug(
          "BBDVerySimpleHashTable: no memory to copy the table; the target is unchanged");
      return *this;
    }
  }
  FreeBuckets(m_Buckets, m_BucketCount);
  m_BucketCount = other.m_BucketCount;
  m_ElementSize = other.m_ElementSize;
  m_Buckets = copy;
  return *this;
}

BBDVerySimpleHashTable::~BBDVerySimpleHashTable() { FreeBuckets(m_Buckets, m_BucketCount); }

// Straight to the chain, without the creation branch of GetElemFromKey:
// a lookup makes no call.
void* BBDVerySimpleHashTable::GetElem(int key) {
  if (m_Buckets == nullptr) return nullptr;
  LinkedListElem* node = FindInChain(HeadOf(m_Buckets, m_BucketCount, key), key);
  return node == nullptr ? nullptr : ValueOf(node);
}

BBDVerySimpleHashTable::LinkedListElem* BBDVerySimpleHashTable::GetElemFromKey(int key,
                                                                               bool create) {
  if (m_Buckets == nullptr) {
    if (create) IDX_Base_Trace::Debug("BBDVerySimpleHashTable: no buckets; key %d not stored", key);
    return nullptr;
  }
  LinkedListElem*& head = HeadOf(m_Buckets, m_BucketCount, key);
  LinkedListElem* node = FindInChain(head, key);
  if (node != nullptr || !create) return node;
  node = NewNode(key, head, m_ElementSize);
  if (node == nullptr) {
    IDX_Base_Trace::Debug("BBDVerySimpleHashTable: no memory for a node; key %d not stored", key);
    return nullptr;
  }
  head = node;
  return node;
}

void BBDVerySimpleHashTable::PutElem(int key, const void* value) {
  LinkedListElem* node = GetElemFromKey(key, true);
  if (node != nullptr && m_ElementSize != 0) {
    std::memcpy(ValueOf(node), value, static_cast<std::size_t>(m_ElementSize));
  }
}

// Walks the links that point at each node, so that the match's link can be
// redirected to its successor.
void BBDVerySimpleHashTable::RemoveElem(int key) {
  if (m_Buckets == nullptr) return;
  for (LinkedListElem** link = &HeadOf(m_Buckets, m_BucketCount, key); *link != nullptr;
       link = &(*link)->next) {
    LinkedListElem* node = *link;
    if (node->key == key) {
      *link = node->next;
      std::free(node);
      return;
    }
  }
}

void BBDVerySimpleHashTable::Empty() {
  for (std::int32_t i = 0; i < m_BucketCount; ++i) {
    FreeChain(m_Buckets[i]);
    m_Buckets[i] = nullptr;
  }
}

BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator BBDVerySimpleHashTable::GetIterator() {
  return BBDVerySimpleHashTableIterator(*this);
}

BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::BBDVerySimpleHashTableIterator(
    BBDVerySimpleHashTable& table)
    : m_Table(&table),
      m_Current(nullptr),
      m_Bucket(FirstChainFrom(table.m_Buckets, table.m_BucketCount, 0)) {
  if (m_Bucket < table.m_BucketCount) m_Current = table.m_Buckets[m_Bucket];
}

BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::BBDVerySimpleHashTableIterator(
    const BBDVerySimpleHashTableIterator& other) = default;

BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator&
BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::operator=(
    const BBDVerySimpleHashTableIterator& other) = default;

BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::~BBDVerySimpleHashTableIterator() = default;

bool BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::IsFinished() {
  return m_Bucket == m_Table->m_BucketCount || m_Current == nullptr;
}

KORStatus BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::Next() {
  if (m_Current->next != nullptr) {
    m_Current = m_Current->next;
    return KOR_S_OK;
  }
  m_Bucket = FirstChainFrom(m_Table->m_Buckets, m_Table->m_BucketCount, m_Bucket + 1);
  if (m_Bucket == m_Table->m_BucketCount) {
    m_Current = nullptr;
    return KOR_S_FALSE;
  }
  m_Current = m_Table->m_Buckets[m_Bucket];
  return KOR_S_OK;
}

KORStatus BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::GetElem(int& key,
                                                                          const void*& value) {
  key = m_Current->key;
  value = ValueOf(m_Current);
  return KOR_S_OK;
}
