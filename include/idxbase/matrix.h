// Geometry value types: points, triangle records, fixed 3x3 and 4x4
// matrices, axis-aligned bounding boxes, and the typed transformation
// matrix that knows its kind.
//
// Conventions shared by every type here: matrices are row-major, points
// and vectors are row vectors multiplied on the left (q = p·M), and a 4x4
// transformation keeps its linear part L in the upper-left 3x3 block and
// its translation t in row 3 (positions 12, 13 and 14), so that a point
// maps to p·L + t. Column 3 (positions 3, 7, 11) and position 15 take no
// part in point transformation.
//
// All types are plain values: they allocate nothing, own nothing, and are
// used by one thread at a time (concurrent reads of one object are safe).
#ifndef IDXBASE_MATRIX_H_
#define IDXBASE_MATRIX_H_

#include <cstdint>

#include "idxbase/export.h"
#include "idxbase/kor_math.h"

// A point in space, three floats. It is also the element of
// IDX_Base_ListOf_Point and the corner type of the octree base.
struct IDX_Point {
  float x;
  float y;
  float z;
};

// A triangle of a mesh: the indices of its three corners, in corner
// order, in the point list of the same mesh. The library never reads the
// values; it stores and copies whole records (IDX_Base_ListOf_Triangle),
// so a caller may also pack other 32-bit data into them.
struct IDX_Triangle {
  std::uint32_t corner[3];
};

static_assert(sizeof(IDX_Point) == 12 && sizeof(IDX_Triangle) == 12,
              "points and triangles are 12-byte records");

// A 3x3 matrix of doubles (inertia tensors, linear maps), row-major:
// element (i, j) at position 3·i + j. Copies copy the nine elements.
class IDXBASE_API IDX_Base_3x3Matrix {
 public:
  // The identity.
  IDX_Base_3x3Matrix();
  // Copies nine doubles, row-major. Requires: `values` holds nine doubles.
  explicit IDX_Base_3x3Matrix(double* const values);
  IDX_Base_3x3Matrix(const IDX_Base_3x3Matrix& other);
  IDX_Base_3x3Matrix& operator=(const IDX_Base_3x3Matrix& other);

  // A new matrix: every element multiplied by `s`.
  IDX_Base_3x3Matrix operator*(const double& s);
  // A new matrix: the element-wise sum.
  IDX_Base_3x3Matrix operator+(const IDX_Base_3x3Matrix& b);
  // The element-wise sum, in place.
  IDX_Base_3x3Matrix& operator+=(const IDX_Base_3x3Matrix& b);

  // Becomes the inertia tensor of a solid cube about its centre: the
  // identity with (side · mass · side) / 6 on the diagonal.
  void CalcInertialMatrixForCube(const double& mass, const double& side);

  // a, b, c = elements (0, j), (1, j), (2, j). Requires: 0 <= j <= 2.
  void GetColumn(int j, double& a, double& b, double& c) const;
  // a, b, c = elements (i, 0), (i, 1), (i, 2). Requires: 0 <= i <= 2.
  void GetLine(int i, double& a, double& b, double& c) const;

  // q = p·M: sums formed in double from the widened coordinates, each
  // rounded to float. Requires: `q` is not `p` (p is read for every
  // coordinate of q).
  void Multiply(const IDX_Point& p, IDX_Point& q) const;
  // r = this·b in double. `r` may be this matrix or `b`.
  void RightMultiply(const IDX_Base_3x3Matrix& b, IDX_Base_3x3Matrix& r) const;

  // Back to the identity.
  void Reset();
  // All nine elements 0.
  void set0();
  // True only for the exact identity (no tolerance; a NaN gives false).
  bool isIdentity();
  // The nine elements, row-major, writable.
  double* GetBuffer();

 private:
  double m_Matrix[9];
};

// A 4x4 float matrix read as an affine transformation of row vectors
// (see the conventions above). The sixteen floats are public, row-major:
// element (i, j) at m_Matrix[4·i + j]. Copies copy the sixteen floats.
class IDXBASE_API IDX_Base_4x4Matrix {
 public:
  // The identity.
  IDX_Base_4x4Matrix();
  // Copies sixteen floats, row-major. Requires: `values` holds sixteen
  // floats.
  explicit IDX_Base_4x4Matrix(float* const values);
  IDX_Base_4x4Matrix(const IDX_Base_4x4Matrix& other);
  IDX_Base_4x4Matrix& operator=(const IDX_Base_4x4Matrix& other);

