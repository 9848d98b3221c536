#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "byte_run_test_support.h"
#include "idxbase/byte_runs.h"
#include "support/allocation_faults.h"

namespace {

using idxbase_test::Bytes;
using idxbase_test::Size;

IDX_Base_ByteArray Array(const std::string& bytes) {
  IDX_Base_ByteArray array;
  array.SetData(Bytes(bytes), Size(bytes));
  return array;
}

std::string Contents(const IDX_Base_ByteArray& array) {
  return idxbase_test::Text(array.GetData(), array.GetSize());
}

// Writes behind the array's back, to see whether a cached key is used.
void Overwrite(const IDX_Base_ByteArray& array, unsigned char byte) {
  const_cast<unsigned char*>(array.GetData())[0] = byte;
}

TEST(ByteArray, CopiesShareUntilSetData) {
  auto original = std::make_unique<IDX_Base_ByteArray>(Array("abc"));
  IDX_Base_ByteArray copy(*original);
  IDX_Base_ByteArray assigned;
  assigned = copy;
  EXPECT_EQ(copy.GetData(), original->GetData());
  EXPECT_EQ(assigned.GetData(), original->GetData());

  copy.SetData(Bytes("xy"), 2);
  EXPECT_EQ(Contents(copy), "xy");
  EXPECT_EQ(Contents(*original), "abc");
  original.reset();  // the last sharer keeps the record alive
  EXPECT_EQ(Contents(assigned), "abc");
}

// Storage grows to exactly the size asked for and is kept when the bytes
// shrink; growth that fails releases the bytes.
TEST(ByteArray, RewritingKeepsCapacityAndZeroFillsTheTail) {
  IDX_Base_ByteArray array = Array("abcdef");
  const unsigned char* storage = array.GetData();
  array.SetData(array.GetData() + 2, 3);  // from its own storage
  ASSERT_EQ(array.GetData(), storage);
  EXPECT_EQ(idxbase_test::Text(storage, 6), std::string("cde\0\0\0", 6));
  array.Clear();
  EXPECT_EQ(array.GetData(), storage);
  EXPECT_EQ(array.GetSize(), 0u);
  array.SetData(Bytes("abcdef"), 6);
  EXPECT_EQ(array.GetData(), storage);
  idxbase_test::AllocationFaults failing;
  array.SetData(Bytes("abcdefg"), 7);
  EXPECT_EQ(array.GetData(), nullptr);
  EXPECT_EQ(array.GetSize(), 0u);
}

TEST(ByteArray, GetHashKeyFoldsFourBytes) {
  const struct {
    std::string bytes;
    unsigned int key;
  } kCases[] = {
      {"", 0},
      {std::string(3, '\0'), 0},
      {"\x01", 256},
      {"\x01\x02\x03\x04", 0x03020104},
      {"\x01\x02\x03\x04\x05", 0x03020404},
      {std::string("\0\0\xFF", 3), 0x01000000},  // negative: absolute value
      {std::string("\0\0\x80", 3), 0x80000000},  // the most negative stays
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(Array(c.bytes).GetHashKey(), c.key) << testing::PrintToString(c.bytes);
  }
  EXPECT_EQ(IDX_Base_ByteArray().GetHashKey(), 0u);
}

TEST(ByteArray, GetHashKeyIsCachedInTheRecordUnlessZero) {
  IDX_Base_ByteArray array = Array("\x01\x02\x03\x04");
  const IDX_Base_ByteArray copy(array);
  ASSERT_EQ(array.GetHashKey(), 0x03020104u);
  Overwrite(array, 0x55);
  EXPECT_EQ(array.GetHashKey(), 0x03020104u);
  EXPECT_EQ(copy.GetHashKey(), 0x03020104u);
  const unsigned char kZeros[2] = {};
  array.SetData(kZeros, 2);  // clears the cache
  ASSERT_EQ(array.GetHashKey(), 0u);
  Overwrite(array, 1);
  EXPECT_EQ(array.GetHashKey(), 256u);
}

TEST(ByteArray, SortCompareMatchesLexicographicalCompare) {
  std::mt19937 random(20240611);
  const char kAlphabet[] = {'\x00', '\x01', '\x7F', '\x80', '\xFF'};
  auto run = [&] {
    std::string bytes(random() % 6, '\0');
    for (char& byte : bytes) byte = kAlphabet[random() % sizeof kAlphabet];
    return bytes;
  };
  auto less = [](const std::string& a, const std::string& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
      return static_cast<unsigned char>(x) < static_cast<unsigned char>(y);
    });
  };
  for (int i = 0; i < 5000; ++i) {
    const std::string left = run(), right = run();
    short result = 7;
    ASSERT_EQ(Array(left).SortCompare(Array(right), result), IDX_True);
    ASSERT_EQ(result, less(left, right)   ? -1
                      : less(right, left) ? 1
                                          : 0)
        << testing::PrintToString(left) << " vs " << testing::PrintToString(right);
  }
}

TEST(ByteArray, SortCompareWithEmptyHandles) {
  const IDX_Base_ByteArray empty;
  const IDX_Base_ByteArray array = Array("a");
  short result = 3;
  EXPECT_EQ(idxbase_test::TraceOf([&] { EXPECT_EQ(empty.SortCompare(array, result), IDX_False); }),
            "IDX_Base_ByteArray.SortCompare.InvalidArray\n");
  EXPECT_EQ(result, 0);
  EXPECT_EQ(array.SortCompare(empty, result), IDX_True);  // an empty handle sorts first
  EXPECT_EQ(result, 1);
  EXPECT_EQ(Array("").SortCompare(empty, result), IDX_True);  // a cleared array is valid
  EXPECT_EQ(result, 0);
}

TEST(ByteArray, Dumps) {
  const IDX_Base_ByteArray array = Array("\x0A\xFF");
  EXPECT_EQ(idxbase_test::OutputOf([&] { array.DumpAsHexa(); }), "[0AFF]");
  EXPECT_EQ(idxbase_test::OutputOf([&] { Array("a-Z9").DumpPrintable(); }), "[a.Z9]");
  char* text = nullptr;
  array.DumpAsHexa(text);
  ASSERT_NE(text, nullptr);
  EXPECT_STREQ(text, "0AFF");
  delete[] text;

  for (const IDX_Base_ByteArray& nothing : {IDX_Base_ByteArray(), Array("")}) {
    char sentinel = 0;
    text = &sentinel;
    nothing.DumpAsHexa(text);
    EXPECT_EQ(text, &sentinel);
    EXPECT_EQ(idxbase_test::OutputOf([&] { nothing.DumpAsHexa(); }), "");
    EXPECT_EQ(idxbase_test::OutputOf([&] { nothing.DumpPrintable(); }), "");
  }
}

}  // namespace
