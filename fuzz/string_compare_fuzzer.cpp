// CompareStrings and CompareLikeStrings against byte-by-byte models, for
// both case settings and for lengths that are zero or negative (with no
// bytes behind them: a read would fault).
//
// Input: a selector byte for the case setting and how each length is
// given, then the first string (a length-prefixed run), then the second.
#include <fuzzer/FuzzedDataProvider.h>

#include <climits>
#include <cstdint>
#include <string>

#include "filter/string_compare.h"
#include "fuzz_check.h"
#include "support/string_reference.h"

namespace {

using idxbase_fuzz::Check;
using idxbase_fuzz::ExactBytes;

// One side of a comparison: its bytes and the length passed with them.
struct Side {
  ExactBytes bytes;
  int length;
};

// Mostly the real length; one time in eight 0 and one in eight negative,
// both without any bytes.
Side MakeSide(unsigned int how, int negative, const std::string& text) {
  switch (how % 8) {
    case 0:
      return {ExactBytes(nullptr, 0), 0};
    case 1:
      return {ExactBytes(nullptr, 0), negative};
    default:
      return {ExactBytes(text), static_cast<int>(text.size())};
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const auto selector = input.ConsumeIntegral<std::uint8_t>();
  const int negative = input.ConsumeIntegralInRange<int>(INT_MIN, -1);
  const bool caseSensitive = (selector & 1) != 0;
  const std::string first = input.ConsumeRandomLengthString();
  const std::string second = input.ConsumeRemainingBytesAsString();
  const Side a = MakeSide(selector >> 1, negative, first);
  const Side b = MakeSide(selector >> 4, negative, second);

  using idxbase::detail::CompareLikeStrings;
  using idxbase::detail::CompareStrings;
  const int order =
      CompareStrings(caseSensitive, a.length, a.bytes.chars(), b.length, b.bytes.chars());
  Check(order == idxbase_test::ReferenceCompare(caseSensitive, a.length, a.bytes.chars(), b.length,
                                                b.bytes.chars()),
        "CompareStrings differs from the model");
  Check(
      -order == CompareStrings(caseSensitive, b.length, b.bytes.chars(), a.length, a.bytes.chars()),
      "CompareStrings is not antisymmetric");

  // The first string is the subject, the second the pattern.
  const int like =
      CompareLikeStrings(caseSensitive, a.length, a.bytes.chars(), b.length, b.bytes.chars());
  Check(like == idxbase_test::ReferenceLike(caseSensitive, a.length, a.bytes.chars(), b.length,
                                            b.bytes.chars()),
        "CompareLikeStrings differs from the model");
  return 0;
}
