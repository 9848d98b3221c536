#include "idxbase/spatial_index.h"

#include <gtest/gtest.h>

#include <cstring>

#include "geometry_test_support.h"

namespace {

using idxbase_test::ExpectPoint;

// The smallest concrete octree.
class TestOctree : public PLMIdxIBaseOctree {
 public:
  explicit TestOctree(IDXOctreeType type) : PLMIdxIBaseOctree(type) {}

  KORStatus Load(const void*, unsigned int) override { return KOR_E_FAIL; }
  unsigned int GetBlockSize() const override { return 0; }
  KORStatus Save(void*, unsigned int) const override { return KOR_E_FAIL; }
  KORStatus IntersectBox(const IDX_Base_BoundingBox&) const override { return KOR_S_FALSE; }
};

TEST(OctreeBase, EmptyTreeHasAZeroBoxAndAnIdentityFrame) {
  const TestOctree octree(IDX_OCTREE_TRIANGLES);
  IDX_Point min = {9, 9, 9}, max = {9, 9, 9};
  octree.GetBB(min, max);
  ExpectPoint(min, 0, 0, 0);
  ExpectPoint(max, 0, 0, 0);
  IDX_Base_4x4Matrix frame;
  frame.m_Matrix[0] = 9;
  min = max = {9, 9, 9};
  octree.GetCuboid(frame, min, max);
  ExpectPoint(min, 0, 0, 0);
  ExpectPoint(max, 0, 0, 0);
  const IDX_Base_4x4Matrix identity;
  EXPECT_EQ(std::memcmp(frame.m_Matrix, identity.m_Matrix, sizeof(frame.m_Matrix)), 0);
}

TEST(OctreeBase, TypeIsTheBlocksFirstWordInMachineOrder) {
  unsigned char block[8] = {0xAA, 0x02, 0x00, 0x00, 0x00, 0x55, 0x55, 0x55};
  EXPECT_EQ(PLMIdxIBaseOctree::GetOctreeType(block + 1), IDX_OCTREE_TRIANGLES);  // unaligned
  const unsigned char negative[4] = {0xFF, 0xFF, 0xFF, 0xFF};
  std::memcpy(block, negative, 4);
  EXPECT_EQ(PLMIdxIBaseOctree::GetOctreeType(block), -1);
}

}  // namespace
