// The digest of a file as a checksum file records it (idxbase/checksum.h).
#include <cerrno>
#include <memory>

#include "idxbase/checksum.h"
#include "idxbase/hashing.h"
#include "idxbase/kor_file.h"
#include "idxbase/settings.h"

namespace idxbase {

FileDigest DigestDescriptor(int fd, const DigestProgress& progress) {
  const unsigned int bufferSize = IDX_Base_Constants::MD5_BUFFERS_SIZE;
  const std::unique_ptr<unsigned char[]> buffer(new unsigned char[bufferSize]);
  FileDigest result;
  IDX_MD5_CTX context;
  MD5Init(&context);
  for (;;) {
    const long count = ReadSome(fd, buffer.get(), bufferSize);
    if (count < 0) result.readError = errno;
    if (count <= 0) break;
    MD5Update(&context, buffer.get(), static_cast<unsigned int>(count));
    result.bytesRead += static_cast<std::uint64_t>(count);
    if (progress) progress(static_cast<std::uint64_t>(count));
  }
  unsigned char digest[kDigestDigits / 2];
  MD5Final(digest, &context);
  ConvertToHexaPreAlloc(digest, sizeof digest, result.digits);
  return result;
}

}  // namespace idxbase
