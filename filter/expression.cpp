// The expression base, root compilation and the NA expression.
#include <cstdio>

#include "idxbase/filter_expressions.h"

BBDExpression::~BBDExpression() = default;

void BBDExpression::print() {
  KORUnicodeString text;
  toString(text);
  std::printf("%s", text.ConvertToChar());
}

IDX_Filter_Operator BBDExpression::GetOperator() { return m_Operator; }
bool BBDExpression::IsConstant() { return false; }
KORStatus BBDExpression::GetConstantResult() { return IDX_FILTER_UNDECIDABLE; }
bool BBDExpression::IsSpecial() { return false; }
bool BBDExpression::IsActive() { return m_Active; }
void BBDExpression::toString(KORUnicodeString&) {}
BBDExpression* BBDExpression::Duplicate() const { return nullptr; }
BBDExpression* BBDExpression::Compile() { return this; }

void BBDExpression::Compile(BBDExpression*& root) {
  if (root == nullptr) return;
  BBDExpression* compiled = root->Compile();
  if (compiled == root) return;
  delete root;
  root = compiled;
}

KORStatus BBDNAExpression::eval(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, bool) {
  return IDX_FILTER_UNDECIDABLE;
}
bool BBDNAExpression::IsConstant() { return true; }
void BBDNAExpression::toString(KORUnicodeString& text) { text = "NAExpression"; }
BBDExpression* BBDNAExpression::Duplicate() const { return new BBDNAExpression(*this); }
