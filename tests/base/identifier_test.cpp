#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "byte_run_test_support.h"
#include "idxbase/byte_runs.h"
#include "idxbase/strings.h"

namespace {

using idxbase_test::Bytes;
using idxbase_test::Size;

// An identifier whose bytes live in a vector.
class VectorIdentifier : public IDX_Base_Identifier {
 public:
  explicit VectorIdentifier(const std::string& bytes) : bytes_(bytes.begin(), bytes.end()) {}
  const unsigned char* GetData() const override { return bytes_.data(); }
  unsigned int GetSize() const override { return static_cast<unsigned int>(bytes_.size()); }
  std::vector<unsigned char>& bytes() { return bytes_; }

 private:
  std::vector<unsigned char> bytes_;
};

TEST(Identifier, EqualityAndOrderFollowTheBytes) {
  const struct {
    std::string left, right;
    short result;
  } kCases[] = {
      {"id-1", "id-1", 0}, {"id-1", "id-2", -1}, {"id", "id-1", -1},
      {"\x80", "\x7F", 1}, {"", "", 0},
  };
  for (const auto& c : kCases) {
    const VectorIdentifier left(c.left), right(c.right);
    short result = 7;
    EXPECT_EQ(left.SortCompare(right, result), IDX_True);
    EXPECT_EQ(result, c.result) << c.left << " vs " << c.right;
    EXPECT_EQ(left == right, c.result == 0 ? IDX_True : IDX_False);
    EXPECT_EQ(left != right, c.result != 0 ? IDX_True : IDX_False);
  }
}

TEST(Identifier, EqualsComparesContents) {
  const VectorIdentifier id("abc");
  const std::string elsewhere = "abc";
  EXPECT_EQ(id.Equals(Bytes(elsewhere), 3), IDX_True);
  EXPECT_EQ(id.Equals(Bytes(elsewhere), 2), IDX_False);
  EXPECT_EQ(id.Equals(Bytes("abd"), 3), IDX_False);
  EXPECT_EQ(id.Equals(id.GetData(), 3), IDX_True);
}

TEST(Identifier, GetHashKeyIsTheByteArrayKeyCachedInTheObject) {
  const std::string kRuns[] = {"", "\x01", "\x01\x02\x03\x04\x05",
                               std::string("\x7F\x80\xFF\x00\x10", 5)};
  for (const std::string& bytes : kRuns) {
    IDX_Base_ByteArray array;
    array.SetData(Bytes(bytes), Size(bytes));
    EXPECT_EQ(VectorIdentifier(bytes).GetHashKey(), array.GetHashKey())
        << testing::PrintToString(bytes);
  }
  // The key is cached in the object; a copy hashes its bytes anew.
  VectorIdentifier id("\x01");
  ASSERT_EQ(id.GetHashKey(), 256u);
  id.bytes()[0] = 2;
  EXPECT_EQ(id.GetHashKey(), 256u);
  EXPECT_EQ(VectorIdentifier(id).GetHashKey(), 512u);
}

}  // namespace
