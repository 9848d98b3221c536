// The public operator tables, read off the operator rows.
#include "filter/operator_table.h"
#include "idxbase/filter_vocabulary.h"

#define IDXBASE_OPERANDS_OF(op) idxbase::detail::kOperatorRows[op].operands,
const int IDX_Filter_Infos::NumberOfOperands[kOperatorCount] = {
    IDXBASE_EACH_OPERATOR(IDXBASE_OPERANDS_OF)};
#undef IDXBASE_OPERANDS_OF

#define IDXBASE_TYPE_OF(op) idxbase::detail::kOperatorRows[op].type,
const IDX_Filter_ValueType IDX_Filter_Infos::OperatorType[kOperatorCount] = {
    IDXBASE_EACH_OPERATOR(IDXBASE_TYPE_OF)};
#undef IDXBASE_TYPE_OF