  // q = p·L + t in float; column 3 is not used and nothing is divided.
  // Requires: `q` is not `p`.
  void Multiply(const IDX_Point& p, IDX_Point& q) const;
  // r = this·b, the full 4x4 product in float. `r` may be this matrix or
  // `b`.
  void RightMultiply(const IDX_Base_4x4Matrix& b, IDX_Base_4x4Matrix& r) const;

  float m_Matrix[16];
};

// An axis-aligned box of floats: the minimum corner (x, y, z) and the
// maximum corner. A default box is the single point at the origin, not an
// empty box, so a union with it always includes the origin. The corners
// are public and never checked for order. Copies copy the six floats.
class IDXBASE_API IDX_Base_BoundingBox {
 public:
  // All six values 0.
  IDX_Base_BoundingBox();
  IDX_Base_BoundingBox(const IDX_Base_BoundingBox& other);
  IDX_Base_BoundingBox& operator=(const IDX_Base_BoundingBox& other);

  // Grows this box to enclose `other`: per axis the smaller minimum and the
  // larger maximum.
  void Union(const IDX_Base_BoundingBox& other);
  // `result` encloses `a` and `b`; `result` may be `a` or `b`.
  static void Union(const IDX_Base_BoundingBox& a, const IDX_Base_BoundingBox& b,
                    IDX_Base_BoundingBox& result);
  // (max.y − min.y) · (max.x − min.x) · (max.z − min.z), in float and in
  // this order; an inverted box gives whatever sign the product has.
  float Volume() const;

  float m_Min[3];
  float m_Max[3];
};

// The kind of transformation a typed matrix holds. Values outside the four
// named ones can be stored (SetMatrix with a stated type); products and
// transformations then leave their target unchanged.
enum IDX_MATRIX_TYPE : int {
  IDX_MATRIX_IDENTITY = 0,     // the identity
  IDX_MATRIX_TRANSLATION = 1,  // T: L = identity, translation t
  IDX_MATRIX_ROTATION = 2,     // R: any L (rotation, scale, shear), t = 0
  IDX_MATRIX_STANDARD = 3,     // S: any L and t
};

// A 4x4 float transformation with its kind. Types 0, 1 and 2 imply that
// column 3 is 0 and position 15 is 1; a type-3 matrix may carry other
// values there, which some products keep.
struct IDX_Base_Matrix {
  float matrix[4][4];
  IDX_MATRIX_TYPE type;
};

// A transformation that knows its kind (IDX_MATRIX_TYPE), so that
// products, inversion and point transformation do only the work the kind
// needs: composing two translations is three additions, transforming a
// point by a translation three more, and an identity operand is a copy.
//
// The kind is trustworthy when it comes from classification (the
// constructor and SetMatrix from values), from a product or from a copy.
// SetMatrix(values, type) takes the caller's word; a wrong kind makes later
// products and transformations skip terms.
//
// Products (SetAsMultiply) compose a·b in the row-vector convention: a
// point transformed by a·b is transformed by a, then by b. When an
// operand's type lies outside 0..3 (the identity on the left excepted, see
// SetAsMultiply) nothing is written: the two-operand constructors then give
// the identity, and MultiplyLeft and MultiplyRight leave this matrix
// unchanged.
//
// Every operation taking a PLMIdxMatrix operand also takes a plain
// IDX_Base_Matrix, with the same behaviour. A plain value: copies copy the
// sixteen floats and the type; one thread at a time.
class IDXBASE_API PLMIdxMatrix {
 public:
  // The identity, type 0.
  PLMIdxMatrix();
  // Copies sixteen floats and classifies them
  // (IDX_Base_GeometryServices::GetTransfoType).
  explicit PLMIdxMatrix(const float* values);
  PLMIdxMatrix(const PLMIdxMatrix& other);
  PLMIdxMatrix(const IDX_Base_Matrix& other);  // NOLINT: the same value, converts implicitly
  PLMIdxMatrix& operator=(const PLMIdxMatrix& other);
  PLMIdxMatrix& operator=(const IDX_Base_Matrix& other);
  // The product a·b (SetAsMultiply); the identity when nothing is written.
  PLMIdxMatrix(const PLMIdxMatrix& a, const PLMIdxMatrix& b);
  PLMIdxMatrix(const PLMIdxMatrix& a, const IDX_Base_Matrix& b);
  PLMIdxMatrix(const IDX_Base_Matrix& a, const PLMIdxMatrix& b);
  PLMIdxMatrix(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b);

