// Classification of a 4x4 transformation into the kinds of IDX_MATRIX_TYPE.
#include "idxbase/geometry.h"

namespace {

// Positions of the upper-left 3x3 block and its identity values.
constexpr int kLinearPositions[9] = {0, 1, 2, 4, 5, 6, 8, 9, 10};
constexpr float kLinearIdentity[9] = {1.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 1.0f};

// Exact comparison in which a NaN always differs.
bool Differs(float value, float expected) { return !(value == expected); }

bool LinearPartDiffers(const float* m) {
  for (int k = 0; k < 9; ++k) {
    if (Differs(m[kLinearPositions[k]], kLinearIdentity[k])) return true;
  }
  return false;
}

bool TranslationPartDiffers(const float* m) {
  return Differs(m[12], 0.0f) || Differs(m[13], 0.0f) || Differs(m[14], 0.0f) ||
         Differs(m[15], 1.0f);
}

}  // namespace

unsigned int IDX_Base_GeometryServices::GetTransfoType(const float* const matrix) {
  return (LinearPartDiffers(matrix) ? 2u : 0u) + (TranslationPartDiffers(matrix) ? 1u : 0u);
}
