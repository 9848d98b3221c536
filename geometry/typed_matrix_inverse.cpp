// PLMIdxMatrix: determinants and inversion.
#include <cmath>

#include "idxbase/matrix.h"

namespace {

using Matrix4 = float[4][4];

// The determinant of the 3x3 matrix made of rows r0 < r1 < r2 and columns
// 0..2 of `m`, expanded along its first column, in float.
float Minor3(const Matrix4& m, int r0, int r1, int r2) {
  return m[r0][0] * (m[r1][1] * m[r2][2] - m[r1][2] * m[r2][1]) -
         m[r1][0] * (m[r0][1] * m[r2][2] - m[r0][2] * m[r2][1]) +
         m[r2][0] * (m[r0][1] * m[r1][2] - m[r0][2] * m[r1][1]);
}

// The cofactor of element (i, j) of the 3x3 block L. Taking the other rows
// and columns in cyclic order gives the cofactor's sign by itself.
float Cofactor(const Matrix4& m, int i, int j) {
  const int i1 = (i + 1) % 3;
  const int i2 = (i + 2) % 3;
  const int j1 = (j + 1) % 3;
  const int j2 = (j + 2) % 3;
  return m[i1][j1] * m[i2][j2] - m[i1][j2] * m[i2][j1];
}

// Rows other than `row` among 0..3, in increasing order.
void OtherRows(int row, int (&rows)[3]) {
  int n = 0;
  for (int r = 0; r < 4; ++r) {
    if (r != row) rows[n++] = r;
  }
}

}  // namespace

float PLMIdxMatrix::ComputeDeterminant() const { return Minor3(m_Matrix.matrix, 0, 1, 2); }

float PLMIdxMatrix::ComputeFullDeterminant() const {
  const Matrix4& m = m_Matrix.matrix;
  float determinant = 0.0f;
  for (int row = 0; row < 4; ++row) {
    if (m[row][3] == 0.0f) continue;
    int rows[3];
    OtherRows(row, rows);
    const float term = m[row][3] * Minor3(m, rows[0], rows[1], rows[2]);
    determinant = row % 2 == 0 ? determinant - term : determinant + term;  // signs −, +, −, +
  }
  return determinant;
}

void PLMIdxMatrix::GetInvertedMatrix(PLMIdxMatrix& inverse) const {
  const float determinant = ComputeDeterminant();
  if (!(std::fabs(static_cast<double>(determinant)) > 1e-6)) return;
  const float r = 1.0f / determinant;
  const Matrix4& m = m_Matrix.matrix;
  IDX_Base_Matrix result = {};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) result.matrix[i][j] = Cofactor(m, j, i) * r;
  }
  for (int j = 0; j < 3; ++j) {
    result.matrix[3][j] = -(m[3][0] * result.matrix[0][j] + m[3][1] * result.matrix[1][j] +
                            m[3][2] * result.matrix[2][j]);
  }
  result.matrix[3][3] = 1.0f;
  result.type = m_Matrix.type;
  inverse = result;
}
