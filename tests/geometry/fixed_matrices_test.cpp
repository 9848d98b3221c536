#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "geometry_test_support.h"
#include "idxbase/matrix.h"

namespace {

using idxbase_test::ExpectPoint;

// The 3x3 matrix whose elements are 1..9, row-major.
IDX_Base_3x3Matrix OneToNine() {
  double values[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  return IDX_Base_3x3Matrix(values);
}

IDX_Base_BoundingBox Box(float x0, float y0, float z0, float x1, float y1, float z1) {
  IDX_Base_BoundingBox box;
  const float corners[6] = {x0, y0, z0, x1, y1, z1};
  for (int axis = 0; axis < 3; ++axis) {
    box.m_Min[axis] = corners[axis];
    box.m_Max[axis] = corners[3 + axis];
  }
  return box;
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
  const IDX_Base_3x3Matrix m = OneToNine();
  double line[3], column[3];
  m.GetLine(1, line[0], line[1], line[2]);
  m.GetColumn(1, column[0], column[1], column[2]);
  for (int k = 0; k < 3; ++k) {
    EXPECT_EQ(line[k], 4 + k);
    EXPECT_EQ(column[k], 2 + 3 * k);
  }
}

TEST(Matrix3x3, ScaleAndSumAreElementWise) {
  IDX_Base_3x3Matrix m = OneToNine();
  IDX_Base_3x3Matrix scaled = m * 2.0;
  IDX_Base_3x3Matrix sum = m + scaled;
  sum += IDX_Base_3x3Matrix();
  for (int k = 0; k < 9; ++k) {
    EXPECT_EQ(scaled.GetBuffer()[k], 2.0 * (k + 1));
    EXPECT_EQ(sum.GetBuffer()[k], 3.0 * (k + 1) + (k % 4 == 0 ? 1.0 : 0.0));
  }
  EXPECT_EQ(m.GetBuffer()[0], 1.0);  // the operands are unchanged
}

TEST(Matrix3x3, CubeInertiaIsMassSideSquaredOverSix) {
  IDX_Base_3x3Matrix m = OneToNine();
  m.CalcInertialMatrixForCube(12.0, 2.0);
  for (int k = 0; k < 9; ++k) EXPECT_EQ(m.GetBuffer()[k], k % 4 == 0 ? 8.0 : 0.0);
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
  IDX_Base_3x3Matrix expected;
  a.RightMultiply(a, expected);
  const double kSquare[9] = {30, 36, 42, 66, 81, 96, 102, 126, 150};
  for (int k = 0; k < 9; ++k) EXPECT_EQ(expected.GetBuffer()[k], kSquare[k]);

  IDX_Base_3x3Matrix left = a, right = a;
  left.RightMultiply(a, left);
  a.RightMultiply(right, right);
  for (int k = 0; k < 9; ++k) {
    EXPECT_EQ(left.GetBuffer()[k], kSquare[k]);
    EXPECT_EQ(right.GetBuffer()[k], kSquare[k]);
  }
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
  const IDX_Base_4x4Matrix ma(a), mb(b);
  IDX_Base_4x4Matrix r;
  ma.RightMultiply(mb, r);
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      float sum = 0;
      for (int k = 0; k < 4; ++k) sum += a[4 * i + k] * b[4 * k + j];
      EXPECT_EQ(r.m_Matrix[4 * i + j], sum) << i << "," << j;
    }
  }
  IDX_Base_4x4Matrix inPlace = ma;
  inPlace.RightMultiply(mb, inPlace);
  for (int k = 0; k < 16; ++k) EXPECT_EQ(inPlace.m_Matrix[k], r.m_Matrix[k]);
}

TEST(BoundingBox, DefaultIsTheOriginSoUnionsIncludeIt) {
  IDX_Base_BoundingBox box;
  EXPECT_EQ(box.Volume(), 0.0f);
  box.Union(Box(1, 1, 1, 2, 2, 2));
  for (int axis = 0; axis < 3; ++axis) {
    EXPECT_EQ(box.m_Min[axis], 0.0f);
    EXPECT_EQ(box.m_Max[axis], 2.0f);
  }
}

TEST(BoundingBox, StaticUnionTakesPerAxisExtremes) {
  IDX_Base_BoundingBox a = Box(0, 5, -1, 1, 6, 0), result;
  IDX_Base_BoundingBox::Union(a, Box(-2, 7, -3, 0, 8, 4), result);
  const float kMin[3] = {-2, 5, -3}, kMax[3] = {1, 8, 4};
  for (int axis = 0; axis < 3; ++axis) {
    EXPECT_EQ(result.m_Min[axis], kMin[axis]);
    EXPECT_EQ(result.m_Max[axis], kMax[axis]);
  }
  IDX_Base_BoundingBox::Union(a, result, a);  // into an operand
  EXPECT_EQ(a.Volume(), result.Volume());
  EXPECT_EQ(Box(0, 0, 0, 1, 2, 3).Volume(), 6.0f);
  EXPECT_EQ(Box(1, 0, 0, 0, 2, 3).Volume(), -6.0f);  // inverted boxes are not checked
}

}  // namespace
