// The product of two 4x4 float transformations whose kinds are known at
// compile time: the arithmetic shared by PLMIdxMatrix's nine product
// routines.
//
// A kind (Shape) says which elements are known to be 0 or 1. Element (i, j)
// of a·b is Σ_k a(i, k)·b(k, j) over k = 0..3 with the known factors folded
// away: a term with a known 0 factor is dropped, a known 1 factor is not
// multiplied, and the remaining terms are added in the order of k. So the
// product of two translations adds their translations and nothing else,
// and the product of two general matrices is the full sixteen-element
// product, from one definition. The result is written element by element,
// row by row, while the operands are read: it must not alias them.
#ifndef IDXBASE_GEOMETRY_BLOCK_PRODUCT_H_
#define IDXBASE_GEOMETRY_BLOCK_PRODUCT_H_

#include <cstddef>
#include <utility>

namespace idxbase::detail {

// What a kind guarantees about the blocks of a matrix: L (upper-left 3x3),
// t (row 3, columns 0..2), c (column 3, rows 0..2) and w (position 15).
enum class Shape {
  kTranslation,  // L = identity, any t, c = 0, w = 1
  kLinear,       // any L, t = 0, c = 0, w = 1
  kAffine,       // any L and t, c = 0, w = 1
  kGeneral,      // nothing known
};

enum class Known { kZero, kOne, kAny };

constexpr Known ElementOf(Shape shape, int i, int j) {
  if (shape == Shape::kGeneral) return Known::kAny;
  if (i < 3 && j < 3) {  // L
    if (shape != Shape::kTranslation) return Known::kAny;
    return i == j ? Known::kOne : Known::kZero;
  }
  if (j == 3) return i == 3 ? Known::kOne : Known::kZero;       // c and w
  return shape == Shape::kLinear ? Known::kZero : Known::kAny;  // t
}

// What is known of the term a(i, k)·b(k, j).
constexpr Known TermOf(Shape a, Shape b, int i, int j, int k) {
  const Known left = ElementOf(a, i, k);
  const Known right = ElementOf(b, k, j);
  if (left == Known::kZero || right == Known::kZero) return Known::kZero;
  if (left == Known::kOne && right == Known::kOne) return Known::kOne;
  return Known::kAny;
}

using Matrix4 = float[4][4];

// The term a(i, k)·b(k, j), multiplying only by factors that are not a
// known 1.
template <Shape A, Shape B, int I, int J, int K>
float Term(const Matrix4& a, const Matrix4& b) {
  constexpr Known left = ElementOf(A, I, K);
  constexpr Known right = ElementOf(B, K, J);
  if constexpr (left == Known::kOne && right == Known::kOne) {
    return 1.0f;
  } else if constexpr (left == Known::kOne) {
    return b[K][J];
  } else if constexpr (right == Known::kOne) {
    return a[I][K];
  } else {
    return a[I][K] * b[K][J];
  }
}

// Element (I, J) of a·b from term K on; `sum` holds the terms before K
// once `kStarted` (a lone term is not added to 0, so it keeps its value
// exactly, sign of zero included).
template <Shape A, Shape B, int I, int J, int K = 0, bool kStarted = false>
float Element(const Matrix4& a, const Matrix4& b, float sum = 0.0f) {
  if constexpr (K == 4) {
    return kStarted ? sum : 0.0f;
  } else if constexpr (TermOf(A, B, I, J, K) == Known::kZero) {
    return Element<A, B, I, J, K + 1, kStarted>(a, b, sum);
  } else {
    const float term = Term<A, B, I, J, K>(a, b);
    return Element<A, B, I, J, K + 1, true>(a, b, kStarted ? sum + term : term);
  }
}

template <Shape A, Shape B, std::size_t... N>
void WriteProduct(const Matrix4& a, const Matrix4& b, Matrix4& result, std::index_sequence<N...>) {
  ((result[N / 4][N % 4] = Element<A, B, N / 4, N % 4>(a, b)), ...);
}

// result = a·b for operands of kinds A and B. Requires: `result` is
// neither `a` nor `b`.
template <Shape A, Shape B>
void BlockProduct(const Matrix4& a, const Matrix4& b, Matrix4& result) {
  WriteProduct<A, B>(a, b, result, std::make_index_sequence<16>());
}

}  // namespace idxbase::detail

#endif  // IDXBASE_GEOMETRY_BLOCK_PRODUCT_H_
