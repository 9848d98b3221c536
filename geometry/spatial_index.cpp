// The octree and R-tree bases.
#include "idxbase/spatial_index.h"

#include <cstdint>
#include <cstring>

namespace {

constexpr IDX_Point kOrigin = {0.0f, 0.0f, 0.0f};
constexpr std::uint32_t kDefaultLeafCapacity = 0xFFFF;
constexpr std::uint32_t kDefaultEntriesPerNode = 12;

}  // namespace

// PLMIdxIBaseOctree.

PLMIdxIBaseOctree::PLMIdxIBaseOctree(IDXOctreeType type)
    : m_OctreeType(type),
      m_BBMin(kOrigin),
      m_BBMax(kOrigin),
      m_Depth(0),
      m_LeafCapacity(kDefaultLeafCapacity),
      m_IsACuboid(IDX_False),
      m_CuboidMatrix(),
      m_CuboidMin(kOrigin),
      m_CuboidMax(kOrigin) {}

PLMIdxIBaseOctree::~PLMIdxIBaseOctree() = default;

void PLMIdxIBaseOctree::GetBB(IDX_Point& min, IDX_Point& max) const {
  min = m_BBMin;
  max = m_BBMax;
}

void PLMIdxIBaseOctree::GetCuboid(IDX_Base_4x4Matrix& matrix, IDX_Point& min,
                                  IDX_Point& max) const {
  matrix = m_CuboidMatrix;
  min = m_CuboidMin;
  max = m_CuboidMax;
}

int PLMIdxIBaseOctree::GetDepth() const { return m_Depth; }

IDX_Bool PLMIdxIBaseOctree::IsACuboid() const { return m_IsACuboid; }

IDXOctreeType PLMIdxIBaseOctree::GetOctreeType(void* data) {
  std::int32_t kind;
  std::memcpy(&kind, data, sizeof(kind));
  return static_cast<IDXOctreeType>(kind);
}

// IDX_Base_RTree.

IDX_Base_RTree::IDX_Base_RTree()
    : m_Root(nullptr),
      m_NodeCount(0),
      m_MaxEntriesPerNode(kDefaultEntriesPerNode),
      m_Nodes(nullptr),
      m_EntryCount(0) {}

IDX_Base_RTree::~IDX_Base_RTree() { m_Nodes = nullptr; }
