#include "filter/operator_names.h"

#include "filter/operator_table.h"

namespace idxbase::detail {

const char* OperatorName(int op) {
  return op >= 0 && op < IDX_Filter_Infos::kOperatorCount ? kOperatorRows[op].name : "UNKNOWN_OP";
}

}  // namespace idxbase::detail
