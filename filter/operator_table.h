// Every fact about a filter operator, in one row per operator. The public
// IDX_Filter_Infos tables, the dispatch of basic expressions, rendering,
// the filter language's spellings and its typing all read these rows:
// adding an operator is adding a row.
#ifndef IDXBASE_FILTER_OPERATOR_TABLE_H_
#define IDXBASE_FILTER_OPERATOR_TABLE_H_

#include <cstddef>
#include <iterator>
#include <string_view>

#include "idxbase/filter_expressions.h"
#include "idxbase/filter_vocabulary.h"

namespace idxbase::detail {

// What an operator does, whatever value type it compares. The filter
// language writes a kind and picks the row of the operands' type.
enum class OperatorKind {
  kNot,
  kOr,
  kAnd,
  kEqual,
  kDifferent,
  kLower,
  kLowerEq,
  kHigher,
  kHigherEq,
  kBetween,
  kIn,
  kLike,
  kNotLike,
  kUnwritten,  // no spelling in the filter language
};

// A friend of BBDBasicExpression, so that rows can name its private
// evaluation functions.
struct OperatorTable {
  struct Row {
    IDX_Filter_Operator op;
    const char* name;                       // what toString writes; the language's spelling
    std::string_view alias;                 // a second spelling, or empty
    OperatorKind kind;                      // rows of one kind share name and alias
    int operands;                           // after the subject: 1, 2 (a range), -1 (a set), 0
    IDX_Filter_ValueType type;              // the compared type
    BBDBasicExpression::EvalFunction eval;  // null: no evaluation
  };

  using B = BBDBasicExpression;
  using K = OperatorKind;
  static constexpr IDX_Filter_ValueType I = IDX_Filter_Type_Int;
  static constexpr IDX_Filter_ValueType S = IDX_Filter_Type_String;
  static constexpr IDX_Filter_ValueType F = IDX_Filter_Type_Float;
  static constexpr IDX_Filter_ValueType Bool = IDX_Filter_Type_Boolean;
  static constexpr IDX_Filter_ValueType Set = IDX_Filter_Type_Set;
  static constexpr IDX_Filter_ValueType T = IDX_Filter_Type_Time;

  static constexpr Row kRows[] = {
      {IDX_Filter_Op_Not, "!", "NOT", K::kNot, 0, Bool, nullptr},
      {IDX_Filter_Op_Or, "|", "OR", K::kOr, 0, Bool, nullptr},
      {IDX_Filter_Op_And, "&", "AND", K::kAnd, 0, Bool, nullptr},
      {IDX_Filter_Op_EqualInt, "=", "", K::kEqual, 1, I, &B::EvalEqualInt},
      {IDX_Filter_Op_EqualString, "=", "", K::kEqual, 1, S, &B::EvalEqualString},
      {IDX_Filter_Op_EqualFloat, "=", "", K::kEqual, 1, F, &B::EvalEqualFloat},
      {IDX_Filter_Op_EqualBoolean, "=", "", K::kEqual, 1, Bool, &B::EvalEqualBoolean},
      {IDX_Filter_Op_BetweenString, "BETWEEN", "", K::kBetween, 2, S, &B::EvalBetweenString},
      {IDX_Filter_Op_BetweenInt, "BETWEEN", "", K::kBetween, 2, I, &B::EvalBetweenInt},
      {IDX_Filter_Op_BetweenFloat, "BETWEEN", "", K::kBetween, 2, F, &B::EvalBetweenFloat},
      {IDX_Filter_Op_LowerString, "<", "", K::kLower, 1, S, &B::EvalLowerString},
      {IDX_Filter_Op_LowerInt, "<", "", K::kLower, 1, I, &B::EvalLowerInt},
      {IDX_Filter_Op_LowerFloat, "<", "", K::kLower, 1, F, &B::EvalLowerFloat},
      {IDX_Filter_Op_LowerEqString, "<=", "", K::kLowerEq, 1, S, &B::EvalLowerEqString},
      {IDX_Filter_Op_LowerEqInt, "<=", "", K::kLowerEq, 1, I, &B::EvalLowerEqInt},
      {IDX_Filter_Op_LowerEqFloat, "<=", "", K::kLowerEq, 1, F, &B::EvalLowerEqFloat},
      {IDX_Filter_Op_HigherString, ">", "", K::kHigher, 1, S, &B::EvalHigherString},
      {IDX_Filter_Op_HigherInt, ">", "", K::kHigher, 1, I, &B::EvalHigherInt},
      {IDX_Filter_Op_HigherFloat, ">", "", K::kHigher, 1, F, &B::EvalHigherFloat},
      {IDX_Filter_Op_HigherEqString, ">=", "", K::kHigherEq, 1, S, &B::EvalHigherEqString},
      {IDX_Filter_Op_HigherEqInt, ">=", "", K::kHigherEq, 1, I, &B::EvalHigherEqInt},
      {IDX_Filter_Op_HigherEqFloat, ">=", "", K::kHigherEq, 1, F, &B::EvalHigherEqFloat},
      {IDX_Filter_Op_KindOf, "KINDOF", "", K::kUnwritten, -1, S, nullptr},
      {IDX_Filter_Op_LikeString, "LIKE", "", K::kLike, 1, S, &B::EvalLikeString},
      {IDX_Filter_Op_DifferentInt, "<>", "!=", K::kDifferent, 1, I, &B::EvalDifferentInt},
      {IDX_Filter_Op_DifferentString, "<>", "!=", K::kDifferent, 1, S, &B::EvalDifferentString},
      {IDX_Filter_Op_DifferentFloat, "<>", "!=", K::kDifferent, 1, F, &B::EvalDifferentFloat},
      {IDX_Filter_Op_DifferentBoolean, "<>", "!=", K::kDifferent, 1, Bool,
       &B::EvalDifferentBoolean},
      {IDX_Filter_Op_InInt, "IN", "", K::kIn, -1, I, &B::EvalInInt},
      {IDX_Filter_Op_InString, "IN", "", K::kIn, -1, S, &B::EvalInString},
      {IDX_Filter_Op_InFloat, "IN", "", K::kIn, -1, F, &B::EvalInFloat},
      // A boolean set element answers GetValInt with 0 or 1, so the integer
      // test serves.
      {IDX_Filter_Op_InBoolean, "IN", "", K::kIn, -1, Bool, &B::EvalInInt},
      {IDX_Filter_Op_MultiVal, "multival", "", K::kUnwritten, 1, Set, nullptr},
      {IDX_Filter_Op_NotLikeString, "NOT_LIKE", "", K::kNotLike, 1, S, &B::EvalNotLikeString},
      {IDX_Filter_Op_EqualTime, "=", "", K::kEqual, 1, T, &B::EvalEqualTime},
      {IDX_Filter_Op_DifferentTime, "<>", "!=", K::kDifferent, 1, T, &B::EvalDifferentTime},
      {IDX_Filter_Op_BetweenTime, "BETWEEN", "", K::kBetween, 2, T, &B::EvalBetweenTime},
      {IDX_Filter_Op_LowerTime, "<", "", K::kLower, 1, T, &B::EvalLowerTime},
      {IDX_Filter_Op_LowerEqTime, "<=", "", K::kLowerEq, 1, T, &B::EvalLowerEqTime},
      {IDX_Filter_Op_HigherTime, ">", "", K::kHigher, 1, T, &B::EvalHigherTime},
      {IDX_Filter_Op_HigherEqTime, ">=", "", K::kHigherEq, 1, T, &B::EvalHigherEqTime},
      {IDX_Filter_Op_Unsupported, "UNSUPPORTED_OP", "", K::kUnwritten, 0, I, &B::EvalUnsupported},
  };

