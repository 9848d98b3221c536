#include "filter/operator_names.h"

#include "idxbase/filter_vocabulary.h"

namespace idxbase::detail {

const char* OperatorName(int op) {
  static const char* const kNames[IDX_Filter_Infos::kOperatorCount] = {
      "!",       "|",       "&",       "=",  "=",        "=",        "=",
      "BETWEEN", "BETWEEN", "BETWEEN", "<",  "<",        "<",        "<=",
      "<=",      "<=",      ">",       ">",  ">",        ">=",       ">=",
      ">=",      "KINDOF",  "LIKE",    "<>", "<>",       "<>",       "<>",
      "IN",      "IN",      "IN",      "IN", "multival", "NOT_LIKE", "=",
      "<>",      "BETWEEN", "<",       "<=", ">",        ">=",       "UNSUPPORTED_OP",
  };
  return op >= 0 && op < IDX_Filter_Infos::kOperatorCount ? kNames[op] : "UNKNOWN_OP";
}

}  // namespace idxbase::detail
