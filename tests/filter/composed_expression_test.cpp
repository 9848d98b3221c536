// Composed expressions: what the random trees of filter_soak_test.cpp do
// not observe (context, which nodes compilation keeps and deletes, copies).
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>

#include "filter_test_support.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"

namespace {

constexpr KORStatus H = IDX_FILTER_HOLDS;
constexpr KORStatus D = IDX_FILTER_DOES_NOT;
constexpr KORStatus U = IDX_FILTER_UNDECIDABLE;
constexpr const char* kNullOperand = "Warning : null operand in BBDBasicExpression::Compile()\n";

using idxbase_test::OutputOf;
using idxbase_test::Rendered;

// The operands of these tests never consult the reader.
using Occurrence = idxbase_test::FakeOccurrence;
using NoReader = ::testing::StrictMock<idxbase_test::MockAttributeReader>;

// What happened to a Leaf and its copies.
struct Tally {
  int evals = 0;
  int deaths = 0;
  unsigned int context = 0;
};

// An expression with a fixed result, renders as its name. Copies report to
// the same tally; a leaf built not duplicable cannot be copied.
class Leaf : public BBDExpression {
 public:
  Leaf(KORStatus result, Tally& tally, const char* name = "L", bool duplicable = true)
      : BBDExpression(IDX_Filter_Op_EqualInt),
        result_(result),
        tally_(tally),
        name_(name),
        duplicable_(duplicable) {}
  Leaf(const Leaf&) = default;
  ~Leaf() override { ++tally_.deaths; }

  KORStatus eval(const BBDOccurrence&, unsigned int context, BBDIAttributeRead&, bool) override {
    ++tally_.evals;
    tally_.context = context;
    return result_;
  }
  void toString(KORUnicodeString& text) override { text = name_; }
  BBDExpression* Duplicate() const override { return duplicable_ ? new Leaf(*this) : nullptr; }

 private:
  KORStatus result_;
  Tally& tally_;
  const char* name_;
  bool duplicable_;
};

// A library operand that counts its destruction.
template <class Base>
class Counted : public Base {
 public:
  template <class... Args>
  explicit Counted(int& deaths, Args... args) : Base(args...), deaths_(deaths) {}
  ~Counted() override { ++deaths_; }

 private:
  int& deaths_;
};

enum OperandKind { kMissing, kValue, kUnavailable };

// A library operand of `kind` (an integer constant or the NA operand) that
// counts its destruction.
BBDOperand* Operand(OperandKind kind, int& deaths, int value = 1) {
  if (kind == kMissing) return nullptr;
  if (kind == kUnavailable) return new Counted<BBDNAOperand>(deaths);
  return new Counted<BBDOperandIntConst>(deaths, value);
}

// A comparison `value` = 1 whose operands count their destruction; `na`
// makes the subject unavailable, so that compilation folds it.
BBDBasicExpression* Comparison(int& deaths, bool na, int value = 1) {
  return new BBDBasicExpression(IDX_Filter_Op_EqualInt,
                                Operand(na ? kUnavailable : kValue, deaths, value),
                                Operand(kValue, deaths));
}

// The rendering of `e`; a missing tree renders as nothing.
std::string Text(BBDExpression* e) { return e == nullptr ? "" : Rendered(*e); }

class ComposedExpressionTest : public ::testing::Test {
 protected:
  KORStatus Eval(BBDExpression& e, bool caseSensitive = true, unsigned int context = 0) {
    return e.eval(occurrence_, context, reader_, caseSensitive);
  }

