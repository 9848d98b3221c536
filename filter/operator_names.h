// The rendering names of the filter operators.
#ifndef IDXBASE_FILTER_OPERATOR_NAMES_H_
#define IDXBASE_FILTER_OPERATOR_NAMES_H_

namespace idxbase::detail {

// The name that renderings write for operator `op` ("=", "BETWEEN",
// "LIKE", ...); "UNKNOWN_OP" for a value outside 0..41.
const char* OperatorName(int op);

}  // namespace idxbase::detail

#endif  // IDXBASE_FILTER_OPERATOR_NAMES_H_
