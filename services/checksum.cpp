#include "idxbase/checksum.h"

#include <cstdio>
#include <memory>

#include "idxbase/hashing.h"
#include "idxbase/settings.h"

namespace {

constexpr int kDigestSize = 16;
constexpr char kChecksumSuffix[] = "checksum";

struct FileCloser {
  void operator()(FILE* file) const { std::fclose(file); }
};
// Closed when it goes out of scope, also when the read buffer cannot be
// allocated.
using File = std::unique_ptr<FILE, FileCloser>;

// Digests `file` from its current position to its end, or up to the
// first read error. The end and error tests come before each read, so an
// empty file digests as zero bytes.
void DigestFile(FILE* file, unsigned char digest[kDigestSize]) {
  const unsigned int bufferSize = IDX_Base_Constants::MD5_BUFFERS_SIZE;
  std::unique_ptr<unsigned char[]> buffer(new unsigned char[bufferSize]);
  IDX_MD5_CTX context;
  MD5Init(&context);
  while (std::feof(file) == 0 && std::ferror(file) == 0) {
    const std::size_t count = std::fread(buffer.get(), 1, bufferSize, file);
    MD5Update(&context, buffer.get(), static_cast<unsigned int>(count));
  }
  MD5Final(digest, &context);
}

}  // namespace

KORStatus IDX_Checksum::ComputeCheckSum(const KORUnicodeString& path) {
  const KORUnicodeString checksumPath = path + "." + kChecksumSuffix;
  const File output(std::fopen(checksumPath.ConvertToChar(), "w"));
  if (output == nullptr) {
    std::printf("ComputeCheckSum Cannot open %s in write mode\n", checksumPath.ConvertToChar());
    return KOR_E_FAIL;
  }
  // Declared after the checksum file, so closed before it.
  const File input(std::fopen(path.ConvertToChar(), "rb"));
  if (input == nullptr) {
    std::printf("ComputeCheckSum Cannot open %s in read mode\n", path.ConvertToChar());
    return KOR_E_FAIL;
  }
  unsigned char digest[kDigestSize];
  DigestFile(input.get(), digest);
  char text[2 * kDigestSize + 1];
  ConvertToHexaPreAlloc(digest, kDigestSize, text);
  std::fwrite(text, 1, 2 * kDigestSize, output.get());
  return KOR_S_OK;
}
