#include <cstdio>

#include "idxbase/filter_operands.h"

BBDOperandSet::BBDOperandSet() = default;

BBDOperandSet::BBDOperandSet(BBDOperand* element) { Append(element); }

BBDOperandSet::~BBDOperandSet() = default;

int BBDOperandSet::Append(BBDOperand* element) { return m_Elements.Adopt(element); }

IDX_Filter_OperandType BBDOperandSet::GetOperandType() { return IDX_Filter_Operand_Constant; }
IDX_Filter_ValueType BBDOperandSet::GetValueType() { return IDX_Filter_Type_Set; }

KORStatus BBDOperandSet::GetValSet(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                                   KORListPtrBBDOperand& value) {
  m_Elements.CopyTo(value);
  return KOR_S_OK;
}

void BBDOperandSet::print() {
  std::printf("{ ");
  for (int position = 1; position <= m_Elements.Size(); ++position) {
    BBDOperand* element = m_Elements[position];
    if (element == nullptr) continue;
    element->print();
    std::printf(" ");
  }
  std::printf("}");
}
