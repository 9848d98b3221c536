// Growable lists of points and triangles: meshes are collected one record
// at a time and read back as one contiguous array.
#ifndef IDXBASE_GEOMETRY_LISTS_H_
#define IDXBASE_GEOMETRY_LISTS_H_

#include <cstdint>

#include "idxbase/base_types.h"
#include "idxbase/export.h"
#include "idxbase/matrix.h"

// A growable array of IDX_Point records.
//
// Ownership: the list owns its storage, obtained with malloc/realloc and
// released with free. It starts with room for one record more than asked,
// so a list given the exact count it will receive never grows. When full,
// Append doubles the capacity up to 4,369,050 records (about 100 MiB of
// 12-byte records) and adds 1,000,000 records per growth beyond.
//
// Failure: a list whose storage could not be obtained has capacity 0 and
// refuses every Append. A growth tries the reallocation 11 times in a
// row; when all fail, the list releases its storage, loses its contents
// (Size 0, GetArray null) and refuses every later Append. Nothing is
// written to the output. A growth that would count more than 2^32 − 1
// records fails the same way.
//
// Not copyable. One thread at a time.
class IDXBASE_API IDX_Base_ListOf_Point {
 public:
  // Room for `initialSize` + 1 records, size 0. An `initialSize` of
  // 2^32 − 1 cannot be counted and gives a failed list.
  explicit IDX_Base_ListOf_Point(unsigned int initialSize);
  ~IDX_Base_ListOf_Point();
  IDX_Base_ListOf_Point(const IDX_Base_ListOf_Point&) = delete;
  IDX_Base_ListOf_Point& operator=(const IDX_Base_ListOf_Point&) = delete;

  // Adds a copy of `p` at the end, growing the storage when full.
  // IDX_False, changing nothing, for a failed list; IDX_False, failing the
  // list, when the growth fails.
  IDX_Bool Append(const IDX_Point& p);
  // Size 0; the storage and its capacity are kept.
  void RemoveAll();
  unsigned int Size() const;
  // The records, contiguous; null for a failed list. Valid until the next
  // Append that grows the storage or the list's destruction.
  const IDX_Point* GetArray() const;

 private:
  IDX_Point* m_Array;
  std::uint32_t m_Capacity;  // records the storage holds; 0 for a failed list
  std::uint32_t m_Size;      // records in use
};

// A growable array of IDX_Triangle records: the same container as
// IDX_Base_ListOf_Point, with the same growth, failure, copy and thread
// rules.
class IDXBASE_API IDX_Base_ListOf_Triangle {
 public:
  explicit IDX_Base_ListOf_Triangle(unsigned int initialSize);
  ~IDX_Base_ListOf_Triangle();
  IDX_Base_ListOf_Triangle(const IDX_Base_ListOf_Triangle&) = delete;
  IDX_Base_ListOf_Triangle& operator=(const IDX_Base_ListOf_Triangle&) = delete;

  IDX_Bool Append(const IDX_Triangle& t);
  void RemoveAll();
  unsigned int Size() const;
  const IDX_Triangle* GetArray() const;

 private:
  IDX_Triangle* m_Array;
  std::uint32_t m_Capacity;
  std::uint32_t m_Size;
};

#endif  // IDXBASE_GEOMETRY_LISTS_H_
