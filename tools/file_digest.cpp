#include "file_digest.h"

#include <memory>

#include "idxbase/checksum.h"
#include "idxbase/settings.h"

namespace idxbase_tool {
namespace {

std::string UpperHex(const unsigned char (&bytes)[16]) {
  static const char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (unsigned char byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0x0F];
  }
  return text;
}

}  // namespace

bool DigestFile(InputFile& file, ProgressBar& progress, std::string& digest) {
  const unsigned int blockSize = IDX_Base_Constants::MD5_BUFFERS_SIZE;
  const auto buffer = std::make_unique<unsigned char[]>(blockSize);
  IDX_MD5_CTX context;
  MD5Init(&context);
  for (;;) {
    const long count = file.Read(buffer.get(), blockSize);
    if (count < 0) return false;
    if (count == 0) break;
    MD5Update(&context, buffer.get(), static_cast<unsigned int>(count));
    progress.Advance(static_cast<std::uint64_t>(count));
  }
  unsigned char bytes[16];
  MD5Final(bytes, &context);
  digest = UpperHex(bytes);
  return true;
}

}  // namespace idxbase_tool
