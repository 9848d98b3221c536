// The axis-aligned bounding box.
#include "idxbase/matrix.h"

IDX_Base_BoundingBox::IDX_Base_BoundingBox() : m_Min{0.0f, 0.0f, 0.0f}, m_Max{0.0f, 0.0f, 0.0f} {}

IDX_Base_BoundingBox::IDX_Base_BoundingBox(const IDX_Base_BoundingBox& other) = default;

IDX_Base_BoundingBox& IDX_Base_BoundingBox::operator=(const IDX_Base_BoundingBox& other) = default;

void IDX_Base_BoundingBox::Union(const IDX_Base_BoundingBox& other) { Union(*this, other, *this); }

void IDX_Base_BoundingBox::Union(const IDX_Base_BoundingBox& a, const IDX_Base_BoundingBox& b,
                                 IDX_Base_BoundingBox& result) {
  for (int axis = 0; axis < 3; ++axis) {
    result.m_Min[axis] = b.m_Min[axis] < a.m_Min[axis] ? b.m_Min[axis] : a.m_Min[axis];
    result.m_Max[axis] = b.m_Max[axis] > a.m_Max[axis] ? b.m_Max[axis] : a.m_Max[axis];
  }
}

float IDX_Base_BoundingBox::Volume() const {
  return (m_Max[1] - m_Min[1]) * (m_Max[0] - m_Min[0]) * (m_Max[2] - m_Min[2]);
}
