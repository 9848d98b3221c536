// Basic expressions: every comparison on its boundaries, the order in which
// operands are read, membership, the case switch, times, and how copies
// share their operands.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "filter_test_support.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"
#include "support/stdout_capture.h"

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

// A value for a table row, made into a library operand by Make.
struct Value {
  enum Kind { kNone, kFail, kInt, kFloat, kString, kBool, kTime, kSet } kind = kNone;
  int i = 0;
  float f = 0.0f;
  const char* s = nullptr;
  std::int64_t seconds = 0;
  std::vector<Value> elements = {};  // kNone elements are null pointers
};

Value I(int i) { return {Value::kInt, i}; }
Value F(float f) { return {Value::kFloat, 0, f}; }
Value S(const char* s) { return {Value::kString, 0, 0.0f, s}; }
Value B(bool b) { return {Value::kBool, b ? 1 : 0}; }
// Local calendar time.
Value T(int y, int mo, int d, int h, int mi, int s) {
  return {Value::kTime, 0, 0.0f, nullptr, KORTime(y, mo, d, h, mi, s).GetEpochSeconds()};
}
Value Mar(int day, int h, int mi = 0, int s = 0) { return T(2024, 3, day, h, mi, s); }
Value Set(std::vector<Value> elements) {
  return {Value::kSet, 0, 0.0f, nullptr, 0, std::move(elements)};
}
const Value kNull = {};
const Value kFail = {Value::kFail};  // an operand that gives no value

BBDOperand* Make(const Value& v) {
  switch (v.kind) {
    case Value::kNone:
      return nullptr;
    case Value::kFail:
      return new BBDNAOperand();
    case Value::kInt:
      return new BBDOperandIntConst(v.i);
    case Value::kFloat:
      return new BBDOperandFloatConst(v.f);
    case Value::kString:
      return new BBDOperandStringConst(strdup(v.s));
    case Value::kBool:
      return new BBDOperandBooleanConst(v.i != 0);
    case Value::kTime:
      return new BBDOperandTimeConst(KORTime::FromEpochSeconds(v.seconds));
    case Value::kSet: {
      auto* set = new BBDOperandSet();
      for (const Value& element : v.elements) set->Append(Make(element));
      return set;
    }
  }
  return nullptr;
}

struct Row {
  const char* what;
  IDX_Filter_Operator op;
  KORStatus expected;
  Value a;
  Value b;
  Value c = {};
  bool caseSensitive = true;
};

class BasicExpressionTest : public ::testing::Test {
 protected:
  KORStatus Eval(BBDExpression& e, bool caseSensitive = true, unsigned int context = 0) {
    return e.eval(occurrence_, context, reader_, caseSensitive);
  }
  void Check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
      BBDBasicExpression e(row.op, Make(row.a), Make(row.b), Make(row.c));
      EXPECT_EQ(row.expected, Eval(e, row.caseSensitive)) << row.what;
    }
  }

  Occurrence occurrence_;
  NoReader reader_;
};

