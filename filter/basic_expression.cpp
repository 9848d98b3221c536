// Construction, copying, dispatch, compilation and rendering of basic
// expressions; the comparisons themselves are in basic_comparisons.cpp.
#include <cstdio>

#include "filter/constant_values.h"
#include "filter/operator_names.h"
#include "filter/string_compare.h"
#include "idxbase/filter_expressions.h"

bool BBDBasicExpression::_IsCaseSensitive = true;

namespace {

KORUnicodeString Rendering(BBDOperand* operand) {
  KORUnicodeString text;
  operand->toString(text);
  return text;
}

}  // namespace

BBDBasicExpression::BBDBasicExpression(IDX_Filter_Operator op, BBDOperand* first,
                                       BBDOperand* second)
    : BBDBasicExpression(op, first, second, nullptr) {}

BBDBasicExpression::BBDBasicExpression(IDX_Filter_Operator op, BBDOperand* first,
                                       BBDOperand* second, BBDOperand* third)
    : BBDExpression(op),
      m_Operand{std::shared_ptr<BBDOperand>(first), std::shared_ptr<BBDOperand>(second),
                std::shared_ptr<BBDOperand>(third)},
      m_Exact{idxbase::detail::ExactClassOf(first), idxbase::detail::ExactClassOf(second),
              idxbase::detail::ExactClassOf(third)},
      m_EvalFunction(op >= 0 && op < IDX_Filter_Infos::kOperatorCount ? m_EvalFunctionTable[op]
                                                                      : nullptr) {}

BBDBasicExpression::BBDBasicExpression(const BBDBasicExpression& other) = default;
BBDBasicExpression& BBDBasicExpression::operator=(const BBDBasicExpression& other) = default;

// Lets go of the operands in order; the last expression holding an
// operand deletes it.
BBDBasicExpression::~BBDBasicExpression() {
  for (std::shared_ptr<BBDOperand>& operand : m_Operand) operand.reset();
}

KORStatus BBDBasicExpression::eval(const BBDOccurrence& occurrence, unsigned int context,
                                   BBDIAttributeRead& reader, bool caseSensitive) {
  _IsCaseSensitive = caseSensitive;
  if (m_EvalFunction == nullptr) {
    std::printf("No evaluation function defined.\n");
    return IDX_FILTER_UNDECIDABLE;
  }
  return (this->*m_EvalFunction)(occurrence, context, reader);
}

int BBDBasicExpression::CompareStrings(int lengthA, const char* a, int lengthB, const char* b) {
  return idxbase::detail::CompareStrings(_IsCaseSensitive, lengthA, a, lengthB, b);
}

int BBDBasicExpression::CompareLikeStrings(int lengthS, const char* s, int lengthP, const char* p) {
  return idxbase::detail::CompareLikeStrings(_IsCaseSensitive, lengthS, s, lengthP, p);
}

BBDExpression* BBDBasicExpression::Compile() {
  if (m_Operand[0] == nullptr || m_Operand[1] == nullptr) {
    std::printf("Warning : null operand in BBDBasicExpression::Compile()\n");
    return this;
  }
  bool notAvailable = false;
  for (const std::shared_ptr<BBDOperand>& operand : m_Operand) {
    if (operand != nullptr && operand->GetValueType() == IDX_Filter_Type_NA) notAvailable = true;
  }
  if (notAvailable) return new BBDNAExpression();
  return this;
}

void BBDBasicExpression::toString(KORUnicodeString& text) {
  text += "( ";
  text += m_Operand[0] != nullptr ? Rendering(m_Operand[0].get()) : KORUnicodeString("NullOperand");
  text += " ";
  text += idxbase::detail::OperatorName(GetOperator());
  text += " ";
  if (m_Operand[1] == nullptr) {
    text += "NullOperand";
  } else {
    text += Rendering(m_Operand[1].get());
    if (m_Operand[2] != nullptr) {
      text += " ";
      text += Rendering(m_Operand[2].get());
    }
  }
  text += " )";
}

BBDExpression* BBDBasicExpression::Duplicate() const { return new BBDBasicExpression(*this); }
