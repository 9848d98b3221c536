// Upper-case hexadecimal text of bytes, shared by the conversion functions
// and the byte array's dump.
#ifndef IDXBASE_BASE_HEXADECIMAL_H_
#define IDXBASE_BASE_HEXADECIMAL_H_

#include <cstddef>

namespace idxbase::detail {

// Writes two digits per byte, high nibble first, and a zero at
// text[2 * count]. Requires: `text` holds 2 * count + 1 chars.
void WriteHexa(const unsigned char* bytes, std::size_t count, char* text);

}  // namespace idxbase::detail

#endif  // IDXBASE_BASE_HEXADECIMAL_H_
