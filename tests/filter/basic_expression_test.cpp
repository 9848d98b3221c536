// Basic expressions, for what the random trees of filter_soak_test.cpp do
// not reach: full times and time zones, read order, zero bytes, copies.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "filter_test_support.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"
#include "platform/scoped_env.h"

namespace {

constexpr KORStatus H = IDX_FILTER_HOLDS;
constexpr KORStatus D = IDX_FILTER_DOES_NOT;
constexpr KORStatus U = IDX_FILTER_UNDECIDABLE;

// The operands of these tests never consult the reader.
using Occurrence = idxbase_test::FakeOccurrence;
using NoReader = ::testing::StrictMock<idxbase_test::MockAttributeReader>;

// What happened to one ProbeOperand.
struct Probe {
  char name = '?';
  std::string* trail = nullptr;  // receives `name` at every read and at death
  int reads = 0;
  int deaths = 0;
  unsigned int context = 0;  // of the last read
  const BBDOccurrence* occurrence = nullptr;
};

// Reports reads and destruction to its probe. Delivers an integer or
// `length` bytes of text when built with one, and fails every other read.
class ProbeOperand : public BBDOperand {
 public:
  explicit ProbeOperand(Probe& probe) : probe_(probe) {}
  ProbeOperand(Probe& probe, int value) : probe_(probe), hasInt_(true), int_(value) {}
  ProbeOperand(Probe& probe, const char* text, int length)
      : probe_(probe), text_(text), length_(length) {}
  ~ProbeOperand() override {
    ++probe_.deaths;
    if (probe_.trail != nullptr) *probe_.trail += probe_.name;
  }

  IDX_Filter_OperandType GetOperandType() override { return IDX_Filter_Operand_Constant; }
  IDX_Filter_ValueType GetValueType() override { return IDX_Filter_Type_Int; }
  KORStatus GetValInt(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead&,
                      int& value) override {
    Note(o, c);
    if (!hasInt_) return KOR_E_FAIL;
    value = int_;
    return KOR_S_OK;
  }
  KORStatus GetValString(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead&,
                         const char*& value, int& length) override {
    Note(o, c);
    if (text_ == nullptr) return KOR_E_FAIL;
    value = text_;
    length = length_;
    return KOR_S_OK;
  }

 private:
  KORStatus Note(const BBDOccurrence& o, unsigned int c) {
    ++probe_.reads;
    probe_.context = c;
    probe_.occurrence = &o;
    if (probe_.trail != nullptr) *probe_.trail += probe_.name;
    return KOR_E_FAIL;
  }

  Probe& probe_;
  bool hasInt_ = false;
  int int_ = 0;
  const char* text_ = nullptr;
  int length_ = 0;
};

class BasicExpressionTest : public ::testing::Test {
 protected:
  KORStatus Eval(BBDExpression& e, bool caseSensitive = true, unsigned int context = 0) {
    return e.eval(occurrence_, context, reader_, caseSensitive);
  }

