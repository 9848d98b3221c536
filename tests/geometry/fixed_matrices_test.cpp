#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "geometry_test_support.h"
#include "idxbase/matrix.h"

namespace {

using idxbase_test::ExpectPoint;
using Doubles = std::vector<double>;
using Floats = std::vector<float>;

// The 3x3 matrix whose elements are 1..9, row-major.
IDX_Base_3x3Matrix OneToNine() {
  double values[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  return IDX_Base_3x3Matrix(values);
}

// The nine elements, row-major.
Doubles Elements(IDX_Base_3x3Matrix m) { return Doubles(m.GetBuffer(), m.GetBuffer() + 9); }

IDX_Base_BoundingBox Box(float x0, float y0, float z0, float x1, float y1, float z1) {
  IDX_Base_BoundingBox box;
  const float corners[6] = {x0, y0, z0, x1, y1, z1};
  for (int axis = 0; axis < 3; ++axis) {
    box.m_Min[axis] = corners[axis];
    box.m_Max[axis] = corners[3 + axis];
  }
  return box;
}

// The minimum, then the maximum.
Floats Corners(const IDX_Base_BoundingBox& box) {
  return {box.m_Min[0], box.m_Min[1], box.m_Min[2], box.m_Max[0], box.m_Max[1], box.m_Max[2]};
}

TEST(Matrix3x3, IdentityIsExact) {
  IDX_Base_3x3Matrix m;
  EXPECT_TRUE(m.isIdentity());
  m.set0();
  EXPECT_FALSE(m.isIdentity());
  m.Reset();
  EXPECT_TRUE(m.isIdentity());
  m.GetBuffer()[4] = std::nextafter(1.0, 2.0);
  EXPECT_FALSE(m.isIdentity());
  m.Reset();
  m.GetBuffer()[1] = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(m.isIdentity());
}

TEST(Matrix3x3, LinesAreRowsAndColumnsAreColumns) {
  double line[3], column[3];
  OneToNine().GetLine(1, line[0], line[1], line[2]);
  OneToNine().GetColumn(1, column[0], column[1], column[2]);
  EXPECT_EQ(Doubles(line, line + 3), (Doubles{4, 5, 6}));
  EXPECT_EQ(Doubles(column, column + 3), (Doubles{2, 5, 8}));
}

TEST(Matrix3x3, ScaleSumAndCubeInertiaAreElementWise) {
  IDX_Base_3x3Matrix m = OneToNine();
  IDX_Base_3x3Matrix scaled = m * 2.0;
  IDX_Base_3x3Matrix sum = m + scaled;
  sum += IDX_Base_3x3Matrix();
  EXPECT_EQ(Elements(scaled), (Doubles{2, 4, 6, 8, 10, 12, 14, 16, 18}));
  EXPECT_EQ(Elements(sum), (Doubles{4, 6, 9, 12, 16, 18, 21, 24, 28}));
  EXPECT_EQ(Elements(m), Elements(OneToNine()));  // the operands are unchanged
  // Mass · side² / 6 on the diagonal, whatever was there.
  m.CalcInertialMatrixForCube(12.0, 2.0);
  EXPECT_EQ(Elements(m), (Doubles{8, 0, 0, 0, 8, 0, 0, 0, 8}));
}

TEST(Matrix3x3, MultiplyTakesRowVectorsAndSumsInDouble) {
  IDX_Point q;
  OneToNine().Multiply({1, 0, 0}, q);
  ExpectPoint(q, 1, 2, 3);  // row 0
  OneToNine().Multiply({1, 1, 1}, q);
  ExpectPoint(q, 12, 15, 18);  // column sums

  // 1 + 2^-30 is 1 as a float: only a double sum keeps the difference.
  IDX_Base_3x3Matrix m;
  m.GetBuffer()[0] = 1.0 + std::ldexp(1.0, -30);
  m.GetBuffer()[3] = -1.0;
  m.Multiply({1, 1, 0}, q);
  EXPECT_EQ(q.x, std::ldexp(1.0f, -30));
}

TEST(Matrix3x3, RightMultiplyMayWriteIntoAnOperand) {
  const IDX_Base_3x3Matrix a = OneToNine();
  IDX_Base_3x3Matrix square, left = a, right = a;
  a.RightMultiply(a, square);
  left.RightMultiply(a, left);
  a.RightMultiply(right, right);
  const Doubles kSquare = {30, 36, 42, 66, 81, 96, 102, 126, 150};
  EXPECT_EQ(Elements(square), kSquare);
  EXPECT_EQ(Elements(left), kSquare);
  EXPECT_EQ(Elements(right), kSquare);
}

TEST(Matrix4x4, MultiplyAddsTheTranslationAndIgnoresColumnThree) {
  IDX_Base_4x4Matrix m;
  m.m_Matrix[12] = 1;
  m.m_Matrix[13] = 2;
  m.m_Matrix[14] = 3;
  IDX_Point q;
  m.Multiply({0, 0, 0}, q);
  ExpectPoint(q, 1, 2, 3);
  for (int position : {3, 7, 11, 15}) m.m_Matrix[position] = 5;
  m.m_Matrix[1] = 2;  // L row 0 = (1, 2, 0)
  m.Multiply({1, 1, 1}, q);
  ExpectPoint(q, 2, 5, 4);
}

TEST(Matrix4x4, RightMultiplyIsTheFullProduct) {
  float a[16], b[16];
  for (int k = 0; k < 16; ++k) {
    a[k] = static_cast<float>(k + 1);
    b[k] = static_cast<float>(16 - k);
  }
  Floats expected(16, 0.0f);
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      for (int k = 0; k < 4; ++k) expected[4 * i + j] += a[4 * i + k] * b[4 * k + j];
    }
  }
  const IDX_Base_4x4Matrix ma(a), mb(b);
  IDX_Base_4x4Matrix r, inPlace = ma;
  ma.RightMultiply(mb, r);
  inPlace.RightMultiply(mb, inPlace);
  EXPECT_EQ(Floats(r.m_Matrix, r.m_Matrix + 16), expected);
  EXPECT_EQ(Floats(inPlace.m_Matrix, inPlace.m_Matrix + 16), expected);
}

// A default box is the origin, so unions with it include the origin.
TEST(BoundingBox, UnionsTakePerAxisExtremes) {
  IDX_Base_BoundingBox box;
  EXPECT_EQ(box.Volume(), 0.0f);
  box.Union(Box(1, 1, 1, 2, 2, 2));
  EXPECT_EQ(Corners(box), (Floats{0, 0, 0, 2, 2, 2}));

  IDX_Base_BoundingBox a = Box(0, 5, -1, 1, 6, 0), result;
  IDX_Base_BoundingBox::Union(a, Box(-2, 7, -3, 0, 8, 4), result);
  EXPECT_EQ(Corners(result), (Floats{-2, 5, -3, 1, 8, 4}));
  IDX_Base_BoundingBox::Union(a, result, a);  // into an operand
  EXPECT_EQ(Corners(a), Corners(result));
  EXPECT_EQ(Box(0, 0, 0, 1, 2, 3).Volume(), 6.0f);
  EXPECT_EQ(Box(1, 0, 0, 0, 2, 3).Volume(), -6.0f);  // inverted boxes are not checked
}

}  // namespace
