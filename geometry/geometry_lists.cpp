// IDX_Base_ListOf_Point and IDX_Base_ListOf_Triangle: the two record types
// of a mesh on the one record list of record_list.h. They live with the
// geometry because their records are geometry data.
#include "idxbase/geometry_lists.h"

#include "geometry/record_list.h"

using idxbase::detail::RecordList;

// IDX_Base_ListOf_Point.

IDX_Base_ListOf_Point::IDX_Base_ListOf_Point(unsigned int initialSize) {
  RecordList<IDX_Point>(m_Array, m_Capacity, m_Size).Create(initialSize);
}

IDX_Base_ListOf_Point::~IDX_Base_ListOf_Point() {
  RecordList<IDX_Point>(m_Array, m_Capacity, m_Size).Destroy();
}

IDX_Bool IDX_Base_ListOf_Point::Append(const IDX_Point& p) {
  return RecordList<IDX_Point>(m_Array, m_Capacity, m_Size).Append(p);
}

void IDX_Base_ListOf_Point::RemoveAll() { m_Size = 0; }

unsigned int IDX_Base_ListOf_Point::Size() const { return m_Size; }

const IDX_Point* IDX_Base_ListOf_Point::GetArray() const { return m_Array; }

// IDX_Base_ListOf_Triangle.

IDX_Base_ListOf_Triangle::IDX_Base_ListOf_Triangle(unsigned int initialSize) {
  RecordList<IDX_Triangle>(m_Array, m_Capacity, m_Size).Create(initialSize);
}

IDX_Base_ListOf_Triangle::~IDX_Base_ListOf_Triangle() {
  RecordList<IDX_Triangle>(m_Array, m_Capacity, m_Size).Destroy();
}

IDX_Bool IDX_Base_ListOf_Triangle::Append(const IDX_Triangle& t) {
  return RecordList<IDX_Triangle>(m_Array, m_Capacity, m_Size).Append(t);
}

void IDX_Base_ListOf_Triangle::RemoveAll() { m_Size = 0; }

unsigned int IDX_Base_ListOf_Triangle::Size() const { return m_Size; }

const IDX_Triangle* IDX_Base_ListOf_Triangle::GetArray() const { return m_Array; }
