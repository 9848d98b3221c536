// The digest of a file as a checksum file records it: the one routine
// that IDX_Checksum::ComputeCheckSum and the idxbase tool both read files
// with, so that they agree on every byte and every error.
#ifndef IDXBASE_SERVICES_FILE_DIGEST_H_
#define IDXBASE_SERVICES_FILE_DIGEST_H_

#include <cstdint>
#include <functional>

namespace idxbase::detail {

constexpr int kDigestDigits = 32;

struct FileDigest {
  char digits[kDigestDigits + 1] = {};  // upper-case hexadecimal, null-terminated
  std::uint64_t bytesRead = 0;          // the bytes the digest covers
  int readError = 0;                    // 0, or the errno of the read that ended it early
};

// Called after each block with the number of bytes it held.
using DigestProgress = std::function<void(std::uint64_t blockBytes)>;

// Digests what descriptor `fd` yields from where it stands to its end or
// to its first read error; the digest then covers the bytes read before
// the error, which is in readError. Reads blocks of
// IDX_Base_Constants::MD5_BUFFERS_SIZE bytes into one buffer allocated for
// the call (its allocation failure passes to the caller). Any thread;
// calls on different descriptors are independent.
FileDigest DigestDescriptor(int fd, const DigestProgress& progress = {});

}  // namespace idxbase::detail

#endif  // IDXBASE_SERVICES_FILE_DIGEST_H_
