#include "idxbase/checksum.h"

// OpenSSL is the reference; its header is included beside ours on purpose.
#include <gtest/gtest.h>
#include <openssl/md5.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "support/stdout_capture.h"
#include "support/temp_dir.h"

namespace {

using idxbase_test::ReadFile;
using idxbase_test::TempDir;

const unsigned char* Bytes(const std::string& text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

std::string ToHex(const unsigned char digest[16], const char* digits = "0123456789abcdef") {
  std::string text;
  for (int i = 0; i < 16; ++i) {
    text += digits[digest[i] >> 4];
    text += digits[digest[i] & 0xf];
  }
  return text;
}

// Our digest of `data`, given to MD5Update in pieces of the given sizes
// and then the rest.
std::string Digest(const std::string& data, const std::vector<std::size_t>& pieces = {}) {
  IDX_MD5_CTX context;
  MD5Init(&context);
  std::size_t done = 0;
  for (std::size_t piece : pieces) {
    MD5Update(&context, Bytes(data) + done, static_cast<unsigned int>(piece));
    done += piece;
  }
  MD5Update(&context, Bytes(data) + done, static_cast<unsigned int>(data.size() - done));
  unsigned char digest[16];
  MD5Final(digest, &context);
  return ToHex(digest);
}

std::string OpenSslDigest(const std::string& data, const char* digits = "0123456789abcdef") {
  unsigned char digest[16];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  MD5(Bytes(data), data.size(), digest);
#pragma GCC diagnostic pop
  return ToHex(digest, digits);
}

std::string RandomBytes(std::mt19937& random, std::size_t size) {
  std::string data(size, '\0');
  for (char& c : data) c = static_cast<char>(random());
  return data;
}

// Every split of every length up to two and a half blocks, so that both
// pieces end on each side of every block and padding boundary.
TEST(MD5, TwoUpdatesAtEverySplitMatchOpenSsl) {
  std::mt19937 random(1321);
  for (std::size_t length = 0; length <= 160; ++length) {
    const std::string data = RandomBytes(random, length);
    const std::string expected = OpenSslDigest(data);
    for (std::size_t split = 0; split <= length; ++split) {
      ASSERT_EQ(expected, Digest(data, {split})) << "length " << length << " split " << split;
    }
  }
}

// Random lengths, random piece sizes, and data at every alignment.
TEST(MD5, RandomInputsMatchOpenSsl) {
  std::mt19937 random(20240501);
  for (int round = 0; round < 300; ++round) {
    const std::size_t length = random() % (round < 200 ? 2000 : 300000);
    const std::string buffer = RandomBytes(random, length + 3);
    const std::string data = buffer.substr(round % 4, length);
    std::vector<std::size_t> pieces;
    for (std::size_t done = 0, piece; done < length; done += piece) {
      piece = std::min<std::size_t>(length - done, random() % (round % 2 == 0 ? 130 : 70000));
      pieces.push_back(piece);
    }
    ASSERT_EQ(OpenSslDigest(data), Digest(data, pieces)) << "length " << length;
  }
}

TEST(MD5, ContextKeepsTheReferenceLayoutAndBitCount) {
  static_assert(sizeof(IDX_MD5_CTX) == 88);
  static_assert(offsetof(IDX_MD5_CTX, count) == 16);
  static_assert(offsetof(IDX_MD5_CTX, buffer) == 24);
  IDX_MD5_CTX context;
  MD5Init(&context);
  MD5Update(&context, Bytes("abc"), 3);
  EXPECT_EQ(24u, context.count[0]);
  EXPECT_EQ(0u, context.count[1]);
  // The low word carries into the high word.
  context.count[0] = 0xfffffff8u;
  MD5Update(&context, Bytes("de"), 2);
  EXPECT_EQ(8u, context.count[0]);
  EXPECT_EQ(1u, context.count[1]);

  unsigned char digest[16];
  MD5Final(digest, &context);
  EXPECT_EQ(0u, context.state[0]);
  EXPECT_EQ(0u, context.state[1]);
}

TEST(MD5, TransformTakesTheBlockAsLittleEndianWords) {
  std::mt19937 random(64);
  const std::string block = RandomBytes(random, 64);
  std::uint32_t words[16];
  for (int i = 0; i < 16; ++i) {
    words[i] = 0;
    for (int byte = 3; byte >= 0; --byte) words[i] = (words[i] << 8) | Bytes(block)[4 * i + byte];
  }
  IDX_MD5_CTX byUpdate;
  IDX_MD5_CTX byTransform;
  MD5Init(&byUpdate);
  MD5Init(&byTransform);
  MD5Update(&byUpdate, Bytes(block), 64);
  MD5Transform(&byTransform, words);
  EXPECT_EQ(0, std::memcmp(byUpdate.state, byTransform.state, sizeof byUpdate.state));
}

TEST(MD5, NullContextDoesNothing) {
  MD5Init(nullptr);
  MD5Update(nullptr, Bytes("abc"), 3);
  unsigned char digest[16];
  std::memset(digest, 0xab, sizeof digest);
  MD5Final(digest, nullptr);
  EXPECT_EQ("abababababababababababababababab", ToHex(digest));
  const std::uint32_t words[16] = {};
  MD5Transform(nullptr, words);
}

class ChecksumTest : public ::testing::Test {
 protected:
  // Runs ComputeCheckSum and returns what it wrote to standard output.
  std::string Compute(const std::string& path, KORStatus expected) {
    idxbase_test::StdoutCapture capture;
    EXPECT_EQ(expected, IDX_Checksum::ComputeCheckSum(path.c_str())) << path;
    return capture.Finish();
  }

  TempDir dir_;
};

TEST_F(ChecksumTest, WritesThe32UpperCaseDigitsOfTheDigest) {
  std::mt19937 random(4);
  // Empty, one read buffer exactly, one byte more.
  for (std::size_t size : {0u, 1048576u, 1048577u}) {
    const std::string path = dir_.Join("IndexAttribute" + std::to_string(size));
    const std::string data = RandomBytes(random, size);
    idxbase_test::WriteFile(path, data);
    // The file replaced keeps its mode, its owner and its group (another
    // user's when we are root).
    const std::string sum = path + ".checksum";
    idxbase_test::WriteFile(sum, std::string(100, 'x'));
    const uid_t owner = geteuid() == 0 ? 4321 : geteuid();
    const gid_t group = geteuid() == 0 ? 4322 : getegid();
    ASSERT_EQ(0, chmod(sum.c_str(), 0640));
    ASSERT_EQ(0, chown(sum.c_str(), owner, group));
    EXPECT_EQ("", Compute(path, KOR_S_OK));
    EXPECT_EQ(OpenSslDigest(data, "0123456789ABCDEF"), ReadFile(sum)) << size;
    struct stat status {};
    ASSERT_EQ(0, stat(sum.c_str(), &status));
    EXPECT_EQ(0640u, status.st_mode & 07777);
    EXPECT_EQ(std::make_pair(owner, group), std::make_pair(status.st_uid, status.st_gid));
  }
}

// A missing input still leaves an empty checksum file; a write that fails
// (the device is full) has no message; a directory opens for reading but
// fails at the first read, which ends the digest: that of no bytes.
TEST_F(ChecksumTest, FailuresAndTheirMessages) {
  const std::string missing = dir_.Join("missing");
  EXPECT_EQ("ComputeCheckSum Cannot open " + missing + " in read mode\n",
            Compute(missing, KOR_E_FAIL));
  EXPECT_TRUE(idxbase_test::FileExists(missing + ".checksum"));
  EXPECT_EQ("", ReadFile(missing + ".checksum"));
  const std::string unwritable = missing + "/IndexAttribute";
  EXPECT_EQ("ComputeCheckSum Cannot open " + unwritable + ".checksum in write mode\n",
            Compute(unwritable, KOR_E_FAIL));
  const std::string full = dir_.Join("IndexAttribute");
  idxbase_test::WriteFile(full, "abc");
  std::filesystem::create_symlink("/dev/full", full + ".checksum");
  EXPECT_EQ("", Compute(full, KOR_E_FAIL));
  const std::string directory = dir_.Join("directory");
  std::filesystem::create_directory(directory);
  EXPECT_EQ("", Compute(directory, KOR_S_OK));
  EXPECT_EQ("D41D8CD98F00B204E9800998ECF8427E", ReadFile(directory + ".checksum"));
}

}  // namespace