  Occurrence occurrence_;
  NoReader reader_;
};

// The case setting reaches the leaves too; the soak sees that in its
// answers.
TEST_F(ComposedExpressionTest, PassesTheContextDown) {
  Tally a, b, c;
  BBDComposedExpression e(
      IDX_Filter_Op_And, new Leaf(H, a),
      new BBDComposedExpression(
          IDX_Filter_Op_Not,
          new BBDComposedExpression(IDX_Filter_Op_Or, new Leaf(D, b), new Leaf(H, c)), nullptr));
  EXPECT_EQ(D, Eval(e, true, 42));
  for (const Tally* t : {&a, &b, &c}) {
    EXPECT_EQ(1, t->evals);
    EXPECT_EQ(42u, t->context);
  }
}

TEST_F(ComposedExpressionTest, NAExpressionCopiesStayConstant) {
  BBDNAExpression na;
  std::unique_ptr<BBDExpression> copy(na.Duplicate());
  ASSERT_NE(nullptr, copy);
  EXPECT_TRUE(copy->IsConstant());
  EXPECT_EQ(U, copy->GetConstantResult());
  EXPECT_EQ(U, Eval(*copy));
}

// A comparison with an unavailable operand becomes NA, deleting its
// operands; one with a missing first or second operand stays, with a
// warning. A missing root stays missing.
TEST(CompileExpression, ComparisonsFoldOnlyOverAnUnavailableOperand) {
  BBDExpression* none = nullptr;
  BBDExpression::Compile(none);
  EXPECT_EQ(nullptr, none);
  const struct {
    OperandKind operands[3];
    const char* output;
    bool folds;
  } rows[] = {
      {{kUnavailable, kValue, kValue}, "", true},
      {{kValue, kUnavailable, kValue}, "", true},
      {{kValue, kValue, kUnavailable}, "", true},
      {{kValue, kValue, kMissing}, "", false},
      {{kMissing, kValue, kValue}, kNullOperand, false},
      {{kValue, kMissing, kMissing}, kNullOperand, false},
      {{kMissing, kUnavailable, kMissing}, kNullOperand, false},  // a missing subject is not folded
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.operands[0] << row.operands[1] << row.operands[2]);
    int deaths = 0;
    int held = 0;
    BBDOperand* operands[3];
    for (int i = 0; i < 3; ++i) {
      operands[i] = Operand(row.operands[i], deaths);
      held += operands[i] != nullptr ? 1 : 0;
    }
    BBDExpression* root =
        new BBDBasicExpression(IDX_Filter_Op_BetweenInt, operands[0], operands[1], operands[2]);
    BBDExpression* const original = root;
    EXPECT_EQ(row.output, OutputOf([&] { BBDExpression::Compile(root); }));
    if (row.folds) {
      EXPECT_EQ("NAExpression", Text(root));
    } else {
      EXPECT_EQ(original, root);
    }
    EXPECT_EQ(row.folds ? held : 0, deaths);
    delete root;
  }
}

// An and with an unavailable side becomes NA; an or becomes its other side
// (nothing when that is missing), or NA when both are unavailable; other
// operators keep their sides, now NA. Whatever is dropped is deleted, and
// compiling again changes nothing.
TEST(CompileExpression, AndAndOrFoldTheirUnavailableSides) {
  enum Side { kLive, kNA, kAbsent };
  enum Result { kKept, kFirst, kSecond, kNAExpression, kNothing };
  const struct {
    int op;
    Side first, second;
    Result result;
    const char* text;
  } rows[] = {
      {IDX_Filter_Op_And, kNA, kLive, kNAExpression, "NAExpression"},
      {IDX_Filter_Op_And, kLive, kNA, kNAExpression, "NAExpression"},
      {IDX_Filter_Op_And, kNA, kNA, kNAExpression, "NAExpression"},
      {IDX_Filter_Op_And, kLive, kLive, kKept, "( ( 2 = 1 ) & ( 3 = 1 ) )"},
      {IDX_Filter_Op_Or, kNA, kLive, kSecond, "( 3 = 1 )"},
      {IDX_Filter_Op_Or, kLive, kNA, kFirst, "( 2 = 1 )"},
      {IDX_Filter_Op_Or, kNA, kNA, kNAExpression, "NAExpression"},
      {IDX_Filter_Op_Or, kLive, kLive, kKept, "( ( 2 = 1 ) | ( 3 = 1 ) )"},
      {IDX_Filter_Op_Or, kNA, kAbsent, kNothing, ""},
      {IDX_Filter_Op_Or, kAbsent, kNA, kNothing, ""},
      {IDX_Filter_Op_Not, kNA, kAbsent, kKept, "( ! NAExpression )"},
      {5, kNA, kNA, kKept, "( NAExpression = NAExpression )"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.op << row.first << row.second);
    int deaths[2] = {};
    BBDExpression* sides[2];
    for (int i = 0; i < 2; ++i) {
      const Side side = i == 0 ? row.first : row.second;
      sides[i] = side == kAbsent ? nullptr : Comparison(deaths[i], side == kNA, 2 + i);
    }
    BBDExpression* root =
        new BBDComposedExpression(static_cast<IDX_Filter_Operator>(row.op), sides[0], sides[1]);
    BBDExpression* const wanted[] = {root, sides[0], sides[1], nullptr, nullptr};
    BBDExpression::Compile(root);
    if (row.result != kNAExpression) {
      EXPECT_EQ(wanted[row.result], root);
    }
    EXPECT_EQ(row.text, Text(root));
    for (int i = 0; i < 2; ++i) {
      const Side side = i == 0 ? row.first : row.second;
      const bool stays =
          side == kAbsent || (side == kLive && (row.result == kKept || row.result == kFirst + i));
      EXPECT_EQ(stays ? 0 : 2, deaths[i]) << "side " << i;
    }
    BBDExpression* const compiled = root;
    BBDExpression::Compile(root);
    EXPECT_EQ(compiled, root);
    delete root;
  }
}

