// Geometry: triangle/box overlap tests per second, point transformation by
// each kind of typed matrix against the untyped 4x4 product, and point-list
// appends against std::vector::push_back.
#include "idxbase/geometry.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

#include "idxbase/geometry_lists.h"
#include "idxbase/matrix.h"

namespace {

struct Triangle {
  float corner[3][3];
};

// Triangles of edge up to `size` with corners within `spread` of the unit
// box's centre: a spread of 3 leaves most of them apart from the box.
std::vector<Triangle> Triangles(float spread, float size) {
  std::mt19937 random(1);
  std::uniform_real_distribution<float> place(-spread, spread), offset(-size, size);
  std::vector<Triangle> triangles(4096);
  for (Triangle& t : triangles) {
    const float anchor[3] = {place(random), place(random), place(random)};
    for (auto& corner : t.corner) {
      for (int axis = 0; axis < 3; ++axis) corner[axis] = anchor[axis] + offset(random);
    }
  }
  return triangles;
}

// Arguments: spread in tenths, triangle size in tenths.
void BM_TriangleToBox(benchmark::State& state) {
  const std::vector<Triangle> triangles =
      Triangles(static_cast<float>(state.range(0)) / 10, static_cast<float>(state.range(1)) / 10);
  const float center[3] = {0, 0, 0}, halfSize[3] = {0.5f, 0.5f, 0.5f};
  std::size_t next = 0;
  std::int64_t overlapping = 0;
  for (auto _ : state) {
    IDX_Bool overlap;
    IDX_Base_GeometryServices::TriangleToBox(center, halfSize, triangles[next].corner, overlap);
    overlapping += overlap;
    next = (next + 1) % triangles.size();
  }
  state.SetItemsProcessed(state.iterations());
  state.counters["overlap%"] =
      100.0 * static_cast<double>(overlapping) / static_cast<double>(state.iterations());
}
BENCHMARK(BM_TriangleToBox)->Args({30, 5})->Args({20, 10})->Args({8, 10});

std::vector<IDX_Point> Points() {
  std::mt19937 random(2);
  std::uniform_real_distribution<float> coordinate(-10, 10);
  std::vector<IDX_Point> points(1024);
  for (IDX_Point& p : points) p = {coordinate(random), coordinate(random), coordinate(random)};
  return points;
}

// A matrix of the kind state.range(0): identity, translation, linear, both.
PLMIdxMatrix MatrixOfType(std::int64_t type) {
  float values[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  if (type == 2 || type == 3) {
    values[1] = 0.5f;
    values[4] = -0.5f;
    values[10] = 2;
  }
  if (type == 1 || type == 3) {
    values[12] = 1;
    values[13] = 2;
    values[14] = 3;
  }
  return PLMIdxMatrix(values);
}

void BM_TypedPointTransform(benchmark::State& state) {
  const PLMIdxMatrix m = MatrixOfType(state.range(0));
  const std::vector<IDX_Point> points = Points();
  state.SetLabel(m.GetType() == 0   ? "identity"
                 : m.GetType() == 1 ? "translation"
                 : m.GetType() == 2 ? "linear"
                                    : "general");
  for (auto _ : state) {
    for (const IDX_Point& p : points) {
      IDX_Point q;
      m.Multiply(p, q);
      benchmark::DoNotOptimize(q);
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(points.size()));
}
BENCHMARK(BM_TypedPointTransform)->DenseRange(0, 3);

// The untyped affine product, whatever the matrix holds.
void BM_Fixed4x4PointTransform(benchmark::State& state) {
  const PLMIdxMatrix typed = MatrixOfType(3);
  IDX_Base_4x4Matrix m;
  typed.GetIDX_Base_4x4Matrix(m);
  const std::vector<IDX_Point> points = Points();
  for (auto _ : state) {
    for (const IDX_Point& p : points) {
      IDX_Point q;
      m.Multiply(p, q);
      benchmark::DoNotOptimize(q);
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(points.size()));
}
BENCHMARK(BM_Fixed4x4PointTransform);

// Appends of state.range(0) points, copied from a mesh already in memory,
// to a list that starts small.
void BM_PointListAppend(benchmark::State& state) {
  const std::vector<IDX_Point> mesh(static_cast<std::size_t>(state.range(0)), {1, 2, 3});
  for (auto _ : state) {
    IDX_Base_ListOf_Point list(0);
    for (const IDX_Point& p : mesh) list.Append(p);
    benchmark::DoNotOptimize(list.GetArray());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_PointListAppend)->Arg(1 << 10)->Arg(1 << 20);

void BM_VectorPushBack(benchmark::State& state) {
  const std::vector<IDX_Point> mesh(static_cast<std::size_t>(state.range(0)), {1, 2, 3});
  for (auto _ : state) {
    std::vector<IDX_Point> list;
    for (const IDX_Point& p : mesh) list.push_back(p);
    benchmark::DoNotOptimize(list.data());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_VectorPushBack)->Arg(1 << 10)->Arg(1 << 20);

}  // namespace

BENCHMARK_MAIN();