  Occurrence occurrence_;
  NoReader reader_;
};

// The random trees of filter_soak_test.cpp use whole minutes of three days
// in one month; these rows cover the seconds and the rest of the date.
TEST_F(BasicExpressionTest, TimesCompareToTheSecondAndOnTheFullDate) {
  struct Row {
    const char* what;
    IDX_Filter_Operator op;
    KORStatus expected;
    KORTime a, b, c;
  };
  const KORTime tenAM(2024, 3, 15, 10, 0, 0);
  const KORTime tenAMOneSecond(2024, 3, 15, 10, 0, 1);
  const KORTime elevenAM(2024, 3, 15, 11, 0, 0);
  const Row rows[] = {
      {"other month", IDX_Filter_Op_EqualTime, D, KORTime(2024, 4, 15, 12, 0, 0), tenAM, {}},
      {"other year", IDX_Filter_Op_EqualTime, D, KORTime(2023, 3, 15, 12, 0, 0), tenAM, {}},
      {"10:00:01 <= 10h", IDX_Filter_Op_LowerEqTime, D, tenAMOneSecond, tenAM, {}},
      {"10h >= 10:00:01", IDX_Filter_Op_HigherEqTime, D, tenAM, tenAMOneSecond, {}},
      {"10h < 10:00:01", IDX_Filter_Op_LowerTime, H, tenAM, tenAMOneSecond, {}},
      {"after 10h..11h", IDX_Filter_Op_BetweenTime, D, KORTime(2024, 3, 15, 11, 0, 1), tenAM,
       elevenAM},
      {"before 10h..11h", IDX_Filter_Op_BetweenTime, D, KORTime(2024, 3, 15, 9, 59, 59), tenAM,
       elevenAM},
  };
  for (const Row& row : rows) {
    BBDBasicExpression e(
        row.op, new BBDOperandTimeConst(row.a), new BBDOperandTimeConst(row.b),
        row.op == IDX_Filter_Op_BetweenTime ? new BBDOperandTimeConst(row.c) : nullptr);
    EXPECT_EQ(row.expected, Eval(e)) << row.what;
  }
}

// The floats of filter_soak_test.cpp lie far apart; here a value one step
// past a bound is out of it, with no rounding tolerance.
TEST_F(BasicExpressionTest, FloatsCompareWithoutTolerance) {
  const float aboveFifty = std::nextafter(50.0f, 100.0f);
  BBDBasicExpression equal(IDX_Filter_Op_EqualFloat, new BBDOperandFloatConst(aboveFifty),
                           new BBDOperandFloatConst(50.0f));
  EXPECT_EQ(D, Eval(equal));
  BBDBasicExpression between(IDX_Filter_Op_BetweenFloat, new BBDOperandFloatConst(aboveFifty),
                             new BBDOperandFloatConst(10.0f), new BBDOperandFloatConst(50.0f));
  EXPECT_EQ(D, Eval(between));
}

TEST_F(BasicExpressionTest, EqualTimeComparesTheLocalCalendarDay) {
  auto equal = [&](const char* zone, std::int64_t a, std::int64_t b) {
    idxbase_test::ScopedEnv env;
    env.Set("TZ", zone);
    BBDBasicExpression e(IDX_Filter_Op_EqualTime,
                         new BBDOperandTimeConst(KORTime::FromEpochSeconds(a)),
                         new BBDOperandTimeConst(KORTime::FromEpochSeconds(b)));
    return Eval(e);
  };
  // 11:00 and 13:00 UTC on one day are 23:00 and 01:00 of two days at UTC+12.
  const std::int64_t march15 = 1710500400;  // 2024-03-15 11:00:00 UTC
  EXPECT_EQ(H, equal("UTC0", march15, march15 + 2 * 3600));
  EXPECT_EQ(D, equal("XXX-12", march15, march15 + 2 * 3600));
  EXPECT_EQ(H, equal("XXX+3", march15, march15 + 2 * 3600));
  // 13:00 UTC on 31 December and 11:00 UTC the next day are both on
  // 1 January at UTC+12: year, month and day are all local.
  const std::int64_t newYearsEve = 1704027600;  // 2023-12-31 13:00:00 UTC
  EXPECT_EQ(H, equal("XXX-12", newYearsEve, newYearsEve + 22 * 3600));
  EXPECT_EQ(D, equal("UTC0", newYearsEve, newYearsEve + 22 * 3600));
}

TEST_F(BasicExpressionTest, MembershipStopsAtTheFirstMatch) {
  Probe late;
  auto* set = new BBDOperandSet(new BBDOperandIntConst(7));
  set->Append(new ProbeOperand(late, 7));
  BBDBasicExpression e(IDX_Filter_Op_InInt, new BBDOperandIntConst(7), set);
  EXPECT_EQ(H, Eval(e));
  EXPECT_EQ(0, late.reads);
}

// A caller's class derived from a library constant is read through its
// virtual operations; the library's own classes are read directly. Both
// must answer alike, whatever is assigned between evaluations: compiled
// expressions read their operands as they are at each evaluation.
template <class Base>
class Derived : public Base {
 public:
  using Base::Base;
  using Base::operator=;
};

// Builds twin comparisons, one over the library's classes and one over the
// Derived ones, from the same random draw, and keeps the assignments that
// change a constant in both.
class TwinBuilder {
 public:
  explicit TwinBuilder(unsigned seed) : state_(seed) {}
  int Next(int n) {
    state_ = state_ * 6364136223846793005ull + 1442695040888963407ull;
    return static_cast<int>((state_ >> 33) % static_cast<unsigned>(n));
  }

