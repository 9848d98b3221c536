// Stateless geometric operations: classification of 4x4 transformations
// and the triangle/box overlap test.
#ifndef IDXBASE_GEOMETRY_H_
#define IDXBASE_GEOMETRY_H_

#include "idxbase/base_types.h"
#include "idxbase/export.h"

// Geometric services with static members only; no data, nothing to own,
// callable from any thread. Copy and move assignment exist and do nothing.
class IDXBASE_API IDX_Base_GeometryServices {
 public:
  IDX_Base_GeometryServices& operator=(const IDX_Base_GeometryServices&) { return *this; }
  IDX_Base_GeometryServices& operator=(IDX_Base_GeometryServices&&) noexcept { return *this; }

  // The kind of the row-major 4x4 transformation at `matrix` (sixteen
  // floats, translation at positions 12..14), as an IDX_MATRIX_TYPE value:
  // + 2 when the upper-left 3x3 block differs from the identity's,
  // + 1 when the translation differs from 0 or position 15 from 1.
  // Exact comparisons (a NaN counts as a difference); positions 3, 7 and 11
  // are not examined.
  static unsigned int GetTransfoType(const float* const matrix);

  // Sets `overlap` to IDX_True when the triangle (three corners of three
  // floats) and the axis-aligned box (centre and half-sizes, three floats
  // each) have at least one point in common, IDX_False otherwise; contact
  // counts as overlap. Always returns IDX_True.
  //
  // Akenine-Möller's separating-axis test, in float: the nine cross
  // products of the box axes with the triangle's edges, the three box
  // faces, then the triangle's plane, stopping at the first separating
  // axis; no square roots or divisions.
  static IDX_Bool TriangleToBox(const float* const boxCenter, const float* const boxHalfSize,
                                const float (*const triangle)[3], IDX_Bool& overlap);
};

#endif  // IDXBASE_GEOMETRY_H_
