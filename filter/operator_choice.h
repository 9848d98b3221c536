// The typed operator of a comparison, from its operands' value types.
#ifndef IDXBASE_FILTER_OPERATOR_CHOICE_H_
#define IDXBASE_FILTER_OPERATOR_CHOICE_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "filter/operator_table.h"
#include "idxbase/filter_operands.h"
#include "idxbase/filter_vocabulary.h"

namespace idxbase::detail {

// One operand as written, with what typing needs to know of it.
struct ParsedOperand {
  std::unique_ptr<BBDOperand> operand;  // null for NullOperand
  bool typed = false;                   // false for NAOperand and NullOperand
  IDX_Filter_ValueType type = IDX_Filter_Type_NA;
  bool isIntConstant = false;
  int intValue = 0;
  std::string_view text;  // as written, for messages
  std::size_t offset = 0;
};

struct OperatorChoice {
  IDX_Filter_Operator op = IDX_Filter_Op_Unsupported;
  std::string error;  // empty on success
  std::size_t errorOffset = 0;
};

// Chooses the row of `kind` that compares the type of `operands` (the
// subject first, then the values or the set's elements); the kind's first
// type when none has a type. An integer constant meeting a float is
// replaced in place by the equal float constant.
OperatorChoice ChooseOperator(OperatorKind kind, const std::vector<ParsedOperand*>& operands,
                              std::size_t operatorOffset);

}  // namespace idxbase::detail

#endif  // IDXBASE_FILTER_OPERATOR_CHOICE_H_
