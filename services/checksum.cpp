#include "idxbase/checksum.h"

#include <fcntl.h>

#include <cstdio>

#include "idxbase/kor_file.h"

namespace {

constexpr char kChecksumSuffix[] = "checksum";

}  // namespace

// The checksum file is prepared before the input is opened, and replaced
// only once its new content is complete: a run that is killed, or that
// cannot write, leaves the old checksum as it was.
KORStatus IDX_Checksum::ComputeCheckSum(const KORUnicodeString& path) {
  const KORUnicodeString checksumPath = path + "." + kChecksumSuffix;
  idxbase::FileReplacement output;
  if (output.Open(checksumPath.ConvertToChar()) != 0) {
    std::printf("ComputeCheckSum Cannot open %s in write mode\n", checksumPath.ConvertToChar());
    return KOR_E_FAIL;
  }
  const idxbase::Descriptor input(idxbase::OpenDescriptor(path.ConvertToChar(), O_RDONLY));
  if (!input.valid()) {
    std::printf("ComputeCheckSum Cannot open %s in read mode\n", path.ConvertToChar());
    // Callers know an empty checksum file as the mark of an unreadable
    // input: it replaces the old one.
    static_cast<void>(output.Commit());
    return KOR_E_FAIL;
  }
  // A read error ends the digest; it covers the bytes read before it.
  const idxbase::FileDigest digest = idxbase::DigestDescriptor(input.get());
  if (output.Write(digest.digits, idxbase::kDigestDigits) != 0 || output.Commit() != 0) {
    return KOR_E_FAIL;
  }
  return KOR_S_OK;
}
