#include <gtest/gtest.h>

#include <cstring>

#include "idxbase/settings.h"

namespace {

using C = IDX_Base_Constants;

// A sample across every group; the spellings (OCCURENCES, Occurence) are
// part of the on-disk format.
TEST(IndexConstants, NamesAreTheIndexVocabulary) {
  const struct {
    const char* actual;
    const char* expected;
  } cases[] = {
      {C::SYNCHRO_INDEX_FILE_DIR_NAME, "IndexSynchro"},
      {C::ENTITIESIDS_INDEX_FILE_DIR_NAME, "DerivedIndex"},
      {C::INDEX_REPORTS_FRAME_NAME, "frames"},
      {C::OCCURENCES_INDEX_FILE_BASE_NAME, "IndexOccurence"},
      {C::RTREEOCCURENCES_INDEX_FILE_BASE_NAME, "IndexRTreeOccurence"},
      {C::OV_FILE_BASE_NAME, "IndexOV"},
      {C::OV_INDEX_FILE_DIR_NAME, "IndexOV"},
      {C::DISPLAYNAMES_FILE_BASE_NAME, "DisplayNameConfiguration.txt"},
      {C::EXPORT_DB_NAME, "index.sqlite3"},
      {C::CHECKSUM_FILENAME, "checksum.txt"},
      {C::BEGINIDXSTEP, "##BEGINIDXSTEP"},
      {C::REPORT_CREATED, "##REPORT_CREATED"},
      {C::CFG, "CONFIG"},
      {C::IDXGEO, "GEOMETRY"},
      {C::SECU, "SECURITY"},
      {C::MAGIC_NO_OCTREE, "MAGIC_NO_OCTREE"},
  };
  for (const auto& c : cases) EXPECT_STREQ(c.expected, c.actual);
}

TEST(IndexConstants, SeparatorIsThePlatformsAndNumbersAreExact) {
  EXPECT_EQ('/', C::PATH_SEPARATOR);
  EXPECT_STREQ("/", C::PATH_SEPARATOR_STR);
  EXPECT_EQ(33554432u, C::MAX_OCTREE_SIZE);
  EXPECT_EQ(0.001f, C::MIN_OCTREE_VOXEL_SIZE);
  EXPECT_EQ(0.0001f, C::OCTREE_EPSILON);
  EXPECT_EQ(-1, C::INVALID_OVDID);
  EXPECT_EQ(1048576u, C::MD5_BUFFERS_SIZE);
}

TEST(IndexConstants, EveryMarkerBeginsWithTwoHashes) {
  for (const char* marker :
       {C::BEGINIDXSTEP, C::CURIDXSTEP, C::ENDIDXSTEP, C::PID, C::CNX, C::NEWREF, C::NEWREPREF,
        C::NEWINST, C::NEWREPINST, C::ETL, C::DELOBJ, C::REPORT_CREATED}) {
    EXPECT_EQ(0, std::strncmp(marker, "##", 2)) << marker;
  }
}

}  // namespace