  // Row i describes operator i.
  static constexpr bool RowsFollowTheEnumerators() {
    for (std::size_t i = 0; i < std::size(kRows); ++i) {
      if (kRows[i].op != static_cast<int>(i)) return false;
    }
    return true;
  }

  // A spelling means one kind, and a kind and a value type one operator:
  // rows of one kind share their spellings and operand count and differ
  // in type; rows of different kinds share no spelling.
  static constexpr bool SpellingsAndTypesChooseOneRow() {
    for (const Row& a : kRows) {
      for (const Row& b : kRows) {
        if (&a == &b || a.kind == K::kUnwritten || b.kind == K::kUnwritten) continue;
        const std::string_view aName = a.name, bName = b.name;
        const bool shared = aName == bName || (!a.alias.empty() && a.alias == b.alias) ||
                            aName == b.alias || a.alias == bName;
        if (a.kind != b.kind) {
          if (shared) return false;
        } else if (aName != bName || a.alias != b.alias || a.operands != b.operands ||
                   a.type == b.type) {
          return false;
        }
      }
    }
    return true;
  }
};

using OperatorRow = OperatorTable::Row;
inline constexpr const auto& kOperatorRows = OperatorTable::kRows;

static_assert(std::size(kOperatorRows) == IDX_Filter_Infos::kOperatorCount);
static_assert(OperatorTable::RowsFollowTheEnumerators(), "row i must describe operator i");
static_assert(OperatorTable::SpellingsAndTypesChooseOneRow());

// Expands to F(0) F(1) ... F(41): the interface's fixed-size arrays (the
// IDX_Filter_Infos tables and the dispatch of basic expressions) are
// brace lists, which C++ cannot fill from the rows with a loop.
// clang-format off
#define IDXBASE_EACH_OPERATOR(F)                                                            \
  F(0)  F(1)  F(2)  F(3)  F(4)  F(5)  F(6)  F(7)  F(8)  F(9)  F(10) F(11) F(12) F(13) F(14) \
  F(15) F(16) F(17) F(18) F(19) F(20) F(21) F(22) F(23) F(24) F(25) F(26) F(27) F(28) F(29) \
  F(30) F(31) F(32) F(33) F(34) F(35) F(36) F(37) F(38) F(39) F(40) F(41)
// clang-format on

#define IDXBASE_OPERATOR_VALUE(op) op,
inline constexpr int kEachOperator[] = {IDXBASE_EACH_OPERATOR(IDXBASE_OPERATOR_VALUE)};
#undef IDXBASE_OPERATOR_VALUE

constexpr bool ListsEveryOperator() {
  int expected = 0;
  for (const int op : kEachOperator) {
    if (op != expected++) return false;
  }
  return expected == IDX_Filter_Infos::kOperatorCount;
}
static_assert(ListsEveryOperator(), "IDXBASE_EACH_OPERATOR must list 0 to 41 in order");

}  // namespace idxbase::detail

#endif  // IDXBASE_FILTER_OPERATOR_TABLE_H_