TEST_F(BasicExpressionTest, IntegerAndBooleanComparisons) {
  const int kMin = std::numeric_limits<int>::min();
  const int kMax = std::numeric_limits<int>::max();
  Check({
      {"5 = 5", IDX_Filter_Op_EqualInt, H, I(5), I(5)},
      {"5 = 6", IDX_Filter_Op_EqualInt, D, I(5), I(6)},
      {"5 <> 5", IDX_Filter_Op_DifferentInt, D, I(5), I(5)},
      {"5 <> 6", IDX_Filter_Op_DifferentInt, H, I(5), I(6)},
      {"4 < 5", IDX_Filter_Op_LowerInt, H, I(4), I(5)},
      {"5 < 5", IDX_Filter_Op_LowerInt, D, I(5), I(5)},
      {"min < max", IDX_Filter_Op_LowerInt, H, I(kMin), I(kMax)},
      {"max < min", IDX_Filter_Op_LowerInt, D, I(kMax), I(kMin)},
      {"5 <= 5", IDX_Filter_Op_LowerEqInt, H, I(5), I(5)},
      {"6 <= 5", IDX_Filter_Op_LowerEqInt, D, I(6), I(5)},
      {"6 > 5", IDX_Filter_Op_HigherInt, H, I(6), I(5)},
      {"5 > 5", IDX_Filter_Op_HigherInt, D, I(5), I(5)},
      {"max > min", IDX_Filter_Op_HigherInt, H, I(kMax), I(kMin)},
      {"5 >= 5", IDX_Filter_Op_HigherEqInt, H, I(5), I(5)},
      {"4 >= 5", IDX_Filter_Op_HigherEqInt, D, I(4), I(5)},
      {"3 in 3..7", IDX_Filter_Op_BetweenInt, H, I(3), I(3), I(7)},
      {"7 in 3..7", IDX_Filter_Op_BetweenInt, H, I(7), I(3), I(7)},
      {"8 in 3..7", IDX_Filter_Op_BetweenInt, D, I(8), I(3), I(7)},
      {"2 in 3..7", IDX_Filter_Op_BetweenInt, D, I(2), I(3), I(7)},
      {"5 in 7..3", IDX_Filter_Op_BetweenInt, D, I(5), I(7), I(3)},
      {"no high bound", IDX_Filter_Op_BetweenInt, U, I(5), I(3)},
      {"high bound fails", IDX_Filter_Op_BetweenInt, U, I(5), I(3), kFail},
      {"subject fails", IDX_Filter_Op_EqualInt, U, kFail, I(5)},
      {"value fails", IDX_Filter_Op_EqualInt, U, I(5), kFail},
      {"no value", IDX_Filter_Op_EqualInt, U, I(5), kNull},
      {"true = true", IDX_Filter_Op_EqualBoolean, H, B(true), B(true)},
      {"true = false", IDX_Filter_Op_EqualBoolean, D, B(true), B(false)},
      {"true <> false", IDX_Filter_Op_DifferentBoolean, H, B(true), B(false)},
      {"false <> false", IDX_Filter_Op_DifferentBoolean, D, B(false), B(false)},
  });
}

TEST_F(BasicExpressionTest, FloatComparisonsIncludingNaN) {
  const float nan = std::nanf("");
  const float aboveFifty = std::nextafter(50.0f, 100.0f);
  Check({
      {"1.5 = 1.5", IDX_Filter_Op_EqualFloat, H, F(1.5f), F(1.5f)},
      {"-0 = 0", IDX_Filter_Op_EqualFloat, H, F(-0.0f), F(0.0f)},
      {"1.5 <> 1.5", IDX_Filter_Op_DifferentFloat, D, F(1.5f), F(1.5f)},
      {"1 < 2", IDX_Filter_Op_LowerFloat, H, F(1.0f), F(2.0f)},
      {"1 < 1", IDX_Filter_Op_LowerFloat, D, F(1.0f), F(1.0f)},
      {"1 <= 1", IDX_Filter_Op_LowerEqFloat, H, F(1.0f), F(1.0f)},
      {"2 <= 1", IDX_Filter_Op_LowerEqFloat, D, F(2.0f), F(1.0f)},
      {"2 > 1", IDX_Filter_Op_HigherFloat, H, F(2.0f), F(1.0f)},
      {"1 > 1", IDX_Filter_Op_HigherFloat, D, F(1.0f), F(1.0f)},
      {"1 >= 1", IDX_Filter_Op_HigherEqFloat, H, F(1.0f), F(1.0f)},
      {"1 >= 2", IDX_Filter_Op_HigherEqFloat, D, F(1.0f), F(2.0f)},
      {"10 in 10..50", IDX_Filter_Op_BetweenFloat, H, F(10.0f), F(10.0f), F(50.0f)},
      {"50 in 10..50", IDX_Filter_Op_BetweenFloat, H, F(50.0f), F(10.0f), F(50.0f)},
      {"50+ in 10..50", IDX_Filter_Op_BetweenFloat, D, F(aboveFifty), F(10.0f), F(50.0f)},
      {"NaN = 1", IDX_Filter_Op_EqualFloat, D, F(nan), F(1.0f)},
      {"NaN = NaN", IDX_Filter_Op_EqualFloat, D, F(nan), F(nan)},
      {"NaN <> 1", IDX_Filter_Op_DifferentFloat, H, F(nan), F(1.0f)},
      {"NaN < 1", IDX_Filter_Op_LowerFloat, D, F(nan), F(1.0f)},
      {"1 < NaN", IDX_Filter_Op_LowerFloat, D, F(1.0f), F(nan)},
      {"NaN <= 1", IDX_Filter_Op_LowerEqFloat, D, F(nan), F(1.0f)},
      {"NaN > 1", IDX_Filter_Op_HigherFloat, D, F(nan), F(1.0f)},
      {"NaN >= 1", IDX_Filter_Op_HigherEqFloat, D, F(nan), F(1.0f)},
      {"NaN in 0..10", IDX_Filter_Op_BetweenFloat, H, F(nan), F(0.0f), F(10.0f)},
      {"5 in NaN..10", IDX_Filter_Op_BetweenFloat, H, F(5.0f), F(nan), F(10.0f)},
      {"20 in 0..NaN", IDX_Filter_Op_BetweenFloat, H, F(20.0f), F(0.0f), F(nan)},
      {"int is no float", IDX_Filter_Op_EqualFloat, U, I(1), F(1.0f)},
  });
}

