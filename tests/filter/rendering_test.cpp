// Rendering of expression trees as text, and printing.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "filter_test_support.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"

namespace {

using idxbase_test::OutputOf;
using idxbase_test::Rendered;

BBDOperand* Int(int v) { return new BBDOperandIntConst(v); }
BBDOperand* Str(const char* s) { return new BBDOperandStringConst(s ? strdup(s) : nullptr); }
BBDExpression* Basic(int op, BBDOperand* a, BBDOperand* b, BBDOperand* c = nullptr) {
  return new BBDBasicExpression(static_cast<IDX_Filter_Operator>(op), a, b, c);
}
BBDExpression* Composed(int op, BBDExpression* a, BBDExpression* b) {
  return new BBDComposedExpression(static_cast<IDX_Filter_Operator>(op), a, b);
}
BBDExpression* OneEqTwo() { return Basic(IDX_Filter_Op_EqualInt, Int(1), Int(2)); }
BBDExpression* ThreeLtFour() { return Basic(IDX_Filter_Op_LowerInt, Int(3), Int(4)); }

TEST(RenderExpression, TreesRenderAndPrintWithoutLineEnd) {
  const char* user = "ignored";
  KORUnicodeString mass("mass");
  const KORTime epoch = KORTime::FromEpochSeconds(0);
  const struct {
    const char* expected;
    BBDExpression* tree;
  } cases[] = {
      {"( 1 = 2 )", OneEqTwo()},
      {"( -7 < 2147483647 )", Basic(IDX_Filter_Op_LowerInt, Int(-7), Int(2147483647))},
      {"( 0.100000001 >= 2.500000000 )",
       Basic(IDX_Filter_Op_HigherEqFloat, new BBDOperandFloatConst(0.1f),
             new BBDOperandFloatConst(2.5f))},
      {"( \"a b\" LIKE \"*b*\" )", Basic(IDX_Filter_Op_LikeString, Str("a b"), Str("*b*"))},
      {"( \"\" NOT_LIKE \"x\" )", Basic(IDX_Filter_Op_NotLikeString, Str(nullptr), Str("x"))},
      {"( 5 BETWEEN 1 9 )", Basic(IDX_Filter_Op_BetweenInt, Int(5), Int(1), Int(9))},
      {"( 1 <= 2 )", Basic(IDX_Filter_Op_LowerEqTime, Int(1), Int(2))},
      {"( true <> false )", Basic(IDX_Filter_Op_DifferentBoolean, new BBDOperandBooleanConst(true),
                                  new BBDOperandBooleanConst(false))},
      {"( time unsupported = time unsupported )",
       Basic(IDX_Filter_Op_EqualTime, new BBDOperandTimeConst(epoch),
             new BBDOperandTimeConst(epoch))},
      {"( NAOperand = 1 )", Basic(IDX_Filter_Op_EqualInt, new BBDNAOperand(), Int(1))},
      {"( 3.0 = 1 )",
       Basic(IDX_Filter_Op_EqualInt,
             new BBDOperandAttribute(new AttributeTypePair(0, 3), IDX_Filter_Type_Int), Int(1))},
      {"( part.mass > 1 )",
       Basic(IDX_Filter_Op_HigherInt,
             new BBDOperandAttribute(KORUnicodeString("part"), mass, IDX_Filter_Type_Int), Int(1))},
      // Missing operands; operands that render nothing leave their field empty.
      {"( NullOperand = NullOperand )", Basic(IDX_Filter_Op_EqualInt, nullptr, nullptr)},
      {"( 1 BETWEEN NullOperand )", Basic(IDX_Filter_Op_BetweenInt, Int(1), nullptr, Int(3))},
      {"( 1 = NullOperand )", Basic(IDX_Filter_Op_EqualInt, Int(1), nullptr)},
      {"(  = \"x\" )", Basic(IDX_Filter_Op_EqualString, new BBDOperandStringUser(&user), Str("x"))},
      {"( 1 IN  )", Basic(IDX_Filter_Op_InInt, Int(1), new BBDOperandSet(Int(1)))},
      // Operators without evaluation render by name too.
      {"( 1 KINDOF 2 )", Basic(IDX_Filter_Op_KindOf, Int(1), Int(2))},
      {"( 1 multival 2 )", Basic(IDX_Filter_Op_MultiVal, Int(1), Int(2))},
      {"( 1 UNSUPPORTED_OP 2 )", Basic(IDX_Filter_Op_Unsupported, Int(1), Int(2))},
      {"( 1 UNKNOWN_OP 2 )", Basic(-1, Int(1), Int(2))},
      {"( 1 UNKNOWN_OP 2 )", Basic(42, Int(1), Int(2))},
      // Composed expressions.
      {"( ! ( 1 = 2 ) )", Composed(IDX_Filter_Op_Not, OneEqTwo(), nullptr)},
      {"( ! ( 1 = 2 ) )", Composed(IDX_Filter_Op_Not, OneEqTwo(), ThreeLtFour())},
      {"( ! NULL )", Composed(IDX_Filter_Op_Not, nullptr, nullptr)},
      {"( ( 1 = 2 ) & ( 3 < 4 ) )", Composed(IDX_Filter_Op_And, OneEqTwo(), ThreeLtFour())},
      {"( ( 1 = 2 ) | NULL )", Composed(IDX_Filter_Op_Or, OneEqTwo(), nullptr)},
      {"( NULL & NULL )", Composed(IDX_Filter_Op_And, nullptr, nullptr)},
      {"( ( 1 = 2 ) UNKNOWN_OP ( 3 < 4 ) )", Composed(99, OneEqTwo(), ThreeLtFour())},
      {"( NAExpression | ( 1 = 2 ) )",
       Composed(IDX_Filter_Op_Or, new BBDNAExpression(), OneEqTwo())},
      {"( ( ( 1 = 2 ) | ( 3 < 4 ) ) & ( ! ( 5 > 6 ) ) )",
       Composed(
           IDX_Filter_Op_And, Composed(IDX_Filter_Op_Or, OneEqTwo(), ThreeLtFour()),
           Composed(IDX_Filter_Op_Not, Basic(IDX_Filter_Op_HigherInt, Int(5), Int(6)), nullptr))},
      {"NAExpression", new BBDNAExpression()},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.expected, Rendered(*c.tree));
    EXPECT_EQ(c.expected, OutputOf([&] { c.tree->print(); }));
    delete c.tree;
  }
}

TEST(RenderExpression, ComparisonsAppendAndOthersReplace) {
  std::unique_ptr<BBDExpression> basic(OneEqTwo());
  std::unique_ptr<BBDExpression> composed(Composed(IDX_Filter_Op_Not, OneEqTwo(), nullptr));
  BBDNAExpression na;
  EXPECT_EQ("x: ( 1 = 2 )", Rendered(*basic, "x: "));
  EXPECT_EQ("( ! ( 1 = 2 ) )", Rendered(*composed, "x: "));
  EXPECT_EQ("NAExpression", Rendered(na, "x: "));
}

}  // namespace
