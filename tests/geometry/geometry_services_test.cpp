#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "idxbase/geometry.h"

namespace {

// GetTransfoType.

TEST(GeometryServices, TransfoTypeFlagsLinearPartAndTranslation) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const struct {
    int position;  // -1: the identity itself
    float value;
    unsigned int type;
  } kCases[] = {
      {-1, 0, 0},     {13, 5, 1},  {15, 2, 1}, {12, -0.0f, 0}, {14, nan, 1}, {0, 2, 2},
      {6, 1e-30f, 2}, {9, nan, 2}, {3, 1, 0},  {7, 1, 0},      {11, nan, 0},
  };
  for (const auto& c : kCases) {
    float m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    if (c.position >= 0) m[c.position] = c.value;
    EXPECT_EQ(IDX_Base_GeometryServices::GetTransfoType(m), c.type) << "position " << c.position;
  }
  float both[16] = {2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 5, 0, 1};
  EXPECT_EQ(IDX_Base_GeometryServices::GetTransfoType(both), 3u);
}

// TriangleToBox.

struct Triangle {
  float corner[3][3];
};

bool Overlaps(const float* center, const float* halfSize, const Triangle& t) {
  IDX_Bool overlap = static_cast<IDX_Bool>(7);
  EXPECT_EQ(IDX_Base_GeometryServices::TriangleToBox(center, halfSize, t.corner, overlap),
            IDX_True);
  EXPECT_TRUE(overlap == IDX_True || overlap == IDX_False);
  return overlap == IDX_True;
}

TEST(GeometryServices, TriangleToBoxAgainstTheUnitCube) {
  const float center[3] = {0, 0, 0}, halfSize[3] = {1, 1, 1};
  const struct {
    Triangle triangle;
    bool overlap;
  } kCases[] = {
      {{{{0, 0, 0}, {0.5f, 0, 0}, {0, 0.5f, 0}}}, true},    // inside
      {{{{5, 0, 0}, {6, 0, 0}, {5, 1, 0}}}, false},         // beyond x = 1
      {{{{1, 0, 0}, {2, 1, 0}, {2, -1, 0}}}, true},         // a corner on a face
      {{{{-10, -10, 0}, {10, -10, 0}, {0, 10, 0}}}, true},  // all corners outside
      {{{{1.5f, 0.9f, 0.9f}, {0.9f, 1.5f, 0.9f}, {0.9f, 0.9f, 1.5f}}}, false},  // plane misses
      {{{{2.9f, 0, 0}, {0, 2.9f, 0}, {0, 0, 2.9f}}}, true},
      {{{{3.1f, 0, 0}, {0, 3.1f, 0}, {0, 0, 3.1f}}}, false},
      {{{{3, 0, 0}, {0, 3, 0}, {0, 0, 3}}}, true},  // plane through (1, 1, 1)
      {{{{0.2f, 0.2f, 0.2f}, {0.2f, 0.2f, 0.2f}, {0.2f, 0.2f, 0.2f}}}, true},  // a point
      {{{{2, 0, 0}, {0, 2, 0}, {2, 0, 5}}}, true},         // an edge touches x = y = 1
      {{{{2, 0.5f, 1}, {0.5f, 2, 1}, {5, 5, 1}}}, false},  // only z × edge separates
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(Overlaps(center, halfSize, c.triangle), c.overlap) << &c - kCases;
  }
}

// Differential test against an exact oracle. Every coordinate lies on the
// grid of step 2^-20 with at most 23 significant bits, so it is an exact
// float; the oracle works on the grid integers with 128-bit arithmetic and
// decides overlap exactly. Only float rounding at (near) contact can make
// the float test disagree.
__extension__ typedef __int128 Int;

constexpr int kGridBits = 20;

struct IVec {
  Int x, y, z;
};

