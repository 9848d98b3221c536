// Triangle/box overlap: Akenine-Möller's separating-axis test ("Fast 3D
// Triangle-Box Overlap Testing", 2001), in float.
//
// Everything is expressed relative to the box centre. The thirteen
// candidate axes are tried in a fixed order, cheapest rejections first:
// the nine cross products of the box axes with the triangle's edges, the
// three box faces, then the triangle's plane. Every separation is strict,
// so a triangle that only touches the box overlaps it.
#include "idxbase/geometry.h"

namespace {

struct Vec3 {
  float x, y, z;
};

Vec3 Minus(const float* a, const float* b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
Vec3 Minus(const Vec3& a, const Vec3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec3 Cross(const Vec3& a, const Vec3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
float Dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
float Abs(float v) { return v > 0.0f ? v : -v; }

// True when the projections `pa` and `pb` of two corners both lie beyond
// the box's projection radius `r` on the same side.
bool Separates(float pa, float pb, float r) {
  const float low = pa < pb ? pa : pb;
  const float high = pa < pb ? pb : pa;
  return low > r || high < -r;
}

// The axes box-axis × e for an edge e, each projecting the two corners a
// and b whose projections can differ (the edge's own corners project
// alike).
bool SeparatedOnXCross(const Vec3& e, const Vec3& a, const Vec3& b, const Vec3& h) {
  const float r = Abs(e.z) * h.y + Abs(e.y) * h.z;
  return Separates(e.z * a.y - e.y * a.z, e.z * b.y - e.y * b.z, r);
}

bool SeparatedOnYCross(const Vec3& e, const Vec3& a, const Vec3& b, const Vec3& h) {
  const float r = Abs(e.z) * h.x + Abs(e.x) * h.z;
  return Separates(-e.z * a.x + e.x * a.z, -e.z * b.x + e.x * b.z, r);
}

bool SeparatedOnZCross(const Vec3& e, const Vec3& a, const Vec3& b, const Vec3& h) {
  const float r = Abs(e.y) * h.x + Abs(e.x) * h.y;
  return Separates(e.y * a.x - e.x * a.y, e.y * b.x - e.x * b.y, r);
}

bool SeparatedOnEdgeAxes(const Vec3 (&u)[3], const Vec3 (&e)[3], const Vec3& h) {
  return SeparatedOnXCross(e[0], u[0], u[2], h) || SeparatedOnYCross(e[0], u[0], u[2], h) ||
         SeparatedOnZCross(e[0], u[1], u[2], h) || SeparatedOnXCross(e[1], u[0], u[2], h) ||
         SeparatedOnYCross(e[1], u[0], u[2], h) || SeparatedOnZCross(e[1], u[0], u[1], h) ||
         SeparatedOnXCross(e[2], u[0], u[1], h) || SeparatedOnYCross(e[2], u[0], u[1], h) ||
         SeparatedOnZCross(e[2], u[1], u[2], h);
}

// One box face axis: the three corners' coordinates against the half-size.
bool SeparatedOnFace(float c0, float c1, float c2, float h) {
  float low = c0;
  float high = c0;
  if (c1 < low) low = c1;
  if (c1 > high) high = c1;
  if (c2 < low) low = c2;
  if (c2 > high) high = c2;
  return low > h || high < -h;
}

bool SeparatedOnFaceAxes(const Vec3 (&u)[3], const Vec3& h) {
  return SeparatedOnFace(u[0].x, u[1].x, u[2].x, h.x) ||
         SeparatedOnFace(u[0].y, u[1].y, u[2].y, h.y) ||
         SeparatedOnFace(u[0].z, u[1].z, u[2].z, h.z);
}

// The box corners nearest to and farthest along the normal n, relative to
// the triangle's corner u0, on one axis.
void PlaneExtremes(float n, float u0, float h, float& nearest, float& farthest) {
  nearest = n > 0.0f ? -h - u0 : h - u0;
  farthest = n > 0.0f ? h - u0 : -h - u0;
}

// Whether the triangle's plane, through u0 with normal n, meets the box. A
// zero normal (a degenerate triangle) always meets it.
bool PlaneMeetsBox(const Vec3& n, const Vec3& u0, const Vec3& h) {
  Vec3 nearest;
  Vec3 farthest;
  PlaneExtremes(n.x, u0.x, h.x, nearest.x, farthest.x);
  PlaneExtremes(n.y, u0.y, h.y, nearest.y, farthest.y);
  PlaneExtremes(n.z, u0.z, h.z, nearest.z, farthest.z);
  if (Dot(n, nearest) > 0.0f) return false;
  return Dot(n, farthest) >= 0.0f;
}

}  // namespace

IDX_Bool IDX_Base_GeometryServices::TriangleToBox(const float* const boxCenter,
                                                  const float* const boxHalfSize,
                                                  const float (*const triangle)[3],
                                                  IDX_Bool& overlap) {
  const Vec3 u[3] = {Minus(triangle[0], boxCenter), Minus(triangle[1], boxCenter),
                     Minus(triangle[2], boxCenter)};
  const Vec3 e[3] = {Minus(u[1], u[0]), Minus(u[2], u[1]), Minus(u[0], u[2])};
  const Vec3 h = {boxHalfSize[0], boxHalfSize[1], boxHalfSize[2]};
  const bool separated = SeparatedOnEdgeAxes(u, e, h) || SeparatedOnFaceAxes(u, h) ||
                         !PlaneMeetsBox(Cross(e[0], e[1]), u[0], h);
  overlap = separated ? IDX_False : IDX_True;
  return IDX_True;
}
