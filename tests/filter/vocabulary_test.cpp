// The public operator tables.
#include <gtest/gtest.h>

#include "idxbase/filter_vocabulary.h"

TEST(FilterInfos, GiveEachOperatorsOperandCountAndType) {
  const struct {
    IDX_Filter_Operator op;
    int operands;
    IDX_Filter_ValueType type;
  } kCases[] = {
      {IDX_Filter_Op_Or, 0, IDX_Filter_Type_Boolean},
      {IDX_Filter_Op_BetweenString, 2, IDX_Filter_Type_String},
      {IDX_Filter_Op_KindOf, -1, IDX_Filter_Type_String},
      {IDX_Filter_Op_InBoolean, -1, IDX_Filter_Type_Boolean},
      {IDX_Filter_Op_MultiVal, 1, IDX_Filter_Type_Set},
      {IDX_Filter_Op_Unsupported, 0, IDX_Filter_Type_Int},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(IDX_Filter_Infos::NumberOfOperands[c.op], c.operands) << c.op;
    EXPECT_EQ(IDX_Filter_Infos::OperatorType[c.op], c.type) << c.op;
  }
}
