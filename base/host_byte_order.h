// The byte order of the machine the library is compiled for.
#ifndef IDXBASE_BASE_HOST_BYTE_ORDER_H_
#define IDXBASE_BASE_HOST_BYTE_ORDER_H_

namespace idxbase::detail {

constexpr bool kLittleEndianHost = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;

}  // namespace idxbase::detail

#endif  // IDXBASE_BASE_HOST_BYTE_ORDER_H_
