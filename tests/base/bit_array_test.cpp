#include "idxbase/bit_array.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <vector>

namespace {

constexpr unsigned int kRows = PLMIdxBitArray::ROW_COUNT;

const unsigned char* Row(PLMIdxBitArray& array, unsigned int row) {
  return static_cast<const unsigned char*>(array.GetBitArray(row));
}

TEST(BitArray, RowLengthsAndAddresses) {
  const struct {
    int bits, bytes;
  } kCases[] = {{0, 4},  {1, 4},   {8, 4},   {24, 4},  {25, 8},   {32, 8},
                {56, 8}, {57, 12}, {88, 12}, {89, 16}, {100, 16}, {1000, 128}};
  for (const auto& c : kCases) {
    PLMIdxBitArray array(c.bits);
    EXPECT_EQ(array.GetLengthInBits(), c.bits);
    ASSERT_EQ(array.GetLengthInBytes(), c.bytes) << c.bits;
    for (unsigned int row = 0; row + 1 < kRows; ++row) {
      ASSERT_EQ(Row(array, row + 1) - Row(array, row), c.bytes) << c.bits << " bits, row " << row;
    }
    // The whole block, spare bytes included, starts as 0xFF.
    const std::vector<unsigned char> block(Row(array, 0), Row(array, 0) + kRows * c.bytes);
    EXPECT_EQ(block, std::vector<unsigned char>(kRows * c.bytes, 0xFF)) << c.bits;
  }
}

TEST(BitArray, LeastSignificantBitFirst) {
  PLMIdxBitArray array(10);
  const unsigned char* first = Row(array, 0);
  ASSERT_EQ(array.SetBitValue(0, 0, false), KOR_S_OK);
  EXPECT_EQ(first[0], 0xFE);
  ASSERT_EQ(array.SetBitValue(0, 0, true), KOR_S_OK);
  ASSERT_EQ(array.SetBitValue(0, 7, false), KOR_S_OK);
  EXPECT_EQ(first[0], 0x7F);
  ASSERT_EQ(array.SetBitValue(61, 9, false), KOR_S_OK);
  EXPECT_EQ(Row(array, 61)[1], 0xFD);
  EXPECT_EQ(Row(array, 61)[0], 0xFF);
  bool value = true;
  ASSERT_EQ(array.GetBitValue(61, 9, value), KOR_S_OK);
  EXPECT_FALSE(value);
}

// Failures leave the bits and `value` untouched. Refused lengths give no
// storage; a length of 0 has storage but no bit.
TEST(BitArray, AccessOutsideTheBitsFails) {
  const struct {
    int bits;
    unsigned int row, bit;
  } kCases[] = {{10, 0, 10}, {10, 61, 10}, {10, 62, 0},     {10, UINT_MAX, 0}, {10, 0, UINT_MAX},
                {0, 0, 0},   {-1, 0, 0},   {INT_MIN, 0, 0}, {INT_MAX, 0, 0}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(::testing::Message() << c.bits << " bits, row " << c.row << ", bit " << c.bit);
    PLMIdxBitArray array(c.bits);
    bool value = false;
    EXPECT_EQ(array.GetBitValue(c.row, c.bit, value), KOR_E_FAIL);
    EXPECT_FALSE(value);
    EXPECT_EQ(array.SetBitValue(c.row, c.bit, false), KOR_E_FAIL);
    if (c.bits == 10) {
      EXPECT_EQ(Row(array, 0)[1], 0xFF);  // where bit 10 would be
      continue;
    }
    EXPECT_EQ(array.GetBitArray(0) == nullptr, c.bits != 0);
    EXPECT_EQ(array.GetLengthInBytes(), c.bits == 0 ? 4 : 0);
  }
}

// Random writes against a plain vector of bools: each write changes its
// own bit and no other.
TEST(BitArray, MatchesBoolVector) {
  constexpr int kBits = 45;
  PLMIdxBitArray array(kBits);
  std::vector<bool> model(kRows * kBits, true);
  std::mt19937 random(3);
  for (int step = 0; step < 5000; ++step) {
    const unsigned int row = random() % kRows, bit = random() % kBits;
    const bool value = random() % 2 == 0;
    ASSERT_EQ(array.SetBitValue(row, bit, value), KOR_S_OK);
    model[row * kBits + bit] = value;
  }
  for (unsigned int row = 0; row < kRows; ++row) {
    for (unsigned int bit = 0; bit < kBits; ++bit) {
      bool value = !model[row * kBits + bit];
      ASSERT_EQ(array.GetBitValue(row, bit, value), KOR_S_OK);
      ASSERT_EQ(value, model[row * kBits + bit]) << row << "/" << bit;
    }
    // The spare bits past the length stay set.
    EXPECT_EQ(Row(array, row)[5] & 0xE0, 0xE0) << row;
    EXPECT_EQ(Row(array, row)[6], 0xFF) << row;
  }
}

}  // namespace
