#include <cstdio>

#include "idxbase/filter_operands.h"

BBDOperandSet::BBDOperandSet() = default;

BBDOperandSet::BBDOperandSet(BBDOperand* element) { Append(element); }

BBDOperandSet::BBDOperandSet(const BBDOperandSet& other)
    : BBDOperand(other), m_Elements(other.m_Elements), m_Owners(other.m_Owners) {}

BBDOperandSet& BBDOperandSet::operator=(const BBDOperandSet& other) {
  if (this == &other) return *this;
  ReleaseElements();
  m_Elements = other.m_Elements;
  m_Owners = other.m_Owners;
  return *this;
}

BBDOperandSet::~BBDOperandSet() { ReleaseElements(); }

void BBDOperandSet::ReleaseElements() {
  // In list order: an element goes with the last set that shares it.
  for (std::shared_ptr<BBDOperand>& owner : m_Owners) owner.reset();
  m_Owners.clear();
  m_Elements.RemoveAll(KORCollec::KeepMemory);
}

int BBDOperandSet::Append(BBDOperand* element) {
  m_Owners.emplace_back(element);
  return m_Elements.Append(element);
}

IDX_Filter_OperandType BBDOperandSet::GetOperandType() { return IDX_Filter_Operand_Constant; }
IDX_Filter_ValueType BBDOperandSet::GetValueType() { return IDX_Filter_Type_Set; }

KORStatus BBDOperandSet::GetValSet(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                                   KORListPtrBBDOperand& value) {
  if (&value != &m_Elements) value = m_Elements;
  return KOR_S_OK;
}

void BBDOperandSet::print() {
  std::printf("{ ");
  for (int position = 1; position <= m_Elements.Size(); ++position) {
    BBDOperand* element = static_cast<const KORListPtrBBDOperand&>(m_Elements)[position];
    if (element == nullptr) continue;
    element->print();
    std::printf(" ");
  }
  std::printf("}");
}
