// PLMIdxMatrix: transformation of points and vectors according to the
// matrix's kind. A point is a row vector: q_j = x·L(0, j) + y·L(1, j) +
// z·L(2, j) (+ t_j), in float, with the kind dropping the identity and
// zero blocks. The input is read whole before the output is written, so
// they may be the same object.
#include "idxbase/matrix.h"

namespace {

using Matrix4 = float[4][4];

// Both point types and the vector type hold public floats x, y, z.
template <typename P>
void Translate(const Matrix4& m, const P& p, P& q) {
  const float x = p.x, y = p.y, z = p.z;
  q.x = x + m[3][0];
  q.y = y + m[3][1];
  q.z = z + m[3][2];
}

template <typename P>
void ApplyLinear(const Matrix4& m, const P& p, P& q) {
  const float x = p.x, y = p.y, z = p.z;
  q.x = x * m[0][0] + y * m[1][0] + z * m[2][0];
  q.y = x * m[0][1] + y * m[1][1] + z * m[2][1];
  q.z = x * m[0][2] + y * m[1][2] + z * m[2][2];
}

template <typename P>
void ApplyAffine(const Matrix4& m, const P& p, P& q) {
  const float x = p.x, y = p.y, z = p.z;
  q.x = x * m[0][0] + y * m[1][0] + z * m[2][0] + m[3][0];
  q.y = x * m[0][1] + y * m[1][1] + z * m[2][1] + m[3][1];
  q.z = x * m[0][2] + y * m[1][2] + z * m[2][2] + m[3][2];
}

template <typename P>
void TransformPoint(const IDX_Base_Matrix& m, const P& p, P& q) {
  switch (m.type) {
    case IDX_MATRIX_IDENTITY:
      q = p;
      return;
    case IDX_MATRIX_TRANSLATION:
      Translate(m.matrix, p, q);
      return;
    case IDX_MATRIX_ROTATION:
      ApplyLinear(m.matrix, p, q);
      return;
    case IDX_MATRIX_STANDARD:
      ApplyAffine(m.matrix, p, q);
      return;
  }
}

// A direction ignores the translation.
void TransformVector(const IDX_Base_Matrix& m, const KORMathVectorf& v, KORMathVectorf& u) {
  switch (m.type) {
    case IDX_MATRIX_IDENTITY:
    case IDX_MATRIX_TRANSLATION:
      u = v;
      return;
    case IDX_MATRIX_ROTATION:
    case IDX_MATRIX_STANDARD:
      ApplyLinear(m.matrix, v, u);
      return;
  }
}

}  // namespace

void PLMIdxMatrix::Multiply(const IDX_Base_Matrix& m, const IDX_Point& p, IDX_Point& q) {
  TransformPoint(m, p, q);
}

void PLMIdxMatrix::Multiply(const IDX_Base_Matrix& m, const KORMathPointf& p, KORMathPointf& q) {
  TransformPoint(m, p, q);
}

void PLMIdxMatrix::Multiply(const IDX_Base_Matrix& m, const KORMathVectorf& v, KORMathVectorf& u) {
  TransformVector(m, v, u);
}

void PLMIdxMatrix::Multiply(const IDX_Point& p, IDX_Point& q) const {
  TransformPoint(m_Matrix, p, q);
}

void PLMIdxMatrix::Multiply(const KORMathPointf& p, KORMathPointf& q) const {
  TransformPoint(m_Matrix, p, q);
}

void PLMIdxMatrix::Multiply(const KORMathVectorf& v, KORMathVectorf& u) const {
  TransformVector(m_Matrix, v, u);
}
