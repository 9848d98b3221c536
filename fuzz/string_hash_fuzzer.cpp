// IDX_StringHash at every start address alignment against the byte-wise
// fold, and the two hexadecimal conversions against snprintf("%02X").
//
// Input: a selector byte (the start offset of the bytes in their block,
// and whether to try a negative length), then the bytes.
#include <fuzzer/FuzzedDataProvider.h>
#include <sanitizer/asan_interface.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "fuzz_check.h"
#include "idxbase/hashing.h"
#include "idxbase/kor_types.h"

namespace {

using idxbase_fuzz::Check;
using idxbase_fuzz::ExactBytes;

bool LittleEndianHost() {
  const std::uint16_t one = 1;
  unsigned char first;
  std::memcpy(&first, &one, 1);
  return first == 1;
}

// The XOR of the 4-byte groups read as words of the host's byte order, the
// last group completed with zeros, one byte at a time.
std::uint32_t ModelFold(const unsigned char* bytes, int length) {
  std::uint32_t folded = 0;
  for (int i = 0; i < length; ++i) {
    const int lane = LittleEndianHost() ? i % 4 : 3 - i % 4;
    folded ^= static_cast<std::uint32_t>(bytes[i]) << (8 * lane);
  }
  return folded;
}

std::string ModelHexa(const unsigned char* bytes, std::size_t count) {
  std::string text;
  char pair[3];
  for (std::size_t i = 0; i < count; ++i) {
    std::snprintf(pair, sizeof pair, "%02X", bytes[i]);
    text += pair;
  }
  return text;
}

// `bytes` placed `offset` bytes into a heap block that ends with them; the
// whole 8-byte granules in front are poisoned, so that a read before the
// start trips the address sanitizer as a read past the end does.
class OffsetBytes {
 public:
  OffsetBytes(const std::vector<unsigned char>& bytes, std::size_t offset)
      : block_(new unsigned char[offset + bytes.size()]), offset_(offset) {
    if (!bytes.empty()) std::memcpy(block_.get() + offset, bytes.data(), bytes.size());
    ASAN_POISON_MEMORY_REGION(block_.get(), Guard());
  }
  ~OffsetBytes() { ASAN_UNPOISON_MEMORY_REGION(block_.get(), Guard()); }
  OffsetBytes(const OffsetBytes&) = delete;
  OffsetBytes& operator=(const OffsetBytes&) = delete;

  const unsigned char* get() const { return block_.get() + offset_; }

 private:
  std::size_t Guard() const { return offset_ & ~std::size_t{7}; }

  std::unique_ptr<unsigned char[]> block_;
  std::size_t offset_;
};

void CheckHash(const unsigned char* bytes, int length) {
  const unsigned int expected = IDX_IntegerHash(length > 0 ? ModelFold(bytes, length) : 0);
  Check(IDX_StringHash(reinterpret_cast<const char*>(bytes), length) == expected,
        "IDX_StringHash differs from the byte-wise fold");
}

void CheckHexa(const unsigned char* bytes, std::size_t count) {
  char* const untouched = reinterpret_cast<char*>(&count);
  char* text = untouched;
  const KORStatus status = ConvertToHexa(bytes, static_cast<unsigned int>(count), text);
  if (count == 0) {
    Check(status == KOR_S_FALSE && text == untouched, "ConvertToHexa of nothing");
  } else {
    Check(status == KOR_S_OK && text != nullptr, "ConvertToHexa failed");
    Check(ModelHexa(bytes, count) == text, "ConvertToHexa differs from snprintf");
    delete[] text;
  }

  // The caller's buffer holds exactly the text and its zero.
  const auto length = static_cast<short>(count);
  if (length <= 0) return;
  const std::unique_ptr<char[]> buffer(new char[2 * count + 1]);
  Check(ConvertToHexaPreAlloc(bytes, length, buffer.get()) == KOR_S_OK,
        "ConvertToHexaPreAlloc failed");
  Check(ModelHexa(bytes, count) == std::string(buffer.get()),
        "ConvertToHexaPreAlloc differs from snprintf");
}

// A negative length writes nothing and still succeeds; 0 is refused.
void CheckHexaLengthEdges(const unsigned char* bytes, short negative) {
  char sentinel = '#';
  Check(ConvertToHexaPreAlloc(bytes, negative, &sentinel) == KOR_S_OK && sentinel == '#',
        "ConvertToHexaPreAlloc with a negative length");
  Check(ConvertToHexaPreAlloc(bytes, 0, &sentinel) == KOR_S_FALSE && sentinel == '#',
        "ConvertToHexaPreAlloc with length 0");
  Check(ConvertToHexaPreAlloc(nullptr, 1, &sentinel) == KOR_S_FALSE && sentinel == '#',
        "ConvertToHexaPreAlloc of null data");
}

}  // namespace

// The conversions report empty input on standard output; libFuzzer
// reports on standard error, which stays.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return std::freopen("/dev/null", "w", stdout) == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const auto selector = input.ConsumeIntegral<std::uint8_t>();
  const std::vector<unsigned char> bytes = input.ConsumeRemainingBytes<unsigned char>();
  const OffsetBytes placed(bytes, selector % 16);
  const int length = static_cast<int>(bytes.size());

  CheckHash(placed.get(), length);
  CheckHexa(placed.get(), bytes.size());
  if (selector >= 0xF0) {
    // Lengths of 0 or less hash no byte: null must do.
    CheckHash(nullptr, -static_cast<int>(selector));
    CheckHash(nullptr, 0);
    CheckHexaLengthEdges(placed.get(), static_cast<short>(-1 - length % 0x7FFF));
  }
  return 0;
}
