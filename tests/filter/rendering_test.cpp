// Rendering of expression trees as text, and printing.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"
#include "support/stdout_capture.h"

namespace {

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

std::string Render(BBDExpression* e, const char* before = "") {
  KORUnicodeString text(before);
  e->toString(text);
  return text.ConvertToChar();
}

struct Case {
  const char* expected;
  std::function<BBDExpression*()> make;
};

TEST(RenderExpression, Trees) {
  const char* user = "ignored";
  KORUnicodeString mass("mass");
  const Case cases[] = {
      {"( 1 = 2 )", [] { return OneEqTwo(); }},
      {"( -7 < 2147483647 )",
       [] { return Basic(IDX_Filter_Op_LowerInt, Int(-7), Int(2147483647)); }},
      {"( 0.100000001 >= 2.500000000 )",
       [] {
         return Basic(IDX_Filter_Op_HigherEqFloat, new BBDOperandFloatConst(0.1f),
                      new BBDOperandFloatConst(2.5f));
       }},
      {"( \"a b\" LIKE \"*b*\" )",
       [] { return Basic(IDX_Filter_Op_LikeString, Str("a b"), Str("*b*")); }},
      {"( \"\" NOT_LIKE \"x\" )",
       [] { return Basic(IDX_Filter_Op_NotLikeString, Str(nullptr), Str("x")); }},
      {"( 5 BETWEEN 1 9 )", [] { return Basic(IDX_Filter_Op_BetweenInt, Int(5), Int(1), Int(9)); }},
      {"( 1 <= 2 )", [] { return Basic(IDX_Filter_Op_LowerEqTime, Int(1), Int(2)); }},
      {"( true <> false )",
       [] {
         return Basic(IDX_Filter_Op_DifferentBoolean, new BBDOperandBooleanConst(true),
                      new BBDOperandBooleanConst(false));
       }},
      {"( time unsupported = time unsupported )",
       [] {
         const KORTime t = KORTime::FromEpochSeconds(0);
         return Basic(IDX_Filter_Op_EqualTime, new BBDOperandTimeConst(t),
                      new BBDOperandTimeConst(t));
       }},
      {"( NAOperand = 1 )",
       [] { return Basic(IDX_Filter_Op_EqualInt, new BBDNAOperand(), Int(1)); }},
      {"( 3.0 = 1 )",
       [] {
         return Basic(IDX_Filter_Op_EqualInt,
                      new BBDOperandAttribute(new AttributeTypePair(0, 3), IDX_Filter_Type_Int),
                      Int(1));
       }},
      {"( part.mass > 1 )",
       [&mass] {
         return Basic(IDX_Filter_Op_HigherInt,
                      new BBDOperandAttribute(KORUnicodeString("part"), mass, IDX_Filter_Type_Int),
                      Int(1));
       }},
      // Missing operands; operands that render nothing leave their field empty.
      {"( NullOperand = NullOperand )",
       [] { return Basic(IDX_Filter_Op_EqualInt, nullptr, nullptr); }},
      {"( 1 BETWEEN NullOperand )",
       [] { return Basic(IDX_Filter_Op_BetweenInt, Int(1), nullptr, Int(3)); }},
      {"( 1 = NullOperand )", [] { return Basic(IDX_Filter_Op_EqualInt, Int(1), nullptr); }},
      {"(  = \"x\" )",
       [&user] {
         return Basic(IDX_Filter_Op_EqualString, new BBDOperandStringUser(&user), Str("x"));
       }},
      {"( 1 IN  )", [] { return Basic(IDX_Filter_Op_InInt, Int(1), new BBDOperandSet(Int(1))); }},
      // Operators without evaluation render by name too.
      {"( 1 KINDOF 2 )", [] { return Basic(IDX_Filter_Op_KindOf, Int(1), Int(2)); }},
      {"( 1 multival 2 )", [] { return Basic(IDX_Filter_Op_MultiVal, Int(1), Int(2)); }},
      {"( 1 UNSUPPORTED_OP 2 )", [] { return Basic(IDX_Filter_Op_Unsupported, Int(1), Int(2)); }},
      {"( 1 UNKNOWN_OP 2 )", [] { return Basic(-1, Int(1), Int(2)); }},
      {"( 1 UNKNOWN_OP 2 )", [] { return Basic(42, Int(1), Int(2)); }},
      // Composed expressions.
      {"( ! ( 1 = 2 ) )", [] { return Composed(IDX_Filter_Op_Not, OneEqTwo(), nullptr); }},
      {"( ! ( 1 = 2 ) )", [] { return Composed(IDX_Filter_Op_Not, OneEqTwo(), ThreeLtFour()); }},
      {"( ! NULL )", [] { return Composed(IDX_Filter_Op_Not, nullptr, nullptr); }},
      {"( ( 1 = 2 ) & ( 3 < 4 ) )",
       [] { return Composed(IDX_Filter_Op_And, OneEqTwo(), ThreeLtFour()); }},
      {"( ( 1 = 2 ) | NULL )", [] { return Composed(IDX_Filter_Op_Or, OneEqTwo(), nullptr); }},
      {"( NULL & NULL )", [] { return Composed(IDX_Filter_Op_And, nullptr, nullptr); }},
      {"( ( 1 = 2 ) UNKNOWN_OP ( 3 < 4 ) )",
       [] { return Composed(99, OneEqTwo(), ThreeLtFour()); }},
      {"( NAExpression | ( 1 = 2 ) )",
       [] { return Composed(IDX_Filter_Op_Or, new BBDNAExpression(), OneEqTwo()); }},
      {"( ( ( 1 = 2 ) | ( 3 < 4 ) ) & ( ! ( 5 > 6 ) ) )",
       [] {
         return Composed(
             IDX_Filter_Op_And, Composed(IDX_Filter_Op_Or, OneEqTwo(), ThreeLtFour()),
             Composed(IDX_Filter_Op_Not, Basic(IDX_Filter_Op_HigherInt, Int(5), Int(6)), nullptr));
       }},
      {"NAExpression", [] { return new BBDNAExpression(); }},
  };
  for (const Case& c : cases) {
    BBDExpression* e = c.make();
    EXPECT_EQ(c.expected, Render(e));
    delete e;
  }
}

TEST(RenderExpression, ComparisonsAppendAndOthersReplace) {
  BBDExpression* basic = OneEqTwo();
  BBDExpression* composed = Composed(IDX_Filter_Op_Not, OneEqTwo(), nullptr);
  BBDNAExpression na;
  EXPECT_EQ("x: ( 1 = 2 )", Render(basic, "x: "));
  EXPECT_EQ("( ! ( 1 = 2 ) )", Render(composed, "x: "));
  EXPECT_EQ("NAExpression", Render(&na, "x: "));
  delete basic;
  delete composed;
}

TEST(RenderExpression, PrintWritesTheRenderingWithoutLineEnd) {
  BBDExpression* trees[] = {
      Basic(IDX_Filter_Op_BetweenInt, Int(5), Int(1), Int(9)),
      Composed(IDX_Filter_Op_Or, new BBDNAExpression(), OneEqTwo()),
      new BBDNAExpression(),
  };
  for (BBDExpression* e : trees) {
    idxbase_test::StdoutCapture capture;
    e->print();
    EXPECT_EQ(Render(e), capture.Finish());
    delete e;
  }
}

}  // namespace