IVec Sub(const IVec& a, const IVec& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
IVec Cross(const IVec& a, const IVec& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Int Dot(const IVec& a, const IVec& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Int Abs(Int v) { return v < 0 ? -v : v; }

struct Case {
  IVec center, halfSize, corner[3];
};

struct Verdict {
  bool overlap;
  // The exact distance (separated) or penetration depth (overlapping) in
  // space units, the extreme over the candidate axes.
  long double distance;
};

// The generic separating-axis theorem for a box and a triangle: they are
// disjoint exactly when one of the box's face normals, the triangle's
// normal or a cross product of a box axis with an edge strictly separates
// their projections. A zero axis never separates.
Verdict ExactOverlap(const Case& c) {
  const IVec u[3] = {Sub(c.corner[0], c.center), Sub(c.corner[1], c.center),
                     Sub(c.corner[2], c.center)};
  const IVec edges[3] = {Sub(u[1], u[0]), Sub(u[2], u[1]), Sub(u[0], u[2])};
  IVec axes[13] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, Cross(edges[0], edges[1])};
  int count = 4;
  for (const IVec& e : edges) {
    for (int k = 0; k < 3; ++k) axes[count++] = Cross(axes[k], e);
  }
  bool separated = false;
  long double gap = -std::numeric_limits<long double>::infinity();
  for (const IVec& a : axes) {
    const long double length = std::sqrt(static_cast<long double>(Dot(a, a)));
    if (length == 0) continue;
    const Int radius = Abs(a.x) * c.halfSize.x + Abs(a.y) * c.halfSize.y + Abs(a.z) * c.halfSize.z;
    const Int p[3] = {Dot(a, u[0]), Dot(a, u[1]), Dot(a, u[2])};
    const Int low = std::min({p[0], p[1], p[2]}), high = std::max({p[0], p[1], p[2]});
    // Positive: the axis separates by that much; otherwise minus the
    // overlap of the projections.
    const Int axisGap = std::max(low - radius, -radius - high);
    separated = separated || axisGap > 0;
    gap = std::max(gap, static_cast<long double>(axisGap) / length);
  }
  return {!separated, std::fabs(std::ldexp(gap, -kGridBits))};
}

bool FloatOverlap(const Case& c) {
  const auto f = [](Int v) { return std::ldexp(static_cast<float>(v), -kGridBits); };
  const float center[3] = {f(c.center.x), f(c.center.y), f(c.center.z)};
  const float halfSize[3] = {f(c.halfSize.x), f(c.halfSize.y), f(c.halfSize.z)};
  Triangle t;
  for (int i = 0; i < 3; ++i) {
    t.corner[i][0] = f(c.corner[i].x);
    t.corner[i][1] = f(c.corner[i].y);
    t.corner[i][2] = f(c.corner[i].z);
  }
  IDX_Bool overlap = IDX_False;
  IDX_Base_GeometryServices::TriangleToBox(center, halfSize, t.corner, overlap);
  return overlap == IDX_True;
}

// Random triangles around a box of roughly unit size: half of them large,
// half small. Contact cases are in the table test above.
class TriangleGenerator {
 public:
  Case Next(bool large) {
    Case c;
    c.center = {Coordinate(0.25), Coordinate(0.25), Coordinate(0.25)};
    c.halfSize = {Between(0.25, 0.75), Between(0.25, 0.75), Between(0.25, 0.75)};
    const IVec middle = large ? c.center : Around(c.center, 2.0);
    for (IVec& v : c.corner) v = Around(middle, large ? 2.5 : 0.2);
    return c;
  }

 private:
  static std::int64_t Units(double length) {
    return static_cast<std::int64_t>(std::ldexp(length, kGridBits));
  }
  Int Coordinate(double range) {
    return std::uniform_int_distribution<std::int64_t>(-Units(range), Units(range))(random_);
  }
  Int Between(double low, double high) {
    return std::uniform_int_distribution<std::int64_t>(Units(low), Units(high))(random_);
  }
  IVec Around(const IVec& p, double range) {
    return {p.x + Coordinate(range), p.y + Coordinate(range), p.z + Coordinate(range)};
  }

  std::mt19937_64 random_{20240611};
};

TEST(GeometryServices, TriangleToBoxAgreesWithAnExactOracle) {
  constexpr int kTriangles = 100000;
  TriangleGenerator generator;
  int overlapping = 0;
  for (int n = 0; n < kTriangles; ++n) {
    const Case c = generator.Next(n % 2 == 0);
    const Verdict exact = ExactOverlap(c);
    overlapping += exact.overlap ? 1 : 0;
    // Only float rounding of the projections can explain a disagreement:
    // the triangle must lie within a few float steps of contact.
    if (FloatOverlap(c) != exact.overlap) {
      EXPECT_LT(exact.distance, 4e-6L)
          << "case " << n << (exact.overlap ? " overlaps" : " is apart");
    }
  }
  EXPECT_GT(overlapping, kTriangles / 5);
  EXPECT_LT(overlapping, kTriangles * 4 / 5);
}

}  // namespace
