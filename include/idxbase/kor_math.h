// Float points and vectors of the foundation layer.
#ifndef IDXBASE_KOR_MATH_H_
#define IDXBASE_KOR_MATH_H_

// A point in space: three public floats. A plain value.
struct KORMathPointf {
  KORMathPointf() = default;
  KORMathPointf(float px, float py, float pz) : x(px), y(py), z(pz) {}

  float x = 0.0f;
  float y = 0.0f;
  float z = 0.0f;
};

// A direction in space: three public floats. A plain value.
struct KORMathVectorf {
  KORMathVectorf() = default;
  KORMathVectorf(float vx, float vy, float vz) : x(vx), y(vy), z(vz) {}

  float x = 0.0f;
  float y = 0.0f;
  float z = 0.0f;
};

#endif  // IDXBASE_KOR_MATH_H_
