#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "geometry_test_support.h"
#include "idxbase/geometry.h"
#include "idxbase/matrix.h"

namespace {

using idxbase_test::ExpectPoint;

constexpr IDX_MATRIX_TYPE kIdentity = IDX_MATRIX_IDENTITY;
constexpr IDX_MATRIX_TYPE kT = IDX_MATRIX_TRANSLATION;
constexpr IDX_MATRIX_TYPE kR = IDX_MATRIX_ROTATION;
constexpr IDX_MATRIX_TYPE kS = IDX_MATRIX_STANDARD;

// Sixteen floats: the identity with some {position, value} changes.
struct Values {
  float v[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
};
Values With(std::initializer_list<std::pair<int, float>> changes) {
  Values values;
  for (const auto& [position, value] : changes) values.v[position] = value;
  return values;
}
PLMIdxMatrix Matrix(std::initializer_list<std::pair<int, float>> changes) {
  return PLMIdxMatrix(With(changes).v);
}
PLMIdxMatrix Translation(float x, float y, float z) { return Matrix({{12, x}, {13, y}, {14, z}}); }
// The quarter turn whose L has the rows (0, 1, 0), (-1, 0, 0), (0, 0, 1).
PLMIdxMatrix QuarterTurn() { return Matrix({{0, 0}, {1, 1}, {4, -1}, {5, 0}}); }
// Type 3 and not affine: column 3 = (0.5, -1, 2), w = 3.
PLMIdxMatrix Projective() {
  return Matrix({{0, 2}, {3, 0.5f}, {6, 1}, {7, -1}, {11, 2}, {12, 4}, {15, 3}});
}

bool SameMatrix(const PLMIdxMatrix& a, const PLMIdxMatrix& b) {
  return a.GetType() == b.GetType() && std::memcmp(a.GetMatrix(), b.GetMatrix(), 64) == 0;
}

// The double-precision reference: a plain 4x4 matrix acting on row vectors.
using Ref = std::array<std::array<double, 4>, 4>;

Ref ToRef(const float* m, bool affine = false) {
  Ref r;
  for (int k = 0; k < 16; ++k) r[k / 4][k % 4] = m[k];
  if (affine) {
    r[0][3] = r[1][3] = r[2][3] = 0;
    r[3][3] = 1;
  }
  return r;
}

Ref Times(const Ref& a, const Ref& b) {
  Ref r{};
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      for (int k = 0; k < 4; ++k) r[i][j] += a[i][k] * b[k][j];
    }
  }
  return r;
}

// Each value within 1e-5 of the reference's largest magnitude (at least 1).
void ExpectClose(const float* actual, const Ref& expected) {
  double scale = 1;
  for (const auto& row : expected) {
    for (double e : row) scale = std::max(scale, std::fabs(e));
  }
  for (int k = 0; k < 16; ++k) {
    EXPECT_NEAR(actual[k], expected[k / 4][k % 4], 1e-5 * scale) << "position " << k;
  }
}

// Random affine matrices of a given type. Linear parts are diagonally
// dominant (diagonal ±1..2, other elements within ±0.3), so they are well
// conditioned and never the identity.
class RandomMatrices {
 public:
  PLMIdxMatrix Next(IDX_MATRIX_TYPE type) {
    Values values;
    for (int k = 0; k < 11 && (type == kR || type == kS); ++k) {
      if (k % 4 == 3) continue;
      values.v[k] = k % 5 == 0 ? (random_() % 2 ? 1 : -1) * Uniform(1, 2) : Uniform(-0.3, 0.3);
    }
    for (int k = 12; k < 15 && (type == kT || type == kS); ++k) values.v[k] = Uniform(-10, 10);
    return PLMIdxMatrix(values.v);
  }
  float Uniform(double low, double high) {
    return static_cast<float>(std::uniform_real_distribution<double>(low, high)(random_));
  }

 private:
  std::mt19937 random_{7};
};

