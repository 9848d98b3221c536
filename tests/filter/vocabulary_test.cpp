#include <gtest/gtest.h>

#include <cstdint>

#include "filter/operator_names.h"
#include "idxbase/filter_vocabulary.h"

namespace {

struct OperatorRow {
  int op;
  int operands;
  IDX_Filter_ValueType type;
  const char* name;
};

// Every operator: operands after the subject, compared type, rendering name.
const OperatorRow kOperators[] = {
    {0, 0, IDX_Filter_Type_Boolean, "!"},       {1, 0, IDX_Filter_Type_Boolean, "|"},
    {2, 0, IDX_Filter_Type_Boolean, "&"},       {3, 1, IDX_Filter_Type_Int, "="},
    {4, 1, IDX_Filter_Type_String, "="},        {5, 1, IDX_Filter_Type_Float, "="},
    {6, 1, IDX_Filter_Type_Boolean, "="},       {7, 2, IDX_Filter_Type_String, "BETWEEN"},
    {8, 2, IDX_Filter_Type_Int, "BETWEEN"},     {9, 2, IDX_Filter_Type_Float, "BETWEEN"},
    {10, 1, IDX_Filter_Type_String, "<"},       {11, 1, IDX_Filter_Type_Int, "<"},
    {12, 1, IDX_Filter_Type_Float, "<"},        {13, 1, IDX_Filter_Type_String, "<="},
    {14, 1, IDX_Filter_Type_Int, "<="},         {15, 1, IDX_Filter_Type_Float, "<="},
    {16, 1, IDX_Filter_Type_String, ">"},       {17, 1, IDX_Filter_Type_Int, ">"},
    {18, 1, IDX_Filter_Type_Float, ">"},        {19, 1, IDX_Filter_Type_String, ">="},
    {20, 1, IDX_Filter_Type_Int, ">="},         {21, 1, IDX_Filter_Type_Float, ">="},
    {22, -1, IDX_Filter_Type_String, "KINDOF"}, {23, 1, IDX_Filter_Type_String, "LIKE"},
    {24, 1, IDX_Filter_Type_Int, "<>"},         {25, 1, IDX_Filter_Type_String, "<>"},
    {26, 1, IDX_Filter_Type_Float, "<>"},       {27, 1, IDX_Filter_Type_Boolean, "<>"},
    {28, -1, IDX_Filter_Type_Int, "IN"},        {29, -1, IDX_Filter_Type_String, "IN"},
    {30, -1, IDX_Filter_Type_Float, "IN"},      {31, -1, IDX_Filter_Type_Boolean, "IN"},
    {32, 1, IDX_Filter_Type_Set, "multival"},   {33, 1, IDX_Filter_Type_String, "NOT_LIKE"},
    {34, 1, IDX_Filter_Type_Time, "="},         {35, 1, IDX_Filter_Type_Time, "<>"},
    {36, 2, IDX_Filter_Type_Time, "BETWEEN"},   {37, 1, IDX_Filter_Type_Time, "<"},
    {38, 1, IDX_Filter_Type_Time, "<="},        {39, 1, IDX_Filter_Type_Time, ">"},
    {40, 1, IDX_Filter_Type_Time, ">="},        {41, 0, IDX_Filter_Type_Int, "UNSUPPORTED_OP"},
};

TEST(FilterInfos, TablesDescribeEveryOperator) {
  static_assert(sizeof(IDX_Filter_Infos::NumberOfOperands) / sizeof(int) == 42);
  static_assert(sizeof(IDX_Filter_Infos::OperatorType) / sizeof(IDX_Filter_ValueType) == 42);
  ASSERT_EQ(42u, sizeof kOperators / sizeof kOperators[0]);
  for (const OperatorRow& row : kOperators) {
    EXPECT_EQ(row.operands, IDX_Filter_Infos::NumberOfOperands[row.op]) << "operator " << row.op;
    EXPECT_EQ(row.type, IDX_Filter_Infos::OperatorType[row.op]) << "operator " << row.op;
    EXPECT_STREQ(row.name, idxbase::detail::OperatorName(row.op)) << "operator " << row.op;
  }
}

TEST(FilterInfos, ValuesOutsideTheOperatorsHaveNoName) {
  EXPECT_STREQ("UNKNOWN_OP", idxbase::detail::OperatorName(-1));
  EXPECT_STREQ("UNKNOWN_OP", idxbase::detail::OperatorName(42));
}

TEST(FilterInfos, EnumerationsAreFixed32BitValues) {
  static_assert(sizeof(IDX_Filter_Operator) == 4 && sizeof(IDX_Filter_ValueType) == 4 &&
                sizeof(IDX_Filter_OperandType) == 4);
  EXPECT_EQ(41, IDX_Filter_Op_Unsupported);
  EXPECT_EQ(6, IDX_Filter_Type_Time);
  EXPECT_EQ(2, IDX_Filter_Operand_Constant);
  // The undecidable result is the 32-bit pattern 0x80004005, negative as int.
  EXPECT_EQ(static_cast<std::uint32_t>(IDX_FILTER_UNDECIDABLE), 0x80004005u);
  EXPECT_LT(IDX_FILTER_UNDECIDABLE, 0);
}

}  // namespace
