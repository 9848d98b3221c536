// Which operands give the same value at every read.
#ifndef IDXBASE_FILTER_FIXED_OPERANDS_H_
#define IDXBASE_FILTER_FIXED_OPERANDS_H_

#include "idxbase/filter_operands.h"

namespace idxbase::detail {

// True for exactly the library's integer, float, boolean and time
// constants (not for classes derived from them): their reads never change.
// The string constant is left out, since assignment replaces its bytes.
bool IsFixedConstant(const BBDOperand& operand);
// True for exactly the library's set class.
bool IsLibrarySet(const BBDOperand& operand);

}  // namespace idxbase::detail

#endif  // IDXBASE_FILTER_FIXED_OPERANDS_H_
