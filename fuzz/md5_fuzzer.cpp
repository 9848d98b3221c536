// MD5 over arbitrary splits of a message (each piece at its own, often
// odd, address) against the one-shot digest of the same bytes, ours and
// OpenSSL's.
//
// Input: up to 16 piece lengths, then the message; the last piece takes
// whatever the lengths leave.
#include <fuzzer/FuzzedDataProvider.h>
#include <openssl/evp.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz_check.h"
#include "idxbase/checksum.h"

namespace {

using idxbase_fuzz::Check;

struct Digest {
  unsigned char bytes[16];
  bool operator==(const Digest& other) const {
    return std::memcmp(bytes, other.bytes, sizeof bytes) == 0;
  }
};

Digest OneShot(const std::vector<unsigned char>& message) {
  IDX_MD5_CTX context;
  MD5Init(&context);
  MD5Update(&context, message.empty() ? nullptr : message.data(),
            static_cast<unsigned int>(message.size()));
  Digest digest;
  MD5Final(digest.bytes, &context);
  return digest;
}

Digest OpenSslOneShot(const std::vector<unsigned char>& message) {
  Digest digest;
  unsigned int length = 0;
  Check(
      EVP_Digest(message.data(), message.size(), digest.bytes, &length, EVP_md5(), nullptr) == 1 &&
          length == 16,
      "OpenSSL's MD5 failed");
  return digest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  std::vector<std::size_t> pieces(input.ConsumeIntegralInRange<std::size_t>(0, 16));
  for (std::size_t& piece : pieces) piece = input.ConsumeIntegralInRange<std::size_t>(0, 200);
  const auto misalignment = input.ConsumeIntegralInRange<std::size_t>(0, 7);
  const std::vector<unsigned char> message = input.ConsumeRemainingBytes<unsigned char>();
  pieces.push_back(message.size());

  IDX_MD5_CTX context;
  MD5Init(&context);
  std::size_t done = 0;
  for (std::size_t piece : pieces) {
    const std::size_t length = std::min(piece, message.size() - done);
    if (length == 0) {
      MD5Update(&context, nullptr, 0);
      continue;
    }
    // Each piece alone in a block that ends with it, at an odd offset.
    const std::unique_ptr<unsigned char[]> block(new unsigned char[misalignment + length]);
    std::memcpy(block.get() + misalignment, message.data() + done, length);
    MD5Update(&context, block.get() + misalignment, static_cast<unsigned int>(length));
    done += length;
  }
  Digest split;
  MD5Final(split.bytes, &context);

  Check(done == message.size(), "the pieces do not cover the message");
  Check(split == OneShot(message), "split digest differs from the one-shot digest");
  Check(split == OpenSslOneShot(message), "digest differs from OpenSSL's");
  return 0;
}