// An expression that says whether it is constant, and logs each question.
class Questioned : public BBDExpression {
 public:
  Questioned(char name, bool na, std::string& log)
      : BBDExpression(IDX_Filter_Op_EqualInt), name_(name), na_(na), log_(log) {}
  KORStatus eval(const BBDOccurrence&, unsigned int, BBDIAttributeRead&, bool) override {
    return U;
  }
  bool IsConstant() override {
    log_ += name_;
    return na_;
  }
  KORStatus GetConstantResult() override {
    log_ += static_cast<char>(name_ - 'a' + 'A');
    return U;
  }

 private:
  char name_;
  bool na_;
  std::string& log_;
};

// Compiling asks the sides (a, b) IsConstant (logged lower case) and
// GetConstantResult (upper case) only as far as the operator needs.
TEST(CompileExpression, AsksTheSidesOnlyWhatTheOperatorNeeds) {
  struct Row {
    IDX_Filter_Operator op;
    bool firstNA, secondNA;
    const char* questions;
  };
  const Row rows[] = {
      {IDX_Filter_Op_And, true, false, "aA"},  {IDX_Filter_Op_And, false, true, "abB"},
      {IDX_Filter_Op_And, false, false, "ab"}, {IDX_Filter_Op_Or, true, true, "aA"},
      {IDX_Filter_Op_Or, false, true, "abB"},  {IDX_Filter_Op_Or, false, false, "ab"},
      {IDX_Filter_Op_Not, true, true, ""},
  };
  for (const Row& row : rows) {
    std::string log;
    BBDExpression* root = new BBDComposedExpression(row.op, new Questioned('a', row.firstNA, log),
                                                    new Questioned('b', row.secondNA, log));
    BBDExpression::Compile(root);
    EXPECT_EQ(row.questions, log) << row.op << row.firstNA << row.secondNA;
    delete root;
  }
}

