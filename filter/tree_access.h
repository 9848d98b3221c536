// A view of a tree's private parts for the library's own tree walkers:
// the column evaluator and the filter-text formatter. A friend of the
// expression and operand classes whose members it reads.
#ifndef IDXBASE_FILTER_TREE_ACCESS_H_
#define IDXBASE_FILTER_TREE_ACCESS_H_

#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"
#include "idxbase/filter_operands.h"

namespace idxbase::detail {

struct TreeAccess {
  static BBDExpression* First(const BBDComposedExpression& e) { return e.m_First; }
  static BBDExpression* Second(const BBDComposedExpression& e) { return e.m_Second; }
  static BBDOperand* OperandOf(const BBDBasicExpression& e, int position) {
    return e.m_Operand[position].get();
  }
  // The caller's variable that a user-string operand reads.
  static const char* const* VariableOf(const BBDOperandStringUser& operand) {
    return operand.m_Variable;
  }
  // The type and attribute names that an attribute operand renders.
  static const KORUnicodeString& TypeNameOf(const BBDOperandAttribute& operand) {
    return operand.m_FirstName;
  }
  static const KORUnicodeString& AttributeNameOf(const BBDOperandAttribute& operand) {
    return operand.m_SecondName;
  }
};

}  // namespace idxbase::detail

#endif  // IDXBASE_FILTER_TREE_ACCESS_H_
