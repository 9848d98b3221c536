// The fixed 3x3 (double) and 4x4 (float) matrices.
#include <cstring>

#include "idxbase/matrix.h"

namespace {

constexpr double kIdentity3[9] = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};
constexpr float kIdentity4[16] = {1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f,
                                  0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f};

// Row i of `a` times column j of `b`, both n x n row-major, summed in the
// element type's precision in the order k = 0, 1, ...
template <int N, typename T>
T RowTimesColumn(const T* a, const T* b, int i, int j) {
  T sum = a[N * i] * b[j];
  for (int k = 1; k < N; ++k) sum += a[N * i + k] * b[N * k + j];
  return sum;
}

// r = a·b for n x n row-major matrices; every element is computed before
// any is stored, so `r` may alias `a` or `b`.
template <int N, typename T>
void MultiplySquare(const T* a, const T* b, T* r) {
  T product[N * N];
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) product[N * i + j] = RowTimesColumn<N>(a, b, i, j);
  }
  std::memcpy(r, product, sizeof(product));
}

}  // namespace

// IDX_Base_3x3Matrix.

IDX_Base_3x3Matrix::IDX_Base_3x3Matrix() { Reset(); }

IDX_Base_3x3Matrix::IDX_Base_3x3Matrix(double* const values) {
  std::memcpy(m_Matrix, values, sizeof(m_Matrix));
}

IDX_Base_3x3Matrix::IDX_Base_3x3Matrix(const IDX_Base_3x3Matrix& other) = default;

IDX_Base_3x3Matrix& IDX_Base_3x3Matrix::operator=(const IDX_Base_3x3Matrix& other) = default;

IDX_Base_3x3Matrix IDX_Base_3x3Matrix::operator*(const double& s) {
  IDX_Base_3x3Matrix result(*this);
  for (double& element : result.m_Matrix) element *= s;
  return result;
}

IDX_Base_3x3Matrix IDX_Base_3x3Matrix::operator+(const IDX_Base_3x3Matrix& b) {
  IDX_Base_3x3Matrix result(*this);
  result += b;
  return result;
}

IDX_Base_3x3Matrix& IDX_Base_3x3Matrix::operator+=(const IDX_Base_3x3Matrix& b) {
  for (int k = 0; k < 9; ++k) m_Matrix[k] += b.m_Matrix[k];
  return *this;
}

void IDX_Base_3x3Matrix::CalcInertialMatrixForCube(const double& mass, const double& side) {
  Reset();
  const double moment = (side * mass * side) / 6.0;
  m_Matrix[0] = m_Matrix[4] = m_Matrix[8] = moment;
}

void IDX_Base_3x3Matrix::GetColumn(int j, double& a, double& b, double& c) const {
  a = m_Matrix[j];
  b = m_Matrix[3 + j];
  c = m_Matrix[6 + j];
}

void IDX_Base_3x3Matrix::GetLine(int i, double& a, double& b, double& c) const {
  a = m_Matrix[3 * i];
  b = m_Matrix[3 * i + 1];
  c = m_Matrix[3 * i + 2];
}

void IDX_Base_3x3Matrix::Multiply(const IDX_Point& p, IDX_Point& q) const {
  const double* m = m_Matrix;
  q.x = static_cast<float>(double{p.x} * m[0] + double{p.y} * m[3] + double{p.z} * m[6]);
  q.y = static_cast<float>(double{p.x} * m[1] + double{p.y} * m[4] + double{p.z} * m[7]);
  q.z = static_cast<float>(double{p.x} * m[2] + double{p.y} * m[5] + double{p.z} * m[8]);
}

void IDX_Base_3x3Matrix::RightMultiply(const IDX_Base_3x3Matrix& b, IDX_Base_3x3Matrix& r) const {
  MultiplySquare<3>(m_Matrix, b.m_Matrix, r.m_Matrix);
}

void IDX_Base_3x3Matrix::Reset() { std::memcpy(m_Matrix, kIdentity3, sizeof(m_Matrix)); }

void IDX_Base_3x3Matrix::set0() {
  for (double& element : m_Matrix) element = 0.0;
}

bool IDX_Base_3x3Matrix::isIdentity() {
  for (int k = 0; k < 9; ++k) {
    if (!(m_Matrix[k] == kIdentity3[k])) return false;
  }
  return true;
}

double* IDX_Base_3x3Matrix::GetBuffer() { return m_Matrix; }

// IDX_Base_4x4Matrix.

IDX_Base_4x4Matrix::IDX_Base_4x4Matrix() { std::memcpy(m_Matrix, kIdentity4, sizeof(m_Matrix)); }

IDX_Base_4x4Matrix::IDX_Base_4x4Matrix(float* const values) {
  std::memcpy(m_Matrix, values, sizeof(m_Matrix));
}

IDX_Base_4x4Matrix::IDX_Base_4x4Matrix(const IDX_Base_4x4Matrix& other) = default;

IDX_Base_4x4Matrix& IDX_Base_4x4Matrix::operator=(const IDX_Base_4x4Matrix& other) = default;

void IDX_Base_4x4Matrix::Multiply(const IDX_Point& p, IDX_Point& q) const {
  const float* m = m_Matrix;
  q.x = p.x * m[0] + p.y * m[4] + p.z * m[8] + m[12];
  q.y = p.x * m[1] + p.y * m[5] + p.z * m[9] + m[13];
  q.z = p.x * m[2] + p.y * m[6] + p.z * m[10] + m[14];
}

void IDX_Base_4x4Matrix::RightMultiply(const IDX_Base_4x4Matrix& b, IDX_Base_4x4Matrix& r) const {
  MultiplySquare<4>(m_Matrix, b.m_Matrix, r.m_Matrix);
}