TEST_F(BasicExpressionTest, StringComparisons) {
  Check({
      {"abc = abc", IDX_Filter_Op_EqualString, H, S("abc"), S("abc")},
      {"abc = abd", IDX_Filter_Op_EqualString, D, S("abc"), S("abd")},
      {"\"\" = \"\"", IDX_Filter_Op_EqualString, H, S(""), S("")},
      {"abc <> abc", IDX_Filter_Op_DifferentString, D, S("abc"), S("abc")},
      {"abc <> abd", IDX_Filter_Op_DifferentString, H, S("abc"), S("abd")},
      {"prefix first", IDX_Filter_Op_LowerString, H, S("ab"), S("abc")},
      {"abc < abc", IDX_Filter_Op_LowerString, D, S("abc"), S("abc")},
      {"bytes are signed", IDX_Filter_Op_LowerString, H, S("\x80"), S("a")},
      {"abc <= abc", IDX_Filter_Op_LowerEqString, H, S("abc"), S("abc")},
      {"b > a", IDX_Filter_Op_HigherString, H, S("b"), S("a")},
      {"a > a", IDX_Filter_Op_HigherString, D, S("a"), S("a")},
      {"a >= a", IDX_Filter_Op_HigherEqString, H, S("a"), S("a")},
      {"z in a..z", IDX_Filter_Op_BetweenString, H, S("z"), S("a"), S("z")},
      {"za in a..z", IDX_Filter_Op_BetweenString, D, S("za"), S("a"), S("z")},
      {"B in a..z", IDX_Filter_Op_BetweenString, D, S("B"), S("a"), S("z")},
      {"like *12*", IDX_Filter_Op_LikeString, H, S("part-000123"), S("*12*")},
      {"unlike *12*", IDX_Filter_Op_LikeString, D, S("part-000132"), S("*12*")},
      {"not like *12*", IDX_Filter_Op_NotLikeString, D, S("part-000123"), S("*12*")},
      {"not unlike *12*", IDX_Filter_Op_NotLikeString, H, S("part-000132"), S("*12*")},
      // Case folding: A-Z onto a-z, nothing else.
      {"abc = ABC folded", IDX_Filter_Op_EqualString, H, S("abc"), S("ABC"), kNull, false},
      {"abc = ABC exact", IDX_Filter_Op_EqualString, D, S("abc"), S("ABC"), kNull, true},
      {"[ = { folded", IDX_Filter_Op_EqualString, D, S("["), S("{"), kNull, false},
      {"B < a folded", IDX_Filter_Op_LowerString, D, S("B"), S("a"), kNull, false},
      {"B < a exact", IDX_Filter_Op_LowerString, H, S("B"), S("a"), kNull, true},
      {"B in a..z folded", IDX_Filter_Op_BetweenString, H, S("B"), S("a"), S("z"), false},
      {"like *B* folded", IDX_Filter_Op_LikeString, H, S("abc"), S("*B*"), kNull, false},
      {"like *B* exact", IDX_Filter_Op_LikeString, D, S("abc"), S("*B*"), kNull, true},
      {"in folded", IDX_Filter_Op_InString, H, S("ABC"), Set({S("x"), S("abc")}), kNull, false},
  });
}

