#include "filter/operator_choice.h"

namespace idxbase::detail {
namespace {

const char* TypeName(IDX_Filter_ValueType type) {
  switch (type) {
    case IDX_Filter_Type_Int:
      return "an integer";
    case IDX_Filter_Type_String:
      return "a string";
    case IDX_Filter_Type_Float:
      return "a float";
    case IDX_Filter_Type_Boolean:
      return "a boolean";
    case IDX_Filter_Type_Time:
      return "a time";
    default:
      return "of no comparable type";
  }
}

std::string Quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

}  // namespace

OperatorChoice ChooseOperator(OperatorKind kind, const std::vector<ParsedOperand*>& operands,
                              std::size_t operatorOffset) {
  // The type that decides: the first float, else the first typed operand,
  // else the lowest type of the kind (an integer, or a string for LIKE).
  const ParsedOperand* decider = nullptr;
  for (const ParsedOperand* operand : operands) {
    if (!operand->typed) continue;
    if (decider == nullptr || operand->type == IDX_Filter_Type_Float) decider = operand;
    if (operand->type == IDX_Filter_Type_Float) break;
  }
  const OperatorRow* kindRow = nullptr;
  for (const OperatorRow& row : kOperatorRows) {
    if (row.kind == kind && (kindRow == nullptr || row.type < kindRow->type)) kindRow = &row;
  }
  const IDX_Filter_ValueType type = decider != nullptr ? decider->type : kindRow->type;

  OperatorChoice choice;
  for (ParsedOperand* operand : operands) {
    if (!operand->typed || operand->type == type) continue;
    if (type == IDX_Filter_Type_Float && operand->isIntConstant) {
      operand->operand =
          std::make_unique<BBDOperandFloatConst>(static_cast<float>(operand->intValue));
      operand->type = IDX_Filter_Type_Float;
      continue;
    }
    choice.error = "type mismatch: " + Quoted(operand->text) + " is " + TypeName(operand->type) +
                   " but " + Quoted(decider->text) + " is " + TypeName(type);
    choice.errorOffset = operand->offset;
    return choice;
  }
  for (const OperatorRow& row : kOperatorRows) {
    if (row.kind == kind && row.type == type) {
      choice.op = row.op;
      return choice;
    }
  }
  choice.error = Quoted(kindRow->name) + " does not apply to " + TypeName(type) + " value";
  choice.errorOffset = operatorOffset;
  return choice;
}

}  // namespace idxbase::detail
