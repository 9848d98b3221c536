#include "idxbase/hashing.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "byte_run_test_support.h"

namespace {

constexpr char kEmptyInput[] = "[IDX_Base_Functions Info] NULL input data or 0 buffer size\n\n";

// The string hash worked out byte by byte: byte i shifted left by
// 8 * (i mod 4) (a little-endian platform) into the fold, then mixed.
unsigned int ByteWiseHash(const char* text, std::size_t length) {
  std::uint32_t fold = 0;
  for (std::size_t i = 0; i < length; ++i) {
    fold ^= std::uint32_t{static_cast<unsigned char>(text[i])} << (8 * (i % 4));
  }
  return IDX_IntegerHash(fold);
}

TEST(IntegerHash, KnownValues) {
  const struct {
    unsigned int key, hash;
  } kCases[] = {{0, 3399731875u}, {1, 316017654u}, {100, 3157090376u}, {4294967295u, 3176528920u}};
  for (const auto& c : kCases) EXPECT_EQ(IDX_IntegerHash(c.key), c.hash) << c.key;
}

TEST(IntegerCompare, ComparesTheValues) {
  int a = 0, b = 0;
  EXPECT_EQ(IDX_IntegerCompare(&a, &a), 1);
  EXPECT_EQ(IDX_IntegerCompare(&a, &b), 0);
  EXPECT_EQ(IDX_IntegerCompare(nullptr, nullptr), 1);
}

TEST(StringHash, KnownValues) {
  const struct {
    std::string text;
    unsigned int hash;
  } kCases[] = {{"", 3399731875u},
                {"a", 4079545226u},
                {"abcd", 2831021638u},
                {"abcde", 3716242070u},
                {"hello world", 3309955345u}};
  for (const auto& c : kCases) {
    EXPECT_EQ(IDX_StringHash(c.text.data(), static_cast<int>(c.text.size())), c.hash) << c.text;
  }
}

TEST(StringHash, LengthIsAuthoritative) {
  EXPECT_EQ(IDX_StringHash("abcdef", 2), IDX_StringHash("ab", 2));
  EXPECT_EQ(IDX_StringHash("a\0b", 3), ByteWiseHash("a\0b", 3));
  EXPECT_NE(IDX_StringHash("a\0b", 3), IDX_StringHash("a", 1));
  EXPECT_EQ(IDX_StringHash("abc", -1), IDX_IntegerHash(0));
}

// Each text is placed at every alignment, ending `gap` bytes before an
// inaccessible page, so that a read past its last byte faults (gap 0) or
// meets other bytes. Exact-size heap copies let the address sanitizer
// catch such reads too.
TEST(StringHash, NeverReadsPastTheLengthWhateverTheAlignment) {
  const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* mapping =
      mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(mapping, MAP_FAILED);
  char* guard = static_cast<char*>(mapping) + page;
  ASSERT_EQ(mprotect(guard, page, PROT_NONE), 0);

  std::mt19937 random(2);
  std::vector<char> text(67);
  for (char& byte : text) byte = static_cast<char>(random());
  for (std::size_t length = 0; length <= text.size(); ++length) {
    const unsigned int expected = ByteWiseHash(text.data(), length);
    for (std::size_t gap = 0; gap < 8; ++gap) {
      std::memset(guard - 80, 0x5A, 80);
      char* placed = guard - gap - length;
      if (length != 0) std::memcpy(placed, text.data(), length);
      ASSERT_EQ(IDX_StringHash(placed, static_cast<int>(length)), expected)
          << "length " << length << ", gap " << gap;
    }
    std::vector<char> exact(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length));
    exact.shrink_to_fit();
    EXPECT_EQ(IDX_StringHash(exact.data(), static_cast<int>(length)), expected);
  }
  munmap(mapping, 2 * page);
}

TEST(ConvertToHexa, WritesUpperCaseDigits) {
  const unsigned char bytes[] = {0x00, 0x1F, 0xAB, 0xFF};
  char* text = nullptr;
  ASSERT_EQ(ConvertToHexa(bytes, 4, text), KOR_S_OK);
  EXPECT_STREQ(text, "001FABFF");
  delete[] text;

  char preallocated[9];
  std::memset(preallocated, '#', sizeof preallocated);
  EXPECT_EQ(ConvertToHexaPreAlloc(bytes, 3, preallocated), KOR_S_OK);
  EXPECT_EQ(std::string(preallocated, 8), std::string("001FAB\0#", 8));
  EXPECT_EQ(ConvertToHexaPreAlloc(bytes, -2, preallocated), KOR_S_OK);
  EXPECT_EQ(preallocated[0], '0');
}

TEST(ConvertToHexa, EmptyInputDoesNothing) {
  const unsigned char bytes[] = {0x12};
  char sentinel = 0;
  for (const unsigned char* data : {static_cast<const unsigned char*>(nullptr), bytes}) {
    const unsigned int length = data == nullptr ? 1 : 0;
    char* text = &sentinel;
    EXPECT_EQ(idxbase_test::TraceOf([&] { EXPECT_EQ(ConvertToHexa(data, length, text), 1); }),
              kEmptyInput);
    EXPECT_EQ(text, &sentinel);
    EXPECT_EQ(idxbase_test::TraceOf([&] {
                EXPECT_EQ(ConvertToHexaPreAlloc(data, static_cast<short>(length), &sentinel), 1);
              }),
              kEmptyInput);
    EXPECT_EQ(sentinel, 0);
  }
}

TEST(Endian, PlatformOrderAndSwaps) {
  const unsigned short& one = IDX_Base_Endian::one();
  EXPECT_EQ(reinterpret_cast<const unsigned char*>(&one)[0],
            IDX_Base_Endian::littleEndian == IDX_True ? 1 : 0);
  EXPECT_NE(IDX_Base_Endian::littleEndian, IDX_Base_Endian::bigEndian);

  unsigned short half = 0x1234;
  IDX_Base_Endian::swap(half);
  EXPECT_EQ(half, 0x3412);
  unsigned int word = 0x11223344;
  IDX_Base_Endian::swap(word);
  EXPECT_EQ(word, 0x44332211u);
  float real = 1.0f;
  IDX_Base_Endian::swap(real);
  std::uint32_t bits = 0;
  std::memcpy(&bits, &real, sizeof bits);
  EXPECT_EQ(bits, 0x0000803Fu);
}

// A reference whose address is null, formed where the optimiser cannot see
// that it is null. The sanitizer would report the binding itself, which is
// the very input under test, so it is not instrumented.
template <typename T>
__attribute__((no_sanitize("undefined"))) T& NullReference() {
  T* address = nullptr;
  asm volatile("" : "+r"(address));
  return *address;
}

TEST(Endian, SwapsOfANullAddressDoNothing) {
  EXPECT_EXIT((IDX_Base_Endian::swap(NullReference<unsigned short>()),
               IDX_Base_Endian::swap(NullReference<unsigned int>()),
               IDX_Base_Endian::swap(NullReference<float>()), std::exit(0)),
              ::testing::ExitedWithCode(0), "");
}

}  // namespace