// The vtable index of a virtual member: a pointer to one holds 1 + the
// byte offset of its slot, on the ABI we build for.
template <class Member>
std::ptrdiff_t SlotIndex(Member member) {
  std::ptrdiff_t words[sizeof(Member) / sizeof(std::ptrdiff_t)];
  std::memcpy(words, &member, sizeof member);
  return (words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

// Reaches the protected Compile.
struct SlotReader : BBDNAExpression {
  static std::ptrdiff_t CompileSlot() {
    BBDExpression* (BBDExpression::*compile)() = &SlotReader::Compile;
    return SlotIndex(compile);
  }
};

// The virtual slots of the expression interface keep the order callers
// rely on; additions come after them. The destructor takes the first two
// entries (complete and deleting).
TEST(ExpressionInterface, VirtualSlotsKeepTheirOrder) {
  const std::ptrdiff_t slots[] = {SlotIndex(&BBDExpression::print),
                                  SlotIndex(&BBDExpression::GetOperator),
                                  SlotIndex(&BBDExpression::eval),
                                  SlotIndex(&BBDExpression::IsConstant),
                                  SlotIndex(&BBDExpression::GetConstantResult),
                                  SlotIndex(&BBDExpression::IsSpecial),
                                  SlotIndex(&BBDExpression::IsActive),
                                  SlotIndex(&BBDExpression::toString),
                                  SlotReader::CompileSlot(),
                                  SlotIndex(&BBDExpression::Duplicate)};
  for (std::size_t i = 0; i < std::size(slots); ++i) {
    EXPECT_EQ(static_cast<std::ptrdiff_t>(i + 2), slots[i]) << i;
  }
}

TEST(CompileExpression, TreesFoldBottomUp) {
  int deaths = 0;
  int keptDeaths = 0;
  // ( ( NA & a ) | ( kept | NA ) ) folds to kept.
  BBDExpression* kept = Comparison(keptDeaths, false);
  BBDExpression* root = new BBDComposedExpression(
      IDX_Filter_Op_Or,
      new BBDComposedExpression(IDX_Filter_Op_And, Comparison(deaths, true),
                                Comparison(deaths, false)),
      new BBDComposedExpression(IDX_Filter_Op_Or, kept, Comparison(deaths, true)));
  BBDExpression::Compile(root);
  EXPECT_EQ(kept, root);
  EXPECT_EQ(6, deaths);
  EXPECT_EQ(0, keptDeaths);
  delete root;
}

TEST_F(ComposedExpressionTest, CopiesAreDeep) {
  for (bool originalFirst : {true, false}) {
    Tally a, b;
    auto* original = new BBDComposedExpression(IDX_Filter_Op_Or, new Leaf(D, a), new Leaf(H, b));
    BBDExpression* copy = original->Duplicate();
    ASSERT_NE(nullptr, copy);
    BBDExpression* goesFirst = originalFirst ? static_cast<BBDExpression*>(original) : copy;
    BBDExpression* stays = originalFirst ? copy : static_cast<BBDExpression*>(original);
    delete goesFirst;
    EXPECT_EQ(1, a.deaths);
    EXPECT_EQ(1, b.deaths);
    EXPECT_EQ(H, Eval(*stays));
    EXPECT_EQ(1, b.evals);
    delete stays;
    EXPECT_EQ(2, a.deaths);
    EXPECT_EQ(2, b.deaths);
  }
}

TEST_F(ComposedExpressionTest, CompilingACopyLeavesTheOriginalWhole) {
  int deaths = 0;
  auto* original = new BBDComposedExpression(IDX_Filter_Op_Or, Comparison(deaths, true),
                                             Comparison(deaths, false, 1));
  BBDExpression* copy = original->Duplicate();
  BBDExpression::Compile(copy);
  EXPECT_EQ("( 1 = 1 )", Text(copy));
  EXPECT_EQ(0, deaths);  // the copy's operands are the original's
  EXPECT_EQ("( ( NAOperand = 1 ) | ( 1 = 1 ) )", Text(original));
  EXPECT_EQ(H, Eval(*original));
  delete original;
  EXPECT_EQ(2, deaths);  // the NA side went with the original
  EXPECT_EQ(H, Eval(*copy));
  delete copy;
  EXPECT_EQ(4, deaths);
}

TEST_F(ComposedExpressionTest, CopyHoldsNAWhereASideCannotBeDuplicated) {
  Tally a, b;
  BBDComposedExpression original(IDX_Filter_Op_And, new Leaf(H, a, "A", false),
                                 new Leaf(H, b, "B"));
  BBDExpression* copy = original.Duplicate();
  EXPECT_EQ("( NAExpression & B )", Text(copy));
  EXPECT_EQ(U, Eval(*copy));
  delete copy;
  EXPECT_EQ(0, a.deaths);
  EXPECT_EQ(1, b.deaths);
}

TEST_F(ComposedExpressionTest, AssignmentReplacesTheTreeByACopy) {
  Tally oldSide, a, b;
  BBDComposedExpression target(IDX_Filter_Op_Not, new Leaf(H, oldSide, "O"), nullptr);
  {
    BBDComposedExpression source(IDX_Filter_Op_And, new Leaf(H, a, "A"), new Leaf(D, b, "B"));
    target = source;
    EXPECT_EQ(1, oldSide.deaths);
  }
  EXPECT_EQ(1, a.deaths);  // the source's own
  EXPECT_EQ("( A & B )", Text(&target));
  EXPECT_EQ(D, Eval(target));
  const BBDComposedExpression& self = target;
  target = self;
  EXPECT_EQ("( A & B )", Text(&target));
  EXPECT_EQ(D, Eval(target));
}

}  // namespace
