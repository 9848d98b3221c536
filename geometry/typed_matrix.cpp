// PLMIdxMatrix: construction, access and the products dispatched on the
// kinds of the two operands.
#include <cstring>

#include "geometry/block_product.h"
#include "idxbase/geometry.h"
#include "idxbase/matrix.h"

namespace {

using idxbase::detail::BlockProduct;
using idxbase::detail::Shape;

// The kinds that take part in the nine-routine table.
bool IsComposable(IDX_MATRIX_TYPE type) {
  return type == IDX_MATRIX_TRANSLATION || type == IDX_MATRIX_ROTATION ||
         type == IDX_MATRIX_STANDARD;
}

void CopyValues(const float* values, IDX_Base_Matrix& target) {
  std::memcpy(target.matrix, values, sizeof(target.matrix));
}

// target = a·b for operands of kinds A and B, of result kind `type`.
template <Shape A, Shape B>
void Product(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b, IDX_MATRIX_TYPE type,
             IDX_Base_Matrix& target) {
  BlockProduct<A, B>(a.matrix, b.matrix, target.matrix);
  target.type = type;
}

}  // namespace

const float PLMIdxMatrix::IdentityMatrix[4][4] = {{1.0f, 0.0f, 0.0f, 0.0f},
                                                  {0.0f, 1.0f, 0.0f, 0.0f},
                                                  {0.0f, 0.0f, 1.0f, 0.0f},
                                                  {0.0f, 0.0f, 0.0f, 1.0f}};

// Construction and access.

PLMIdxMatrix::PLMIdxMatrix() : m_Matrix() { SetIdentity(); }

PLMIdxMatrix::PLMIdxMatrix(const float* values) : m_Matrix() {
  CopyValues(values, m_Matrix);
  m_Matrix.type = static_cast<IDX_MATRIX_TYPE>(IDX_Base_GeometryServices::GetTransfoType(values));
}

PLMIdxMatrix::PLMIdxMatrix(const PLMIdxMatrix& other) = default;

PLMIdxMatrix::PLMIdxMatrix(const IDX_Base_Matrix& other) : m_Matrix(other) {}

PLMIdxMatrix& PLMIdxMatrix::operator=(const PLMIdxMatrix& other) = default;

PLMIdxMatrix& PLMIdxMatrix::operator=(const IDX_Base_Matrix& other) {
  m_Matrix = other;
  return *this;
}

PLMIdxMatrix::PLMIdxMatrix(const PLMIdxMatrix& a, const PLMIdxMatrix& b)
    : PLMIdxMatrix(a.m_Matrix, b.m_Matrix) {}

PLMIdxMatrix::PLMIdxMatrix(const PLMIdxMatrix& a, const IDX_Base_Matrix& b)
    : PLMIdxMatrix(a.m_Matrix, b) {}

PLMIdxMatrix::PLMIdxMatrix(const IDX_Base_Matrix& a, const PLMIdxMatrix& b)
    : PLMIdxMatrix(a, b.m_Matrix) {}

PLMIdxMatrix::PLMIdxMatrix(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b) : PLMIdxMatrix() {
  SetAsMultiply(a, b);
}

void PLMIdxMatrix::SetMatrix(float* values) { *this = PLMIdxMatrix(values); }

void PLMIdxMatrix::SetMatrix(float* values, IDX_MATRIX_TYPE type) {
  CopyValues(values, m_Matrix);
  m_Matrix.type = type;
}

void PLMIdxMatrix::GetMatrix(float* values) const {
  std::memcpy(values, m_Matrix.matrix, sizeof(m_Matrix.matrix));
}

void PLMIdxMatrix::GetIDX_Base_4x4Matrix(IDX_Base_4x4Matrix& matrix) const {
  GetMatrix(matrix.m_Matrix);
}

const float* PLMIdxMatrix::GetMatrix() const { return &m_Matrix.matrix[0][0]; }

IDX_MATRIX_TYPE PLMIdxMatrix::GetType() const { return m_Matrix.type; }

void PLMIdxMatrix::SetIdentity() {
  CopyValues(&IdentityMatrix[0][0], m_Matrix);
  m_Matrix.type = IDX_MATRIX_IDENTITY;
}

// Products.

void PLMIdxMatrix::SetAsMultiply(const PLMIdxMatrix& a, const PLMIdxMatrix& b) {
  SetAsMultiply(a.m_Matrix, b.m_Matrix);
}

