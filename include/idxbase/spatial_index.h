// Bases of the spatial indexes: the abstract octree and the R-tree base.
// The trees themselves are implemented by the engine; these classes hold
// the fields that every implementation shares.
#ifndef IDXBASE_SPATIAL_INDEX_H_
#define IDXBASE_SPATIAL_INDEX_H_

#include <cstdint>

#include "idxbase/base_types.h"
#include "idxbase/export.h"
#include "idxbase/kor_types.h"
#include "idxbase/matrix.h"

// Kinds of octree. A raw octree block starts with its kind as a 32-bit
// value in the machine's byte order. The bases store and return the kind
// and give it no meaning; blocks may carry kinds beyond the named ones.
enum IDXOctreeType : int {
  IDX_OCTREE_NONE = 0,       // no octree (an empty or missing block)
  IDX_OCTREE_OCCUPANCY = 1,  // leaves record only whether a voxel is occupied
  IDX_OCTREE_TRIANGLES = 2,  // leaves list the triangles that cross them
  IDX_OCTREE_POINTS = 3,     // leaves list the points that fall in them
};

// The abstract base of every octree: its kind, its bounding box, its depth
// and, for an octree built in a cuboid's own frame, that frame and the
// cuboid's extent.
//
// Derived octrees fill the protected fields while they build or load the
// tree; the base initialises them and offers read access only. The base
// owns nothing and its destructor releases nothing. Copying is protected:
// a derived octree that can be copied opts in. One thread at a time;
// concurrent reads are safe when the derived class allows them.
//
// The four operations every concrete octree supplies, in this slot order
// after the destructor, use the statuses KOR_S_OK (done / yes),
// KOR_S_FALSE (no) and KOR_E_FAIL (failure).
class IDXBASE_API PLMIdxIBaseOctree {
 public:
  // Stores `type`; every other field starts empty: zero bounding box and
  // cuboid corners, depth 0, not a cuboid, identity cuboid frame.
  explicit PLMIdxIBaseOctree(IDXOctreeType type);
  virtual ~PLMIdxIBaseOctree();

  // Reads the octree from the raw block of `size` bytes at `block`, which
  // starts with its IDXOctreeType, and fills the fields. KOR_S_OK when
  // loaded; KOR_E_FAIL when the block is too short, malformed or of
  // another kind, in which case the octree is left empty.
  virtual KORStatus Load(const void* block, unsigned int size) = 0;
  // The number of bytes Save writes.
  virtual unsigned int GetBlockSize() const = 0;
  // Writes the octree as a raw block, starting with its kind, into the
  // `size` bytes at `block`. KOR_S_OK when written; KOR_E_FAIL, writing
  // nothing, when `size` is below GetBlockSize().
  virtual KORStatus Save(void* block, unsigned int size) const = 0;
  // Whether an occupied voxel meets `box`, given in the coordinates of
  // GetBB (a cuboid octree maps it into its own frame): KOR_S_OK when one
  // does, contact included; KOR_S_FALSE when none does; KOR_E_FAIL when
  // the octree holds no tree to test.
  virtual KORStatus IntersectBox(const IDX_Base_BoundingBox& box) const = 0;

  // Copies the bounding box's corners.
  void GetBB(IDX_Point& min, IDX_Point& max) const;
  // Copies the cuboid's frame and corners (in that frame).
  void GetCuboid(IDX_Base_4x4Matrix& matrix, IDX_Point& min, IDX_Point& max) const;
  int GetDepth() const;
  IDX_Bool IsACuboid() const;

  // The kind that a raw octree block carries in its first 32 bits, read in
  // the machine's byte order, without building an octree. Requires:
  // `data` holds at least four bytes (no alignment needed).
  static IDXOctreeType GetOctreeType(void* data);

 protected:
  PLMIdxIBaseOctree(const PLMIdxIBaseOctree&) = default;
  PLMIdxIBaseOctree& operator=(const PLMIdxIBaseOctree&) = default;

  IDXOctreeType m_OctreeType;
  IDX_Point m_BBMin;  // minimum corner of the bounding box
  IDX_Point m_BBMax;  // maximum corner
  std::int32_t m_Depth;
  // The most items a leaf holds before a derived octree splits it; 65535
  // (0xFFFF) until the derived class sets its own limit. Not read by the
  // base.
  std::uint32_t m_LeafCapacity;
  IDX_Bool m_IsACuboid;               // the octree covers a cuboid in its own frame
  IDX_Base_4x4Matrix m_CuboidMatrix;  // placement of the cuboid's frame
  IDX_Point m_CuboidMin;              // cuboid's minimum corner in its frame
  IDX_Point m_CuboidMax;              // cuboid's maximum corner
};

// The base of R-trees. It only initialises the fields that every R-tree
// shares; it can be created and destroyed only through a derived class.
// The node storage belongs to the derived tree: the base's destructor
// forgets the pointer and releases nothing. Not copyable, since a copy
// would share the derived tree's nodes. One thread at a time.
class IDXBASE_API IDX_Base_RTree {
 public:
  IDX_Base_RTree(const IDX_Base_RTree&) = delete;
  IDX_Base_RTree& operator=(const IDX_Base_RTree&) = delete;

 protected:
  // Empty tree: no root, no nodes, no entries, 12 entries per node.
  IDX_Base_RTree();
  // Sets m_Nodes to null; releases nothing.
  virtual ~IDX_Base_RTree();

  void* m_Root;                       // root node, or null while the tree is empty
  std::uint32_t m_NodeCount;          // nodes in m_Nodes
  std::uint32_t m_MaxEntriesPerNode;  // fan-out: entries a node holds before it splits (12)
  void* m_Nodes;                      // the derived tree's node storage, or null
  std::uint32_t m_EntryCount;         // entries indexed by the tree
};

#endif  // IDXBASE_SPATIAL_INDEX_H_
