// The NA operand and the integer, float, boolean and time constants.
#include <typeinfo>

#include "filter/constant_values.h"
#include "idxbase/filter_operands.h"

IDX_Filter_OperandType BBDNAOperand::GetOperandType() { return IDX_Filter_Operand_Constant; }
IDX_Filter_ValueType BBDNAOperand::GetValueType() { return IDX_Filter_Type_NA; }
void BBDNAOperand::toString(KORUnicodeString& text) { text = "NAOperand"; }

IDX_Filter_OperandType BBDOperandIntConst::GetOperandType() { return IDX_Filter_Operand_Constant; }
IDX_Filter_ValueType BBDOperandIntConst::GetValueType() { return IDX_Filter_Type_Int; }
KORStatus BBDOperandIntConst::GetValInt(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                                        int& value) {
  value = m_Value;
  return KOR_S_OK;
}
void BBDOperandIntConst::toString(KORUnicodeString& text) { text.BuildFromNum(m_Value, "%d"); }

IDX_Filter_OperandType BBDOperandFloatConst::GetOperandType() {
  return IDX_Filter_Operand_Constant;
}
IDX_Filter_ValueType BBDOperandFloatConst::GetValueType() { return IDX_Filter_Type_Float; }
KORStatus BBDOperandFloatConst::GetValFloat(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                                            float& value) {
  value = m_Value;
  return KOR_S_OK;
}
void BBDOperandFloatConst::toString(KORUnicodeString& text) {
  text.BuildFromNum(static_cast<double>(m_Value), "%.9f");
}

IDX_Filter_OperandType BBDOperandBooleanConst::GetOperandType() {
  return IDX_Filter_Operand_Constant;
}
IDX_Filter_ValueType BBDOperandBooleanConst::GetValueType() { return IDX_Filter_Type_Boolean; }
KORStatus BBDOperandBooleanConst::GetValBool(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                                             bool& value) {
  value = m_Value;
  return KOR_S_OK;
}
void BBDOperandBooleanConst::toString(KORUnicodeString& text) { text = m_Value ? "true" : "false"; }

IDX_Filter_OperandType BBDOperandTimeConst::GetOperandType() { return IDX_Filter_Operand_Constant; }
IDX_Filter_ValueType BBDOperandTimeConst::GetValueType() { return IDX_Filter_Type_Time; }
KORStatus BBDOperandTimeConst::GetValTime(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                                          KORTime& value) {
  value = m_Value;
  return KOR_S_OK;
}
void BBDOperandTimeConst::toString(KORUnicodeString& text) { text = "time unsupported"; }

namespace idxbase::detail {

ExactOperand ExactClassOf(const BBDOperand* operand) {
  if (operand == nullptr) return ExactOperand::kOther;
  const std::type_info& type = typeid(*operand);
  if (type == typeid(BBDOperandIntConst)) return ExactOperand::kInt;
  if (type == typeid(BBDOperandFloatConst)) return ExactOperand::kFloat;
  if (type == typeid(BBDOperandBooleanConst)) return ExactOperand::kBoolean;
  if (type == typeid(BBDOperandStringConst)) return ExactOperand::kString;
  if (type == typeid(BBDOperandTimeConst)) return ExactOperand::kTime;
  if (type == typeid(BBDOperandSet)) return ExactOperand::kSet;
  return ExactOperand::kOther;
}

}  // namespace idxbase::detail
