// Basic expressions, for what the random trees of filter_soak_test.cpp do
// not reach: full times and time zones, read order, zero bytes, copies.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "filter_test_support.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"

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
  std::string* trail = nullptr;  // receives `name` at every read
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
  ~ProbeOperand() override { ++probe_.deaths; }

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

// Sets TZ for the life of the object.
class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const char* zone) {
    const char* old = std::getenv("TZ");
    hadOld_ = old != nullptr;
    if (hadOld_) old_ = old;
    setenv("TZ", zone, 1);
    tzset();
  }
  ~ScopedTimeZone() {
    if (hadOld_) {
      setenv("TZ", old_.c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }

 private:
  bool hadOld_ = false;
  std::string old_;
};

TEST_F(BasicExpressionTest, EqualTimeComparesTheLocalCalendarDay) {
  auto equal = [&](const char* zone, std::int64_t a, std::int64_t b) {
    ScopedTimeZone tz(zone);
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

// Compiled expressions keep the values of the library's constants; what
// can change is still read at every evaluation.
TEST_F(BasicExpressionTest, CompiledConstantsAreKeptButChangingOperandsAreRead) {
  // An operand of a caller's class is read each time, even if it says it
  // is a constant.
  Probe subject;
  BBDExpression* e = new BBDBasicExpression(IDX_Filter_Op_BetweenInt, new ProbeOperand(subject, 5),
                                            new BBDOperandIntConst(1), new BBDOperandIntConst(9));
  BBDExpression::Compile(e);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(H, Eval(*e));
  EXPECT_EQ(3, subject.reads);
  delete e;

  // A set that grows after compiling is read again, whole.
  Probe member;
  auto* set = new BBDOperandSet(new BBDOperandIntConst(1));
  e = new BBDBasicExpression(IDX_Filter_Op_InInt, new BBDOperandIntConst(4), set);
  BBDExpression::Compile(e);
  EXPECT_EQ(D, Eval(*e));
  EXPECT_EQ(D, Eval(*e));
  set->Append(new ProbeOperand(member, 4));
  EXPECT_EQ(H, Eval(*e));
  EXPECT_EQ(H, Eval(*e));
  EXPECT_EQ(2, member.reads);  // a caller's element keeps being read

  // Kept elements keep their order and their failures.
  auto* floats = new BBDOperandSet(new BBDOperandFloatConst(2.0f));
  floats->Append(nullptr);
  floats->Append(new BBDOperandFloatConst(4.0f));
  BBDExpression* f =
      new BBDBasicExpression(IDX_Filter_Op_InFloat, new BBDOperandFloatConst(4.0f), floats);
  BBDExpression::Compile(f);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(U, Eval(*f));  // the null element comes first
  delete f;
  delete e;
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