TEST(TypedMatrix, ClassifiesItsValues) {
  const struct {
    Values values;
    IDX_MATRIX_TYPE type;
  } kCases[] = {
      {With({}), kIdentity},
      {With({{12, 1}, {13, 2}, {14, 3}}), kT},
      {With({{15, 2}}), kT},                          // w counts with the translation
      {With({{0, 0}, {1, 1}, {4, -1}, {5, 0}}), kR},  // a quarter turn
      {With({{0, 2}, {14, 3}}), kS},
      {With({{3, 1}, {7, 2}, {11, 3}}), kIdentity},  // column 3 is not examined
  };
  EXPECT_EQ(PLMIdxMatrix().GetType(), kIdentity);
  for (const auto& c : kCases) {
    Values copy = c.values;
    PLMIdxMatrix m;
    m.SetMatrix(copy.v);
    EXPECT_EQ(m.GetType(), c.type);
    EXPECT_TRUE(SameMatrix(PLMIdxMatrix(c.values.v), m));
    IDX_Base_4x4Matrix fixed;
    m.GetIDX_Base_4x4Matrix(fixed);
    EXPECT_EQ(std::memcmp(fixed.m_Matrix, c.values.v, 64), 0);
  }
}

TEST(TypedMatrix, StatedTypeIsTrusted) {
  Values values = With({{12, 5}});
  PLMIdxMatrix m;
  m.SetMatrix(values.v, kR);  // wrong: the translation is skipped from now on
  IDX_Point q;
  m.Multiply(IDX_Point{1, 2, 3}, q);
  ExpectPoint(q, 1, 2, 3);
}

TEST(TypedMatrix, OnlyTsAndStDropColumnThreeOfTheirStandardOperand) {
  const PLMIdxMatrix s = Projective(), t = Translation(1, -2, 3), r = QuarterTurn();
  const struct {
    const PLMIdxMatrix &a, &b;
    bool affineA, affineB;  // whether the routine reads the operand as affine
  } kCases[] = {
      {t, s, false, true},  {s, t, true, false},  {r, s, false, false},
      {s, r, false, false}, {s, s, false, false},
  };
  for (const auto& c : kCases) {
    const PLMIdxMatrix product(c.a, c.b);
    EXPECT_EQ(product.GetType(), kS);
    ExpectClose(product.GetMatrix(),
                Times(ToRef(c.a.GetMatrix(), c.affineA), ToRef(c.b.GetMatrix(), c.affineB)));
  }
}

TEST(TypedMatrix, UnknownTypesWriteNothing) {
  Values values = With({{0, 3}, {13, 1}});
  PLMIdxMatrix unknown;
  unknown.SetMatrix(values.v, static_cast<IDX_MATRIX_TYPE>(7));
  const PLMIdxMatrix t = Translation(1, 2, 3), before = QuarterTurn();

  PLMIdxMatrix m = before;
  const std::pair<PLMIdxMatrix, PLMIdxMatrix> kPairs[] = {
      {unknown, t}, {t, unknown}, {unknown, PLMIdxMatrix()}};
  for (const auto& [a, b] : kPairs) {
    m.SetAsMultiply(a, b);
    EXPECT_TRUE(SameMatrix(m, before));
    EXPECT_TRUE(SameMatrix(PLMIdxMatrix(a, b), PLMIdxMatrix()));  // starts as the identity
  }
  m.MultiplyLeft(unknown);
  m.MultiplyRight(unknown);
  EXPECT_TRUE(SameMatrix(m, before));
  m.SetAsMultiply(PLMIdxMatrix(), unknown);  // an identity on the left copies b, whatever it is
  EXPECT_TRUE(SameMatrix(m, unknown));

  IDX_Point q = {9, 9, 9};
  KORMathVectorf u(9, 9, 9);
  unknown.Multiply(IDX_Point{1, 1, 1}, q);
  unknown.Multiply(KORMathVectorf(1, 1, 1), u);
  ExpectPoint(q, 9, 9, 9);
  ExpectPoint(u, 9, 9, 9);
}

// Near-singular matrices (det 1e-9) leave the target unchanged.
TEST(TypedMatrix, InverseOfASingularMatrixWritesNothing) {
  const PLMIdxMatrix target = Translation(7, 7, 7);
  PLMIdxMatrix inverse = target;
  Matrix({{0, 0.001f}, {5, 0.001f}, {10, 0.001f}}).GetInvertedMatrix(inverse);
  EXPECT_TRUE(SameMatrix(inverse, target));
}

TEST(TypedMatrix, Determinants) {
  const PLMIdxMatrix m = Matrix({{0, 2}, {1, 1}, {4, 3}, {5, 4}, {10, 5}, {12, 9}});
  EXPECT_EQ(m.ComputeDeterminant(), 25.0f);  // (2·4 − 1·3)·5
  EXPECT_EQ(m.ComputeFullDeterminant(), 25.0f);
  // A column-3 element of 0 skips its minor, even an infinite one.
  const float inf = std::numeric_limits<float>::infinity();
  EXPECT_EQ(Matrix({{0, 2}, {12, inf}}).ComputeFullDeterminant(), 2.0f);
  EXPECT_EQ(Projective().ComputeDeterminant(), 2.0f);
  EXPECT_EQ(Projective().ComputeFullDeterminant(), 4.0f);  // 6 from row 3, −2 from row 0
}