  // Copies sixteen floats and classifies them.
  void SetMatrix(float* values);
  // Copies sixteen floats and takes `type` as stated, unchecked.
  void SetMatrix(float* values, IDX_MATRIX_TYPE type);
  // Copy the sixteen floats out.
  void GetMatrix(float* values) const;
  void GetIDX_Base_4x4Matrix(IDX_Base_4x4Matrix& matrix) const;
  // The sixteen floats in place, row-major.
  const float* GetMatrix() const;
  IDX_MATRIX_TYPE GetType() const;

  // this = a·b, dispatched on the two types, in this order:
  //   a is type 0: this = b, floats and type, whatever b's type;
  //   a's type is not 1..3: nothing is written;
  //   b is type 0: this = a;
  //   b's type is not 1..3: nothing is written;
  //   otherwise one of the nine Multiply_XY routines (X = a's letter, Y =
  //   b's), whose result is type 1 for TT, 2 for RR and 3 otherwise.
  // Requires: this matrix is neither a nor b (the routines write while
  // they read); MultiplyLeft and MultiplyRight allow that.
  void SetAsMultiply(const PLMIdxMatrix& a, const PLMIdxMatrix& b);
  void SetAsMultiply(const PLMIdxMatrix& a, const IDX_Base_Matrix& b);
  void SetAsMultiply(const IDX_Base_Matrix& a, const PLMIdxMatrix& b);
  void SetAsMultiply(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b);
  // this = m·this, through a temporary (`m` may be this matrix). Unchanged
  // when SetAsMultiply would write nothing.
  void MultiplyLeft(const PLMIdxMatrix& m);
  void MultiplyLeft(const IDX_Base_Matrix& m);
  // this = this·m, as MultiplyLeft.
  void MultiplyRight(const PLMIdxMatrix& m);
  void MultiplyRight(const IDX_Base_Matrix& m);

  // Determinant of L, in float, expanded along its first column.
  float ComputeDeterminant() const;
  // Determinant of all sixteen floats, expanded along column 3 (zero
  // elements skipped); equal to ComputeDeterminant for an affine matrix.
  float ComputeFullDeterminant() const;
  // `inverse` = the inverse of this matrix read as affine (column 3 and
  // position 15 ignored): adjugate(L)/det, translation −t·L⁻¹, same type.
  // Leaves `inverse` unchanged when |det L| <= 1e-6. `inverse` may be this
  // matrix.
  void GetInvertedMatrix(PLMIdxMatrix& inverse) const;

  // q = p transformed by `m` according to its type: 0 copies p, 1 gives
  // p + t, 2 gives p·L, 3 gives p·L + t, in float; any other type leaves q
  // unchanged. `q` may be `p`.
  static void Multiply(const IDX_Base_Matrix& m, const IDX_Point& p, IDX_Point& q);
  static void Multiply(const IDX_Base_Matrix& m, const KORMathPointf& p, KORMathPointf& q);
  // u = v·L for types 2 and 3; types 0 and 1 copy v (a translation does
  // not move a direction); any other type leaves u unchanged. `u` may be
  // `v`.
  static void Multiply(const IDX_Base_Matrix& m, const KORMathVectorf& v, KORMathVectorf& u);
  // The same, by this matrix.
  void Multiply(const IDX_Point& p, IDX_Point& q) const;
  void Multiply(const KORMathPointf& p, KORMathPointf& q) const;
  void Multiply(const KORMathVectorf& v, KORMathVectorf& u) const;

 private:
  // Identity, type 0.
  void SetIdentity();
  // SetAsMultiply; false when it wrote nothing.
  IDXBASE_LOCAL bool Compose(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b);

  // The nine products by type pair, named after the two letters (a on the
  // left): each writes a·b into this matrix using what its operand kinds
  // guarantee (identity blocks, zero translation, c = 0 and w = 1 for T
  // and R; TS and ST treat their S operand as affine, RS, SR and SS keep
  // what the S operands carry in column 3) and sets the result's type.
  void Multiply_RR(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b);
  void Multiply_RS(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b);
  void Multiply_RT(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b);
  void Multiply_SR(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b);
  void Multiply_SS(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b);
  void Multiply_ST(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b);
  void Multiply_TR(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b);
  void Multiply_TS(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b);
  void Multiply_TT(const IDX_Base_Matrix& a, const IDX_Base_Matrix& b);

  // The 4x4 float identity.
  static const float IdentityMatrix[4][4];

  IDX_Base_Matrix m_Matrix;
};

#endif  // IDXBASE_MATRIX_H_
