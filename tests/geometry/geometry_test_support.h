// Helpers shared by the geometry tests.
#ifndef IDXBASE_TESTS_GEOMETRY_GEOMETRY_TEST_SUPPORT_H_
#define IDXBASE_TESTS_GEOMETRY_GEOMETRY_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include "idxbase/matrix.h"

namespace idxbase_test {

// Exact comparison of the three coordinates of any point or vector type.
template <typename P>
void ExpectPoint(const P& p, float x, float y, float z) {
  EXPECT_EQ(p.x, x);
  EXPECT_EQ(p.y, y);
  EXPECT_EQ(p.z, z);
}

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_GEOMETRY_GEOMETRY_TEST_SUPPORT_H_