void PLMIdxMatrix::SetAsMultiply(const PLMIdxMatrix& a, const IDX_Base_Matrix& b) {
  SetAsMultiply(a.m_Matrix, b);
}

void PLMIdxMatrix::SetAsMultiply(const IDX_Base_Matrix& a, const PLMIdxMatrix& b) {
  SetAsMultiply(a, b.m_Matrix);
}

void PLMIdxMatrix::SetAsMultiply(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b) {
  static_cast<void>(Compose(a, b));
}

bool PLMIdxMatrix::Compose(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b) {
  if (a.type == IDX_MATRIX_IDENTITY) {
    m_Matrix = b;
    return true;
  }
  if (!IsComposable(a.type)) return false;
  if (b.type == IDX_MATRIX_IDENTITY) {
    m_Matrix = a;
    return true;
  }
  if (!IsComposable(b.type)) return false;
  using Routine = void (PLMIdxMatrix::*)(const IDX_Base_Matrix&, const IDX_Base_Matrix&);
  // Rows: a's kind T, R, S; columns: b's kind.
  static constexpr Routine kRoutines[3][3] = {
      {&PLMIdxMatrix::Multiply_TT, &PLMIdxMatrix::Multiply_TR, &PLMIdxMatrix::Multiply_TS},
      {&PLMIdxMatrix::Multiply_RT, &PLMIdxMatrix::Multiply_RR, &PLMIdxMatrix::Multiply_RS},
      {&PLMIdxMatrix::Multiply_ST, &PLMIdxMatrix::Multiply_SR, &PLMIdxMatrix::Multiply_SS}};
  (this->*kRoutines[a.type - 1][b.type - 1])(a, b);
  return true;
}

void PLMIdxMatrix::MultiplyLeft(const PLMIdxMatrix& m) { MultiplyLeft(m.m_Matrix); }

void PLMIdxMatrix::MultiplyLeft(const IDX_Base_Matrix& m) {
  PLMIdxMatrix product;
  if (product.Compose(m, m_Matrix)) m_Matrix = product.m_Matrix;
}

void PLMIdxMatrix::MultiplyRight(const PLMIdxMatrix& m) { MultiplyRight(m.m_Matrix); }

void PLMIdxMatrix::MultiplyRight(const IDX_Base_Matrix& m) {
  PLMIdxMatrix product;
  if (product.Compose(m_Matrix, m)) m_Matrix = product.m_Matrix;
}

// The nine routines. T and R operands carry c = 0 and w = 1. TS and ST
// read their S operand as affine too (its column 3 is dropped); RS, SR and
// SS read S operands whole, so what they carry in column 3 reaches the
// result.

void PLMIdxMatrix::Multiply_TT(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b) {
  Product<Shape::kTranslation, Shape::kTranslation>(a, b, IDX_MATRIX_TRANSLATION, m_Matrix);
}

void PLMIdxMatrix::Multiply_TR(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b) {
  Product<Shape::kTranslation, Shape::kLinear>(a, b, IDX_MATRIX_STANDARD, m_Matrix);
}

void PLMIdxMatrix::Multiply_TS(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b) {
  Product<Shape::kTranslation, Shape::kAffine>(a, b, IDX_MATRIX_STANDARD, m_Matrix);
}

void PLMIdxMatrix::Multiply_RT(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b) {
  Product<Shape::kLinear, Shape::kTranslation>(a, b, IDX_MATRIX_STANDARD, m_Matrix);
}

void PLMIdxMatrix::Multiply_RR(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b) {
  Product<Shape::kLinear, Shape::kLinear>(a, b, IDX_MATRIX_ROTATION, m_Matrix);
}

void PLMIdxMatrix::Multiply_RS(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b) {
  Product<Shape::kLinear, Shape::kGeneral>(a, b, IDX_MATRIX_STANDARD, m_Matrix);
}

void PLMIdxMatrix::Multiply_ST(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b) {
  Product<Shape::kAffine, Shape::kTranslation>(a, b, IDX_MATRIX_STANDARD, m_Matrix);
}

void PLMIdxMatrix::Multiply_SR(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b) {
  Product<Shape::kGeneral, Shape::kLinear>(a, b, IDX_MATRIX_STANDARD, m_Matrix);
}

void PLMIdxMatrix::Multiply_SS(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b) {
  Product<Shape::kGeneral, Shape::kGeneral>(a, b, IDX_MATRIX_STANDARD, m_Matrix);
}
