#include <cstdio>

#include "idxbase/filter_attributes.h"

BBDOperandMultiTypeNoCompiled::BBDOperandMultiTypeNoCompiled(
    const KORListValKORUnicodeString& typeNames, const KORUnicodeString& attributeName,
    IDX_Filter_ValueType valueType)
    : m_TypeNames(typeNames), m_AttributeName(attributeName), m_ValueType(valueType) {}

BBDOperandMultiTypeNoCompiled::~BBDOperandMultiTypeNoCompiled() = default;

IDX_Filter_OperandType BBDOperandMultiTypeNoCompiled::GetOperandType() {
  return IDX_Filter_Operand_Attribute;
}

IDX_Filter_ValueType BBDOperandMultiTypeNoCompiled::GetValueType() { return m_ValueType; }

void BBDOperandMultiTypeNoCompiled::toString(KORUnicodeString& text) {
  for (int position = 1; position <= m_TypeNames.Size(); ++position) {
    text += m_TypeNames[position];
    text += ".";
  }
  text += m_AttributeName;
}

BBDOperand* BBDOperandMultiTypeNoCompiled::Compile() {
  std::printf("BBDOperandMultiTypeNoCompiled::Compile not implemented or not tested\n");
  return this;
}
