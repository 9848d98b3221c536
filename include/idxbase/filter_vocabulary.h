// The words of the filter engine: operators, value types, operand kinds,
// the two operator tables and the three-valued evaluation result.
#ifndef IDXBASE_FILTER_VOCABULARY_H_
#define IDXBASE_FILTER_VOCABULARY_H_

#include "idxbase/export.h"
#include "idxbase/kor_types.h"

namespace idxbase::detail {
struct OperatorTable;  // the facts of each operator, one row per operator
}  // namespace idxbase::detail

// Results of every filter evaluation (a KORStatus):
//   IDX_FILTER_HOLDS        0            the condition holds
//   IDX_FILTER_DOES_NOT     1            the condition does not hold
//   IDX_FILTER_UNDECIDABLE  0x80004005   it cannot be decided (an operand
//                                        gave no value, a part is missing,
//                                        the operator has no evaluation)
// Compare results for equality with these values; never order them.
constexpr KORStatus IDX_FILTER_HOLDS = KOR_S_OK;
constexpr KORStatus IDX_FILTER_DOES_NOT = KOR_S_FALSE;
constexpr KORStatus IDX_FILTER_UNDECIDABLE = KOR_E_FAIL;

// The type of a value that an operand delivers or an operator compares.
// Callers store these values; they never change.
enum IDX_Filter_ValueType : int {
  IDX_Filter_Type_Int = 0,      // signed 32-bit integer (GetValInt)
  IDX_Filter_Type_String = 1,   // bytes with an explicit length (GetValString)
  IDX_Filter_Type_Float = 2,    // 32-bit float (GetValFloat)
  IDX_Filter_Type_Boolean = 3,  // bool (GetValBool)
  IDX_Filter_Type_NA = 4,       // not available: no value for this filter
  IDX_Filter_Type_Set = 5,      // a list of operands (GetValSet)
  IDX_Filter_Type_Time = 6,     // a KORTime (GetValTime)
};

// Where an operand's value comes from.
enum IDX_Filter_OperandType : int {
  IDX_Filter_Operand_Attribute = 0,  // read from the occurrence by the reader
  IDX_Filter_Operand_User = 1,       // read from a caller's variable
  IDX_Filter_Operand_Constant = 2,   // fixed when the operand is built
};

// What an expression does. Each comparison carries its value type; values
// outside 0..41 are not operators and have no evaluation. Each operator's
// rendering name, operand count, type and evaluation are its row in the
// library's operator table (filter/operator_table.h).
enum IDX_Filter_Operator : int {
  IDX_Filter_Op_Not = 0,
  IDX_Filter_Op_Or = 1,
  IDX_Filter_Op_And = 2,
  IDX_Filter_Op_EqualInt = 3,
  IDX_Filter_Op_EqualString = 4,
  IDX_Filter_Op_EqualFloat = 5,
  IDX_Filter_Op_EqualBoolean = 6,
  IDX_Filter_Op_BetweenString = 7,
  IDX_Filter_Op_BetweenInt = 8,
  IDX_Filter_Op_BetweenFloat = 9,
  IDX_Filter_Op_LowerString = 10,
  IDX_Filter_Op_LowerInt = 11,
  IDX_Filter_Op_LowerFloat = 12,
  IDX_Filter_Op_LowerEqString = 13,
  IDX_Filter_Op_LowerEqInt = 14,
  IDX_Filter_Op_LowerEqFloat = 15,
  IDX_Filter_Op_HigherString = 16,
  IDX_Filter_Op_HigherInt = 17,
  IDX_Filter_Op_HigherFloat = 18,
  IDX_Filter_Op_HigherEqString = 19,
  IDX_Filter_Op_HigherEqInt = 20,
  IDX_Filter_Op_HigherEqFloat = 21,
  IDX_Filter_Op_KindOf = 22,
  IDX_Filter_Op_LikeString = 23,
  IDX_Filter_Op_DifferentInt = 24,
  IDX_Filter_Op_DifferentString = 25,
  IDX_Filter_Op_DifferentFloat = 26,
  IDX_Filter_Op_DifferentBoolean = 27,
  IDX_Filter_Op_InInt = 28,
  IDX_Filter_Op_InString = 29,
  IDX_Filter_Op_InFloat = 30,
  IDX_Filter_Op_InBoolean = 31,
  IDX_Filter_Op_MultiVal = 32,
  IDX_Filter_Op_NotLikeString = 33,
  IDX_Filter_Op_EqualTime = 34,
  IDX_Filter_Op_DifferentTime = 35,
  IDX_Filter_Op_BetweenTime = 36,
  IDX_Filter_Op_LowerTime = 37,
  IDX_Filter_Op_LowerEqTime = 38,
  IDX_Filter_Op_HigherTime = 39,
  IDX_Filter_Op_HigherEqTime = 40,
  IDX_Filter_Op_Unsupported = 41,
};

// Two read-only tables indexed by operator value (0 to 41), for the code
// that builds filters. Safe to read from any thread.
class IDXBASE_API IDX_Filter_Infos {
 public:
  static constexpr int kOperatorCount = 42;

  // How many operands follow the subject: 1 for a comparison, 2 for a
  // range, -1 for a list, 0 for an operator that takes none.
  static const int NumberOfOperands[kOperatorCount];
  // The value type that the operator compares.
  static const IDX_Filter_ValueType OperatorType[kOperatorCount];
};

#endif  // IDXBASE_FILTER_VOCABULARY_H_