  // One operand of value type `type` (0 int, 1 float, 2 string, 3 bool, 4
  // time) in both twins; now and then of another type, so that reads fail.
  void Operand(int type, BBDOperand*& direct, BBDOperand*& plain) {
    if (Next(8) == 0) type = Next(5);
    switch (type) {
      case 0:
        Twin<BBDOperandIntConst>(direct, plain, [this] { return Next(3); });
        break;
      case 1:
        Twin<BBDOperandFloatConst>(direct, plain, [this] { return Float(); });
        break;
      case 2:
        Twin<BBDOperandStringConst>(direct, plain, [this] { return strdup(String()); });
        break;
      case 3:
        Twin<BBDOperandBooleanConst>(direct, plain, [this] { return Next(2) == 1; });
        break;
      default:
        Twin<BBDOperandTimeConst>(direct, plain, [this] { return Time(); });
        break;
    }
  }
  // A set of 0 to 3 elements in both twins, now and then with a null one.
  void Set(int type, BBDOperand*& direct, BBDOperand*& plain) {
    auto* directSet = new BBDOperandSet();
    auto* plainSet = new Derived<BBDOperandSet>();
    for (int n = Next(4); n > 0; --n) {
      BBDOperand* d = nullptr;
      BBDOperand* p = nullptr;
      if (Next(10) != 0) Operand(type, d, p);
      directSet->Append(d);
      plainSet->Append(p);
    }
    direct = directSet;
    plain = plainSet;
  }
  void AssignSome() {
    for (auto& assign : assignments_) {
      if (Next(3) == 0) assign();
    }
  }

 private:
  template <class Constant, class Draw>
  void Twin(BBDOperand*& direct, BBDOperand*& plain, Draw draw) {
    auto* d = new Constant(draw());
    auto* p = new Derived<Constant>(draw());
    *p = *d;
    direct = d;
    plain = p;
    assignments_.push_back([d, p, draw]() mutable {
      *d = Constant(draw());
      *p = *d;
    });
  }
  float Float() {
    static const float kValues[] = {0.5f, 1.5f, 2.5f, std::nanf("")};
    return kValues[Next(4)];
  }
  const char* String() {
    static const char* const kValues[] = {"a", "ab", "AB", "*b*", ""};
    return kValues[Next(5)];
  }
  KORTime Time() { return KORTime(2024, 3, 10 + Next(2), 8 + Next(3), 0, 0); }

