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
    : bucketCount_(idxbase::detail::HashTableBucketCount(requestedSize)),
      elementSize_(elementSize < 0 ? 0 : elementSize),
      buckets_(NewBuckets(bucketCount_)) {
  if (buckets_ != nullptr) return;
  IDX_Base_Trace::Debug("BBDVerySimpleHashTable: no memory for %d buckets; the table stays empty",
                        bucketCount_);
  bucketCount_ = 0;
}

// A table without buckets (its own allocation failed) copies as one.
BBDVerySimpleHashTable::BBDVerySimpleHashTable(const BBDVerySimpleHashTable& other)
    : bucketCount_(other.bucketCount_),
      elementSize_(other.elementSize_),
      buckets_(other.buckets_ == nullptr
                   ? nullptr
                   : CopyBuckets(other.buckets_, other.bucketCount_, other.elementSize_)) {
  if (buckets_ != nullptr || other.buckets_ == nullptr) return;
  IDX_Base_Trace::Debug("BBDVerySimpleHashTable: no memory to copy the table; the copy is empty");
  bucketCount_ = 0;
}

BBDVerySimpleHashTable& BBDVerySimpleHashTable::operator=(const BBDVerySimpleHashTable& other) {
  if (this == &other) return *this;
  Node** copy = nullptr;
  if (other.buckets_ != nullptr) {
    copy = CopyBuckets(other.buckets_, other.bucketCount_, other.elementSize_);
    if (copy == nullptr) {
      IDX_Base_Trace::Debug(
          "BBDVerySimpleHashTable: no memory to copy the table; the target is unchanged");
      return *this;
    }
  }
  FreeBuckets(buckets_, bucketCount_);
  bucketCount_ = other.bucketCount_;
  elementSize_ = other.elementSize_;
  buckets_ = copy;
  return *this;
}

BBDVerySimpleHashTable::~BBDVerySimpleHashTable() { FreeBuckets(buckets_, bucketCount_); }

// Straight to the chain, without the creation branch of GetElemFromKey:
// a lookup makes no call.
void* BBDVerySimpleHashTable::GetElem(int key) {
  if (buckets_ == nullptr) return nullptr;
  LinkedListElem* node = FindInChain(HeadOf(buckets_, bucketCount_, key), key);
  return node == nullptr ? nullptr : ValueOf(node);
}

BBDVerySimpleHashTable::LinkedListElem* BBDVerySimpleHashTable::GetElemFromKey(int key,
                                                                               bool create) {
  if (buckets_ == nullptr) {
    if (create) IDX_Base_Trace::Debug("BBDVerySimpleHashTable: no buckets; key %d not stored", key);
    return nullptr;
  }
  LinkedListElem*& head = HeadOf(buckets_, bucketCount_, key);
  LinkedListElem* node = FindInChain(head, key);
  if (node != nullptr || !create) return node;
  node = NewNode(key, head, elementSize_);
  if (node == nullptr) {
    IDX_Base_Trace::Debug("BBDVerySimpleHashTable: no memory for a node; key %d not stored", key);
    return nullptr;
  }
  head = node;
  return node;
}

void BBDVerySimpleHashTable::PutElem(int key, const void* value) {
  LinkedListElem* node = GetElemFromKey(key, true);
  if (node != nullptr && elementSize_ != 0) {
    std::memcpy(ValueOf(node), value, static_cast<std::size_t>(elementSize_));
  }
}

// Walks the links that point at each node, so that the match's link can be
// redirected to its successor.
void BBDVerySimpleHashTable::RemoveElem(int key) {
  if (buckets_ == nullptr) return;
  for (LinkedListElem** link = &HeadOf(buckets_, bucketCount_, key); *link != nullptr;
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
  for (std::int32_t i = 0; i < bucketCount_; ++i) {
    FreeChain(buckets_[i]);
    buckets_[i] = nullptr;
  }
}

BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator BBDVerySimpleHashTable::GetIterator() {
  return BBDVerySimpleHashTableIterator(*this);
}

BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::BBDVerySimpleHashTableIterator(
    BBDVerySimpleHashTable& table)
    : table_(&table),
      current_(nullptr),
      bucket_(FirstChainFrom(table.buckets_, table.bucketCount_, 0)) {
  if (bucket_ < table.bucketCount_) current_ = table.buckets_[bucket_];
}

BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::BBDVerySimpleHashTableIterator(
    const BBDVerySimpleHashTableIterator& other) = default;

BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator&
BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::operator=(
    const BBDVerySimpleHashTableIterator& other) = default;

BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::~BBDVerySimpleHashTableIterator() = default;

bool BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::IsFinished() {
  return bucket_ == table_->bucketCount_ || current_ == nullptr;
}

KORStatus BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::Next() {
  if (current_->next != nullptr) {
    current_ = current_->next;
    return KOR_S_OK;
  }
  bucket_ = FirstChainFrom(table_->buckets_, table_->bucketCount_, bucket_ + 1);
  if (bucket_ == table_->bucketCount_) {
    current_ = nullptr;
    return KOR_S_FALSE;
  }
  current_ = table_->buckets_[bucket_];
  return KOR_S_OK;
}

KORStatus BBDVerySimpleHashTable::BBDVerySimpleHashTableIterator::GetElem(int& key,
                                                                          const void*& value) {
  key = current_->key;
  value = ValueOf(current_);
  return KOR_S_OK;
}