TEST_F(BasicExpressionTest, TimeComparisons) {
  Check({
      {"same day", IDX_Filter_Op_EqualTime, H, Mar(15, 1), Mar(15, 23)},
      {"midnight apart", IDX_Filter_Op_EqualTime, D, Mar(15, 23, 59, 59), Mar(16, 0)},
      {"other month", IDX_Filter_Op_EqualTime, D, T(2024, 4, 15, 12, 0, 0), Mar(15, 12)},
      {"other year", IDX_Filter_Op_EqualTime, D, T(2023, 3, 15, 12, 0, 0), Mar(15, 12)},
      {"<> same day", IDX_Filter_Op_DifferentTime, D, Mar(15, 1), Mar(15, 23)},
      {"<> other day", IDX_Filter_Op_DifferentTime, H, Mar(15, 12), Mar(16, 12)},
      {"<> subject fails", IDX_Filter_Op_DifferentTime, H, kFail, Mar(15, 1)},
      {"<> value fails", IDX_Filter_Op_DifferentTime, H, Mar(15, 1), kFail},
      {"= subject fails", IDX_Filter_Op_EqualTime, U, kFail, Mar(15, 1)},
      {"10h < 11h", IDX_Filter_Op_LowerTime, H, Mar(15, 10), Mar(15, 11)},
      {"10h < 10h", IDX_Filter_Op_LowerTime, D, Mar(15, 10), Mar(15, 10)},
      {"10h <= 10h", IDX_Filter_Op_LowerEqTime, H, Mar(15, 10), Mar(15, 10)},
      {"10:00:01 <= 10h", IDX_Filter_Op_LowerEqTime, D, Mar(15, 10, 0, 1), Mar(15, 10)},
      {"11h > 10h", IDX_Filter_Op_HigherTime, H, Mar(15, 11), Mar(15, 10)},
      {"10h > 10h", IDX_Filter_Op_HigherTime, D, Mar(15, 10), Mar(15, 10)},
      {"10h >= 10h", IDX_Filter_Op_HigherEqTime, H, Mar(15, 10), Mar(15, 10)},
      {"10h >= 10:00:01", IDX_Filter_Op_HigherEqTime, D, Mar(15, 10), Mar(15, 10, 0, 1)},
      {"in 10h..11h", IDX_Filter_Op_BetweenTime, H, Mar(15, 11), Mar(15, 10), Mar(15, 11)},
      {"after 10h..11h", IDX_Filter_Op_BetweenTime, D, Mar(15, 11, 0, 1), Mar(15, 10), Mar(15, 11)},
      {"before 10h..11h", IDX_Filter_Op_BetweenTime, D, Mar(15, 9, 59, 59), Mar(15, 10),
       Mar(15, 11)},
  });
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

TEST_F(BasicExpressionTest, Membership) {
  const float nan = std::nanf("");
  Check({
      {"2 in {1 2 3}", IDX_Filter_Op_InInt, H, I(2), Set({I(1), I(2), I(3)})},
      {"4 in {1 2 3}", IDX_Filter_Op_InInt, D, I(4), Set({I(1), I(2), I(3)})},
      {"empty set", IDX_Filter_Op_InInt, D, I(1), Set({})},
      {"null first element", IDX_Filter_Op_InInt, U, I(1), Set({kNull, I(1)})},
      {"match before failure", IDX_Filter_Op_InInt, H, I(1), Set({I(1), kFail})},
      {"match before null", IDX_Filter_Op_InInt, H, I(1), Set({I(1), kNull})},
      {"failure before match", IDX_Filter_Op_InInt, U, I(1), Set({kFail, I(1)})},
      {"failure after miss", IDX_Filter_Op_InInt, U, I(1), Set({I(2), kFail})},
      {"subject fails", IDX_Filter_Op_InInt, U, kFail, Set({I(1)})},
      {"no set", IDX_Filter_Op_InInt, U, I(1), kNull},
      {"not a set", IDX_Filter_Op_InInt, U, I(1), I(1)},
      {"b in {a b}", IDX_Filter_Op_InString, H, S("b"), Set({S("a"), S("b")})},
      {"c in {a b}", IDX_Filter_Op_InString, D, S("c"), Set({S("a"), S("b")})},
      {"0.5 in {0.25 0.5}", IDX_Filter_Op_InFloat, H, F(0.5f), Set({F(0.25f), F(0.5f)})},
      {"NaN in {NaN}", IDX_Filter_Op_InFloat, D, F(nan), Set({F(nan)})},
      // Membership over booleans reads integers, from the subject and the
      // elements alike.
      {"bool 1 in {0 1}", IDX_Filter_Op_InBoolean, H, I(1), Set({I(0), I(1)})},
      {"bool 2 in {0 1}", IDX_Filter_Op_InBoolean, D, I(2), Set({I(0), I(1)})},
      {"bool subject", IDX_Filter_Op_InBoolean, U, B(true), Set({I(1)})},
      {"bool element", IDX_Filter_Op_InBoolean, U, I(1), Set({B(true)})},
  });
}

TEST_F(BasicExpressionTest, MembershipStopsAtTheFirstMatch) {
  Probe late;
  auto* set = new BBDOperandSet(new BBDOperandIntConst(7));
  set->Append(new ProbeOperand(late, 7));
  BBDBasicExpression e(IDX_Filter_Op_InInt, new BBDOperandIntConst(7), set);
  EXPECT_EQ(H, Eval(e));
  EXPECT_EQ(0, late.reads);
}

TEST_F(BasicExpressionTest, OperatorsWithoutEvaluationPrintAndAreUndecidable) {
  for (int op : {0, 1, 2, 22, 32, -1, 42, 99}) {
    Probe probe;
    BBDBasicExpression e(static_cast<IDX_Filter_Operator>(op), new ProbeOperand(probe, 1),
                         new ProbeOperand(probe, 1));
    idxbase_test::StdoutCapture capture;
    const KORStatus result = Eval(e);
    EXPECT_EQ("No evaluation function defined.\n", capture.Finish()) << op;
    EXPECT_EQ(U, result) << op;
  }
  BBDBasicExpression unsupported(IDX_Filter_Op_Unsupported, new BBDOperandIntConst(1),
                                 new BBDOperandIntConst(1));
  idxbase_test::StdoutCapture capture;
  const KORStatus result = Eval(unsupported);
  EXPECT_EQ("", capture.Finish());
  EXPECT_EQ(U, result);
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

TEST_F(BasicExpressionTest, EveryEvaluationSetsTheCaseSwitch) {
  BBDBasicExpression equal(IDX_Filter_Op_EqualString, new BBDOperandStringConst(strdup("abc")),
                           new BBDOperandStringConst(strdup("ABC")));
  BBDBasicExpression lower(IDX_Filter_Op_LowerString, new BBDOperandStringConst(strdup("B")),
                           new BBDOperandStringConst(strdup("a")));
  EXPECT_EQ(H, Eval(equal, false));
  EXPECT_EQ(H, Eval(lower, true));  // the earlier false does not linger
  EXPECT_EQ(D, Eval(equal, true));
  EXPECT_EQ(D, Eval(lower, false));  // nor does the earlier true
  EXPECT_EQ(H, Eval(equal, false));
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
