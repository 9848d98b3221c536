// MD5 checksum files and the MD5 message-digest primitives (RFC 1321).
#ifndef IDXBASE_CHECKSUM_H_
#define IDXBASE_CHECKSUM_H_

#include <cstdint>
#include <functional>

#include "idxbase/export.h"
#include "idxbase/kor_string.h"
#include "idxbase/kor_types.h"

// Checksum files. The only operation is static; the class has no instance
// data and cannot be constructed; assignment does nothing.
class IDXBASE_API IDX_Checksum {
 public:
  IDX_Checksum& operator=(const IDX_Checksum&) { return *this; }
  IDX_Checksum& operator=(IDX_Checksum&&) noexcept { return *this; }

  // Writes the MD5 digest of the file `path` to the file path + ".checksum"
  // (replaced when it exists): exactly 32 upper-case hexadecimal digits,
  // high nibble first, no line end. The file is read in blocks of
  // IDX_Base_Constants::MD5_BUFFERS_SIZE bytes through one buffer allocated
  // for the call (its allocation failure passes to the caller).
  //
  // The new checksum file is written beside the old one and renamed over
  // it once complete, so a run that is killed or cannot write leaves the
  // old checksum whole. A checksum file that is a symbolic link is replaced
  // where the link leads; one that is not a regular file (a device), or
  // that sits in a directory where no file can be created, is written in
  // place.
  //
  // KOR_S_OK on success, also when a read error ends the reading early:
  // the digest of the bytes read so far is written. KOR_E_FAIL, with
  // "ComputeCheckSum Cannot open <name> in write mode\n" on standard output,
  // when the checksum file cannot be created (the input is not opened);
  // KOR_E_FAIL, with "ComputeCheckSum Cannot open <path> in read mode\n",
  // when `path` cannot be opened for reading: the checksum file is then
  // replaced by an empty one. KOR_E_FAIL without a message when the digits
  // cannot be written (a full disk): the old checksum file stays.
  //
  // Threads: calls on different files are independent; two calls on the
  // same file write the same checksum file, the last to finish wins.
  static KORStatus ComputeCheckSum(const KORUnicodeString& path);

 private:
  IDX_Checksum() = default;
};

namespace idxbase {

// The digits of an MD5 digest in a checksum file.
constexpr int kDigestDigits = 32;

// The digest of a file as a checksum file records it.
struct FileDigest {
  char digits[kDigestDigits + 1] = {};  // upper-case hexadecimal, null-terminated
  std::uint64_t bytesRead = 0;          // the bytes the digest covers
  int readError = 0;                    // 0, or the errno of the read that ended it early
};

// Called after each block with the number of bytes it held, on the thread
// that digests.
using DigestProgress = std::function<void(std::uint64_t blockBytes)>;

// Digests what descriptor `fd` yields from where it stands to its end or
// to its first read error; the digest then covers the bytes read before
// the error, which is in readError. The one routine that ComputeCheckSum
// and the idxbase tool read files with, so that they agree on every byte
// and every error. Reads blocks of IDX_Base_Constants::MD5_BUFFERS_SIZE
// bytes into one buffer allocated for the call (its allocation failure
// passes to the caller); does not close `fd`. Any thread; calls on
// different descriptors are independent.
IDXBASE_API FileDigest DigestDescriptor(int fd, const DigestProgress& progress = {});

}  // namespace idxbase

extern "C" {

// The MD5 context, in the layout of RFC 1321's reference code: the four
// state words, the number of bits digested so far (low word first, modulo
// 2^64), and the partial block waiting for its 64 bytes. Named apart from
// OpenSSL's MD5_CTX so that both headers can be included together.
struct IDX_MD5_CTX {
  std::uint32_t state[4];
  std::uint32_t count[2];
  unsigned char buffer[64];
};

// The MD5 primitives, exported under plain C names (no C++ decoration).
// A context is used by one thread at a time; distinct contexts are
// independent. Init, Update and Final do nothing when `context` is null
// (Final also when `digest` is null).
//
// The input pointers are const, since nothing is written through them.
// Under C linkage the symbols and the calling convention are those of
// non-const signatures, so callers written against either compile and
// link alike.

// Starts a digest: the four initial state words of RFC 1321, no bit
// counted.
IDXBASE_API void MD5Init(IDX_MD5_CTX* context);
// Digests `length` more bytes of `data` (which may be null when `length`
// is 0). `data` needs no particular alignment.
IDXBASE_API void MD5Update(IDX_MD5_CTX* context, const unsigned char* data, unsigned int length);
// Pads as RFC 1321 prescribes, writes the 16-byte digest and clears the
// first two state words; start again with MD5Init.
IDXBASE_API void MD5Final(unsigned char digest[16], IDX_MD5_CTX* context);
// The compression step of RFC 1321 on the context's state, for one block
// given as its 16 words (the block's bytes read as little-endian 32-bit
// words). The bit count and the partial block are not touched. Does
// nothing when `context` or `block` is null.
IDXBASE_API void MD5Transform(IDX_MD5_CTX* context, const std::uint32_t block[16]);

}  // extern "C"

#endif  // IDXBASE_CHECKSUM_H_