// The product has a linear part when either operand has one, and a
// translation when either has one: its type is the bitwise or of theirs.
TEST(TypedMatrix, ProductsFollowTheDispatchTableAndAgreeWithDoubles) {
  RandomMatrices random;
  for (int ta = 0; ta < 4; ++ta) {
    for (int tb = 0; tb < 4; ++tb) {
      SCOPED_TRACE(testing::Message() << "types " << ta << " x " << tb);
      for (int n = 0; n < 50; ++n) {
        const PLMIdxMatrix a = random.Next(static_cast<IDX_MATRIX_TYPE>(ta));
        const PLMIdxMatrix b = random.Next(static_cast<IDX_MATRIX_TYPE>(tb));
        ASSERT_EQ(a.GetType(), ta);
        ASSERT_EQ(b.GetType(), tb);
        const PLMIdxMatrix product(a, b);
        ASSERT_EQ(product.GetType(), ta | tb);
        // The kind's zero and one elements are exact, column 3 stays 0.
        const float* m = product.GetMatrix();
        EXPECT_EQ(IDX_Base_GeometryServices::GetTransfoType(m),
                  static_cast<unsigned>(product.GetType()));
        EXPECT_TRUE(m[3] == 0 && m[7] == 0 && m[11] == 0);
        ExpectClose(m, Times(ToRef(a.GetMatrix()), ToRef(b.GetMatrix())));

        PLMIdxMatrix left = b, right = a, self = a;
        left.MultiplyLeft(a);
        right.MultiplyRight(b);
        self.MultiplyRight(self);
        EXPECT_TRUE(SameMatrix(left, product));
        EXPECT_TRUE(SameMatrix(right, product));
        EXPECT_TRUE(SameMatrix(self, PLMIdxMatrix(a, a)));
      }
    }
  }
}

TEST(TypedMatrix, InversesAndTransformationsAgreeWithDoubles) {
  RandomMatrices random;
  for (IDX_MATRIX_TYPE type : {kIdentity, kT, kR, kS}) {
    SCOPED_TRACE(testing::Message() << "type " << type);
    for (int n = 0; n < 200; ++n) {
      const PLMIdxMatrix m = random.Next(type);
      const Ref ref = ToRef(m.GetMatrix());
      PLMIdxMatrix inverse = m;
      inverse.GetInvertedMatrix(inverse);
      EXPECT_EQ(inverse.GetType(), type);
      ExpectClose(Values().v, Times(ToRef(inverse.GetMatrix()), ref));

      const float x = random.Uniform(-5, 5), y = random.Uniform(-5, 5), z = random.Uniform(-5, 5);
      IDX_Point p = {x, y, z}, q;
      KORMathPointf kp(x, y, z), kq;
      KORMathVectorf v(x, y, z), u;
      IDX_Base_Matrix base = {{}, m.GetType()};
      m.GetMatrix(&base.matrix[0][0]);
      PLMIdxMatrix::Multiply(base, p, q);
      m.Multiply(kp, kq);
      m.Multiply(v, u);
      m.Multiply(p, p);  // in place
      m.Multiply(v, v);
      const float got[5][3] = {
          {q.x, q.y, q.z}, {kq.x, kq.y, kq.z}, {p.x, p.y, p.z}, {u.x, u.y, u.z}, {v.x, v.y, v.z}};
      for (int j = 0; j < 3; ++j) {
        const double direction = x * ref[0][j] + y * ref[1][j] + z * ref[2][j];
        const double magnitude = std::fabs(x * ref[0][j]) + std::fabs(y * ref[1][j]) +
                                 std::fabs(z * ref[2][j]) + std::fabs(ref[3][j]);
        const double tolerance = 1e-5 * std::max(1.0, magnitude);
        for (int k = 0; k < 3; ++k) EXPECT_NEAR(got[k][j], direction + ref[3][j], tolerance);
        for (int k = 3; k < 5; ++k) EXPECT_NEAR(got[k][j], direction, tolerance);
      }
    }
  }
}

}  // namespace
