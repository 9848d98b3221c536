#include <cstdio>

#include "filter/operator_names.h"
#include "idxbase/filter_expressions.h"

namespace {

KORStatus NullExpression() {
  std::printf("Error in BBDComposedExpression::eval : null expression\n");
  return IDX_FILTER_UNDECIDABLE;
}

bool IsNotAvailable(BBDExpression* expression) {
  return expression != nullptr && expression->IsConstant() &&
         expression->GetConstantResult() == IDX_FILTER_UNDECIDABLE;
}

// A copy of `expression` for another tree; an NA expression stands for one
// that cannot be duplicated.
BBDExpression* CopyOf(const BBDExpression* expression) {
  if (expression == nullptr) return nullptr;
  BBDExpression* copy = expression->Duplicate();
  return copy != nullptr ? copy : new BBDNAExpression();
}

KORUnicodeString Rendering(BBDExpression* expression) {
  KORUnicodeString text("NULL");
  if (expression != nullptr) {
    text = "";
    expression->toString(text);
  }
  return text;
}

// Hands `side` over to the caller, leaving null in its place.
BBDExpression* Detach(BBDExpression*& side) {
  BBDExpression* detached = side;
  side = nullptr;
  return detached;
}

}  // namespace

BBDComposedExpression::BBDComposedExpression(IDX_Filter_Operator op, BBDExpression* first,
                                             BBDExpression* second)
    : BBDExpression(op), m_First(first), m_Second(second) {}

BBDComposedExpression::BBDComposedExpression(const BBDComposedExpression& other)
    : BBDExpression(other), m_First(CopyOf(other.m_First)), m_Second(CopyOf(other.m_Second)) {}

BBDComposedExpression& BBDComposedExpression::operator=(const BBDComposedExpression& other) {
  if (this == &other) return *this;
  BBDExpression* first = CopyOf(other.m_First);
  BBDExpression* second = CopyOf(other.m_Second);
  Release();
  BBDExpression::operator=(other);
  m_First = first;
  m_Second = second;
  return *this;
}

BBDComposedExpression::~BBDComposedExpression() { Release(); }

void BBDComposedExpression::Release() {
  delete m_First;
  delete m_Second;
  m_First = nullptr;
  m_Second = nullptr;
}

KORStatus BBDComposedExpression::eval(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r,
                                      bool caseSensitive) {
  if (m_First == nullptr) return NullExpression();
  switch (Operator()) {
    case IDX_Filter_Op_Not:
      return EvalNot(o, c, r, caseSensitive);
    case IDX_Filter_Op_Or:
      return m_Second == nullptr ? NullExpression() : EvalOr(o, c, r, caseSensitive);
    case IDX_Filter_Op_And:
      return m_Second == nullptr ? NullExpression() : EvalAnd(o, c, r, caseSensitive);
    default:
      return IDX_FILTER_UNDECIDABLE;
  }
}

KORStatus BBDComposedExpression::EvalNot(const BBDOccurrence& o, unsigned int c,
                                         BBDIAttributeRead& r, bool caseSensitive) {
  const KORStatus result = m_First->eval(o, c, r, caseSensitive);
  if (result == IDX_FILTER_UNDECIDABLE) return IDX_FILTER_UNDECIDABLE;
  return result == IDX_FILTER_DOES_NOT ? IDX_FILTER_HOLDS : IDX_FILTER_DOES_NOT;
}

KORStatus BBDComposedExpression::EvalOr(const BBDOccurrence& o, unsigned int c,
                                        BBDIAttributeRead& r, bool caseSensitive) {
  const KORStatus first = m_First->eval(o, c, r, caseSensitive);
  if (first == IDX_FILTER_HOLDS) return IDX_FILTER_HOLDS;
  const KORStatus second = m_Second->eval(o, c, r, caseSensitive);
  if (second == IDX_FILTER_HOLDS) return IDX_FILTER_HOLDS;
  if (first == IDX_FILTER_DOES_NOT || second == IDX_FILTER_DOES_NOT) return IDX_FILTER_DOES_NOT;
  return IDX_FILTER_UNDECIDABLE;
}

KORStatus BBDComposedExpression::EvalAnd(const BBDOccurrence& o, unsigned int c,
                                         BBDIAttributeRead& r, bool caseSensitive) {
  const KORStatus first = m_First->eval(o, c, r, caseSensitive);
  if (first == IDX_FILTER_UNDECIDABLE) return IDX_FILTER_UNDECIDABLE;
  const KORStatus second = m_Second->eval(o, c, r, caseSensitive);
  if (second == IDX_FILTER_UNDECIDABLE) return IDX_FILTER_UNDECIDABLE;
  if (first == IDX_FILTER_DOES_NOT || second == IDX_FILTER_DOES_NOT) return IDX_FILTER_DOES_NOT;
  return IDX_FILTER_HOLDS;
}

// The sides are asked whether they are NA only as far as the operator
// needs: an and asks its second side only when the first is not NA, an or
// likewise, and a not asks nothing. An or collapses to its other side even
// when that side is missing: the holder then keeps null.
BBDExpression* BBDComposedExpression::Compile() {
  BBDExpression::Compile(m_First);
  BBDExpression::Compile(m_Second);
  switch (GetOperator()) {
    case IDX_Filter_Op_And:
      if (IsNotAvailable(m_First) || IsNotAvailable(m_Second)) return new BBDNAExpression();
      return this;
    case IDX_Filter_Op_Or:
      if (IsNotAvailable(m_First)) return Detach(m_Second);
      if (IsNotAvailable(m_Second)) return Detach(m_First);
      return this;
    default:
      return this;
  }
}

void BBDComposedExpression::toString(KORUnicodeString& text) {
  text = "( ";
  if (GetOperator() == IDX_Filter_Op_Not) {
    text += "! ";
    text += Rendering(m_First);
  } else {
    text += Rendering(m_First);
    text += " ";
    text += idxbase::detail::OperatorName(GetOperator());
    text += " ";
    text += Rendering(m_Second);
  }
  text += " )";
}

BBDExpression* BBDComposedExpression::Duplicate() const { return new BBDComposedExpression(*this); }