  std::uint64_t state_;
  std::vector<std::function<void()>> assignments_;
};

TEST_F(BasicExpressionTest, DirectReadsAgreeWithVirtualReads) {
  // Operators by value type: int, float, string, bool, time.
  const std::vector<IDX_Filter_Operator> kOps[5] = {
      {IDX_Filter_Op_EqualInt, IDX_Filter_Op_LowerInt, IDX_Filter_Op_BetweenInt,
       IDX_Filter_Op_InInt},
      {IDX_Filter_Op_EqualFloat, IDX_Filter_Op_HigherEqFloat, IDX_Filter_Op_BetweenFloat,
       IDX_Filter_Op_InFloat},
      {IDX_Filter_Op_EqualString, IDX_Filter_Op_BetweenString, IDX_Filter_Op_LikeString,
       IDX_Filter_Op_InString},
      {IDX_Filter_Op_EqualBoolean, IDX_Filter_Op_DifferentBoolean, IDX_Filter_Op_InBoolean},
      {IDX_Filter_Op_EqualTime, IDX_Filter_Op_DifferentTime, IDX_Filter_Op_BetweenTime},
  };
  int compared = 0;
  for (unsigned seed = 1; seed <= 3000; ++seed) {
    TwinBuilder twins(seed);
    const int type = twins.Next(5);
    const IDX_Filter_Operator op = kOps[type][twins.Next(static_cast<int>(kOps[type].size()))];
    const bool isIn = op == IDX_Filter_Op_InInt || op == IDX_Filter_Op_InFloat ||
                      op == IDX_Filter_Op_InString || op == IDX_Filter_Op_InBoolean;
    const int readType = op == IDX_Filter_Op_InBoolean ? 0 : type;  // IN over booleans reads ints
    BBDOperand* d[3] = {};
    BBDOperand* p[3] = {};
    twins.Operand(readType, d[0], p[0]);
    if (isIn) {
      twins.Set(readType, d[1], p[1]);
    } else {
      twins.Operand(readType, d[1], p[1]);
      twins.Operand(readType, d[2], p[2]);
    }
    BBDExpression* direct = new BBDBasicExpression(op, d[0], d[1], d[2]);
    BBDExpression* plain = new BBDBasicExpression(op, p[0], p[1], p[2]);
    BBDExpression::Compile(direct);
    BBDExpression::Compile(plain);
    for (int round = 0; round < 4; ++round) {
      const bool caseSensitive = twins.Next(2) == 0;
      ASSERT_EQ(Eval(*plain, caseSensitive), Eval(*direct, caseSensitive))
          << "seed " << seed << " round " << round;
      ++compared;
      twins.AssignSome();
    }
    delete direct;
    delete plain;
  }
  EXPECT_EQ(12000, compared);
}

// A read that evaluates the same expression again (an element of the set
// under test) must not disturb the outer membership test.
TEST_F(BasicExpressionTest, MembershipSurvivesAReadThatEvaluatesAgain) {
  class Reentrant : public BBDOperand {
   public:
    IDX_Filter_OperandType GetOperandType() override { return IDX_Filter_Operand_Attribute; }
    IDX_Filter_ValueType GetValueType() override { return IDX_Filter_Type_Int; }
    KORStatus GetValInt(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r,
                        int& value) override {
      if (expression != nullptr && depth++ == 0) inner = expression->eval(o, c, r, true);
      value = 0;
      return KOR_S_OK;
    }
    BBDExpression* expression = nullptr;
    int depth = 0;
    KORStatus inner = 0;
  };
  auto* reentrant = new Reentrant();
  auto* set = new BBDOperandSet(reentrant);
  set->Append(new BBDOperandIntConst(7));
  BBDBasicExpression e(IDX_Filter_Op_InInt, new BBDOperandIntConst(7), set);
  reentrant->expression = &e;
  EXPECT_EQ(H, Eval(e));
  EXPECT_EQ(H, reentrant->inner);
}

TEST_F(BasicExpressionTest, DeletesItsOperandsFirstSecondThird) {
  std::string trail;
  Probe a{'a', &trail}, b{'b', &trail}, c{'c', &trail};
  delete new BBDBasicExpression(IDX_Filter_Op_BetweenInt, new ProbeOperand(a), new ProbeOperand(b),
                                new ProbeOperand(c));
  EXPECT_EQ("abc", trail);
}

TEST_F(BasicExpressionTest, ReadsTheSubjectFirstAndStopsAtTheFirstFailure) {
  struct Case {
    IDX_Filter_Operator op;
    bool firstDelivers;
    bool secondDelivers;
    const char* trail;
    KORStatus expected;
  };
  const Case cases[] = {
      {IDX_Filter_Op_EqualInt, false, true, "a", U},
      {IDX_Filter_Op_EqualInt, true, false, "ab", U},
      {IDX_Filter_Op_EqualInt, true, true, "ab", H},
      {IDX_Filter_Op_BetweenInt, false, true, "a", U},
      {IDX_Filter_Op_BetweenInt, true, false, "ab", U},
      {IDX_Filter_Op_BetweenInt, true, true, "abc", H},
      {IDX_Filter_Op_InInt, false, true, "a", U},
      {IDX_Filter_Op_EqualString, false, true, "a", U},
  };
  for (const Case& c : cases) {
    std::string trail;
    Probe a{'a', &trail}, b{'b', &trail}, third{'c', &trail};
    auto make = [](Probe& p, bool delivers) {
      return delivers ? new ProbeOperand(p, 1) : new ProbeOperand(p);
    };
    BBDBasicExpression e(c.op, make(a, c.firstDelivers), make(b, c.secondDelivers),
                         new ProbeOperand(third, 1));
    EXPECT_EQ(c.expected, Eval(e)) << c.op << " " << c.trail;
    EXPECT_EQ(c.trail, trail) << c.op;
  }
}

TEST_F(BasicExpressionTest, OperandsReceiveTheEvaluationContext) {
  Probe a, b;
  BBDBasicExpression e(IDX_Filter_Op_EqualInt, new ProbeOperand(a, 3), new ProbeOperand(b, 3));
  EXPECT_EQ(H, Eval(e, true, 17));
  EXPECT_EQ(17u, a.context);
  EXPECT_EQ(17u, b.context);
  EXPECT_EQ(&occurrence_, a.occurrence);
  EXPECT_EQ(&occurrence_, b.occurrence);
}

TEST_F(BasicExpressionTest, StringsAreTheDeliveredLengthOfBytes) {
  static const char kLong[] = "abcdef";
  static const char kZeroB[] = {'a', '\0', 'b'};
  static const char kZeroC[] = {'a', '\0', 'c'};
  Probe p;
  BBDBasicExpression prefix(IDX_Filter_Op_EqualString, new ProbeOperand(p, kLong, 3),
                            new BBDOperandStringConst(strdup("abc")));
  EXPECT_EQ(H, Eval(prefix));
  BBDBasicExpression zeros(IDX_Filter_Op_LowerString, new ProbeOperand(p, kZeroB, 3),
                           new ProbeOperand(p, kZeroC, 3));
  EXPECT_EQ(H, Eval(zeros));
  BBDBasicExpression like(IDX_Filter_Op_LikeString, new ProbeOperand(p, kLong, 3),
                          new BBDOperandStringConst(strdup("*d*")));
  EXPECT_EQ(D, Eval(like));
}

TEST_F(BasicExpressionTest, CopiesShareOperandsUntilTheLastGoes) {
  for (bool originalFirst : {true, false}) {
    Probe a, b;
    auto* original = new BBDBasicExpression(IDX_Filter_Op_LowerInt, new ProbeOperand(a, 1),
                                            new ProbeOperand(b, 2));
    BBDExpression* copy = original->Duplicate();
    ASSERT_NE(nullptr, copy);
    BBDExpression* goesFirst = originalFirst ? static_cast<BBDExpression*>(original) : copy;
    BBDExpression* stays = originalFirst ? copy : static_cast<BBDExpression*>(original);
    delete goesFirst;
    EXPECT_EQ(0, a.deaths + b.deaths);
    EXPECT_EQ(H, Eval(*stays));
    EXPECT_EQ(1, a.reads);
    delete stays;
    EXPECT_EQ(1, a.deaths);
    EXPECT_EQ(1, b.deaths);
  }
}

TEST_F(BasicExpressionTest, AssignmentReleasesTheOldOperandsAndSharesTheNew) {
  Probe oldA, oldB, newA, newB;
  BBDBasicExpression target(IDX_Filter_Op_EqualInt, new ProbeOperand(oldA, 1),
                            new ProbeOperand(oldB, 2));
  {
    BBDBasicExpression source(IDX_Filter_Op_HigherInt, new ProbeOperand(newA, 5),
                              new ProbeOperand(newB, 4));
    target = source;
    EXPECT_EQ(1, oldA.deaths);
    EXPECT_EQ(1, oldB.deaths);
  }
  EXPECT_EQ(0, newA.deaths + newB.deaths);
  EXPECT_EQ(IDX_Filter_Op_HigherInt, target.GetOperator());
  EXPECT_EQ(H, Eval(target));  // 5 > 4: the operator came along with the operands
  const BBDBasicExpression& self = target;
  target = self;
  EXPECT_EQ(H, Eval(target));
  EXPECT_EQ(0, newA.deaths + newB.deaths);
}

}  // namespace
