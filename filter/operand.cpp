#include <cstdio>

#include "idxbase/filter_operands.h"

BBDOperand::~BBDOperand() = default;

KORStatus BBDOperand::GetValString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                                   const char*&, int&) {
  return KOR_E_FAIL;
}

KORStatus BBDOperand::GetValInt(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, int&) {
  return KOR_E_FAIL;
}

KORStatus BBDOperand::GetValFloat(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, float&) {
  return KOR_E_FAIL;
}

KORStatus BBDOperand::GetValBool(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, bool&) {
  return KOR_E_FAIL;
}

KORStatus BBDOperand::GetValTime(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, KORTime&) {
  return KOR_E_FAIL;
}

KORStatus BBDOperand::GetValSet(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                                KORListPtrBBDOperand&) {
  return KOR_E_FAIL;
}

void BBDOperand::print() {
  KORUnicodeString text;
  toString(text);
  std::printf("%s", text.ConvertToChar());
}

void BBDOperand::toString(KORUnicodeString&) {}

BBDOperand* BBDOperand::Compile() { return this; }

void BBDOperand::Compile(BBDOperand*& operand) {
  if (operand == nullptr) return;
  BBDOperand* compiled = operand->Compile();
  if (compiled == operand) return;
  delete operand;
  operand = compiled;
}

KORListPtrBBDOperand::~KORListPtrBBDOperand() = default;
KORListPtrBBDTypeInfo::~KORListPtrBBDTypeInfo() = default;
