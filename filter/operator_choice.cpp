#include "filter/operator_choice.h"

namespace idxbase::detail {
namespace {

constexpr int kNone = -1;

// The operator of each kind (rows, in CompareKind order) for each value
// type (columns: int, string, float, boolean, time); kNone where the
// comparison does not apply.
constexpr int kOperators[10][5] = {
    {IDX_Filter_Op_EqualInt, IDX_Filter_Op_EqualString, IDX_Filter_Op_EqualFloat,
     IDX_Filter_Op_EqualBoolean, IDX_Filter_Op_EqualTime},
    {IDX_Filter_Op_DifferentInt, IDX_Filter_Op_DifferentString, IDX_Filter_Op_DifferentFloat,
     IDX_Filter_Op_DifferentBoolean, IDX_Filter_Op_DifferentTime},
    {IDX_Filter_Op_LowerInt, IDX_Filter_Op_LowerString, IDX_Filter_Op_LowerFloat, kNone,
     IDX_Filter_Op_LowerTime},
    {IDX_Filter_Op_LowerEqInt, IDX_Filter_Op_LowerEqString, IDX_Filter_Op_LowerEqFloat, kNone,
     IDX_Filter_Op_LowerEqTime},
    {IDX_Filter_Op_HigherInt, IDX_Filter_Op_HigherString, IDX_Filter_Op_HigherFloat, kNone,
     IDX_Filter_Op_HigherTime},
    {IDX_Filter_Op_HigherEqInt, IDX_Filter_Op_HigherEqString, IDX_Filter_Op_HigherEqFloat, kNone,
     IDX_Filter_Op_HigherEqTime},
    {IDX_Filter_Op_BetweenInt, IDX_Filter_Op_BetweenString, IDX_Filter_Op_BetweenFloat, kNone,
     IDX_Filter_Op_BetweenTime},
    {IDX_Filter_Op_InInt, IDX_Filter_Op_InString, IDX_Filter_Op_InFloat, IDX_Filter_Op_InBoolean,
     kNone},
    {kNone, IDX_Filter_Op_LikeString, kNone, kNone, kNone},
    {kNone, IDX_Filter_Op_NotLikeString, kNone, kNone, kNone},
};

constexpr const char* kKindNames[10] = {"=",  "<>",      "<",  "<=",   ">",
                                        ">=", "BETWEEN", "IN", "LIKE", "NOT_LIKE"};

int Column(IDX_Filter_ValueType type) {
  switch (type) {
    case IDX_Filter_Type_Int:
      return 0;
    case IDX_Filter_Type_String:
      return 1;
    case IDX_Filter_Type_Float:
      return 2;
    case IDX_Filter_Type_Boolean:
      return 3;
    case IDX_Filter_Type_Time:
      return 4;
    default:
      return kNone;
  }
}

const char* TypeName(IDX_Filter_ValueType type) {
  static const char* const kNames[5] = {"an integer", "a string", "a float", "a boolean", "a time"};
  const int column = Column(type);
  return column == kNone ? "of no comparable type" : kNames[column];
}

std::string Quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

}  // namespace

OperatorChoice ChooseOperator(CompareKind kind, const std::vector<ParsedOperand*>& operands,
                              std::size_t operatorOffset) {
  // The type that decides: the first float, else the first typed operand.
  const ParsedOperand* decider = nullptr;
  for (const ParsedOperand* operand : operands) {
    if (!operand->typed) continue;
    if (decider == nullptr || operand->type == IDX_Filter_Type_Float) decider = operand;
    if (operand->type == IDX_Filter_Type_Float) break;
  }
  IDX_Filter_ValueType type = IDX_Filter_Type_Int;
  if (decider != nullptr) {
    type = decider->type;
  } else if (kind == CompareKind::kLike || kind == CompareKind::kNotLike) {
    type = IDX_Filter_Type_String;
  }

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
  const int column = Column(type);
  const int op = column == kNone ? kNone : kOperators[static_cast<int>(kind)][column];
  if (op == kNone) {
    choice.error = std::string("'") + kKindNames[static_cast<int>(kind)] + "' does not apply to " +
                   TypeName(type) + " value";
    choice.errorOffset = operatorOffset;
    return choice;
  }
  choice.op = static_cast<IDX_Filter_Operator>(op);
  return choice;
}

}  // namespace idxbase::detail
