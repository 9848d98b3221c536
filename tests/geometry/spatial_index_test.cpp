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

  IDXOctreeType Type() const { return m_OctreeType; }
  std::uint32_t LeafCapacity() const { return m_LeafCapacity; }

  KORStatus Load(const void*, unsigned int) override { return KOR_E_FAIL; }
  unsigned int GetBlockSize() const override { return 0; }
  KORStatus Save(void*, unsigned int) const override { return KOR_E_FAIL; }
  KORStatus IntersectBox(const IDX_Base_BoundingBox&) const override { return KOR_S_FALSE; }
};

TEST(OctreeBase, StartsEmpty) {
  EXPECT_EQ(TestOctree(static_cast<IDXOctreeType>(42)).Type(), 42);  // any kind is kept
  const TestOctree octree(IDX_OCTREE_TRIANGLES);
  EXPECT_EQ(octree.Type(), IDX_OCTREE_TRIANGLES);
  EXPECT_EQ(octree.GetDepth(), 0);
  EXPECT_EQ(octree.IsACuboid(), IDX_False);
  EXPECT_EQ(octree.LeafCapacity(), 0xFFFFu);
  IDX_Point min = {9, 9, 9}, max = {9, 9, 9};
  octree.GetBB(min, max);
  ExpectPoint(min, 0, 0, 0);
  ExpectPoint(max, 0, 0, 0);
  IDX_Base_4x4Matrix frame;
  frame.m_Matrix[0] = 9;
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

class TestRTree : public IDX_Base_RTree {
 public:
  bool IsEmpty() const {
    return m_Root == nullptr && m_NodeCount == 0 && m_Nodes == nullptr && m_EntryCount == 0;
  }
  std::uint32_t FanOut() const { return m_MaxEntriesPerNode; }
};

TEST(RTreeBase, StartsEmptyWithTwelveEntriesPerNode) {
  const TestRTree tree;
  EXPECT_TRUE(tree.IsEmpty());
  EXPECT_EQ(tree.FanOut(), 12u);
}

}  // namespace
