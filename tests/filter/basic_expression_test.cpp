// Basic expressions, for what the random trees of filter_soak_test.cpp do
// not reach: full times and time zones, read order, zero bytes, copies,
// and constants assigned after compilation.
#include <gtest/gtest.h>

#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "filter_test_support.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"
#include "platform/scoped_env.h"
#include "random_filters.h"

namespace {

constexpr KORStatus H = IDX_FILTER_HOLDS;
constexpr KORStatus D = IDX_FILTER_DOES_NOT;
constexpr KORStatus U = IDX_FILTER_UNDECIDABLE;

// What every evaluation here is given. The operands of these tests never
// consult the reader.
constexpr unsigned int kContext = 17;
const idxbase_test::FakeOccurrence kOccurrence;
using NoReader = ::testing::StrictMock<idxbase_test::MockAttributeReader>;

// Writes its name to `trail` at every read given kOccurrence and kContext
// ('?' at a read given others), and its name in upper case when deleted.
// Delivers an integer or `length` bytes of text when built with one, and
// fails every other read.
class Probe : public BBDOperand {
 public:
  Probe(std::string& trail, char name) : trail_(trail), name_(name) {}
  Probe(std::string& trail, char name, int value)
      : trail_(trail), name_(name), hasInt_(true), int_(value) {}
  Probe(std::string& trail, char name, const char* text, int length)
      : trail_(trail), name_(name), text_(text), length_(length) {}
  ~Probe() override { trail_ += static_cast<char>(std::toupper(name_)); }

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
  void Note(const BBDOccurrence& o, unsigned int c) {
    trail_ += &o == &kOccurrence && c == kContext ? name_ : '?';
  }

  std::string& trail_;
  char name_;
  bool hasInt_ = false;
  int int_ = 0;
  const char* text_ = nullptr;
  int length_ = 0;
};

BBDOperand* Int(int value) { return new BBDOperandIntConst(value); }
BBDOperand* Float(float value) { return new BBDOperandFloatConst(value); }
BBDOperand* String(const char* text) { return new BBDOperandStringConst(strdup(text)); }
BBDOperand* Time(const KORTime& time) { return new BBDOperandTimeConst(time); }
BBDOperand* Epoch(std::int64_t seconds) { return Time(KORTime::FromEpochSeconds(seconds)); }
BBDOperand* Set(BBDOperand* first, BBDOperand* second) {
  auto* set = new BBDOperandSet(first);
  set->Append(second);
  return set;
}
BBDExpression* Basic(IDX_Filter_Operator op, BBDOperand* a, BBDOperand* b,
                     BBDOperand* c = nullptr) {
  return new BBDBasicExpression(op, a, b, c);
}

class BasicExpressionTest : public ::testing::Test {
 protected:
  KORStatus Eval(BBDExpression& e, bool caseSensitive = true) {
    return e.eval(kOccurrence, kContext, reader_, caseSensitive);
  }
  template <class... Args>
  BBDOperand* P(char name, Args... args) {
    return new Probe(trail_, name, args...);
  }

  std::string trail_;
  NoReader reader_;
};

// Each row: the answer, and the reads of the probes in order. The random
// trees of filter_soak_test.cpp use whole minutes of three days in one
// month, floats far apart, whole strings without zero bytes, and a single
// time zone; these rows cover the rest.
TEST_F(BasicExpressionTest, AnswersAndReadsInOrder) {
  struct Row {
    const char* what;
    KORStatus expected;
    BBDExpression* e;
    const char* trail = "";
    const char* zone = "UTC0";
  };
  const KORTime tenAM(2024, 3, 15, 10, 0, 0);
  const KORTime tenAMOneSecond(2024, 3, 15, 10, 0, 1);
  const KORTime elevenAM(2024, 3, 15, 11, 0, 0);
  const float aboveFifty = std::nextafter(50.0f, 100.0f);
  const std::int64_t march15 = 1710500400;      // 2024-03-15 11:00:00 UTC
  const std::int64_t newYearsEve = 1704027600;  // 2023-12-31 13:00:00 UTC
  const IDX_Filter_Operator equalTime = IDX_Filter_Op_EqualTime;
  const auto equalHoursApart = [](std::int64_t seconds, int hoursLater) {
    return Basic(IDX_Filter_Op_EqualTime, Epoch(seconds), Epoch(seconds + hoursLater * 3600));
  };
  const Row rows[] = {
      {"other month", D, Basic(equalTime, Time(KORTime(2024, 4, 15, 12, 0, 0)), Time(tenAM))},
      {"other year", D, Basic(equalTime, Time(KORTime(2023, 3, 15, 12, 0, 0)), Time(tenAM))},
      {"10:00:01 <= 10h", D, Basic(IDX_Filter_Op_LowerEqTime, Time(tenAMOneSecond), Time(tenAM))},
      {"10h >= 10:00:01", D, Basic(IDX_Filter_Op_HigherEqTime, Time(tenAM), Time(tenAMOneSecond))},
      {"10h < 10:00:01", H, Basic(IDX_Filter_Op_LowerTime, Time(tenAM), Time(tenAMOneSecond))},
      {"after 10h..11h", D,
       Basic(IDX_Filter_Op_BetweenTime, Time(KORTime(2024, 3, 15, 11, 0, 1)), Time(tenAM),
             Time(elevenAM))},
      {"before 10h..11h", D,
       Basic(IDX_Filter_Op_BetweenTime, Time(KORTime(2024, 3, 15, 9, 59, 59)), Time(tenAM),
             Time(elevenAM))},
      // Equal times share the local calendar day: 11:00 and 13:00 UTC are
      // 23:00 and 01:00 of two days at UTC+12; 13:00 UTC on 31 December
      // and 11:00 UTC the next day are both on 1 January there.
      {"UTC", H, equalHoursApart(march15, 2)},
      {"UTC+12", D, equalHoursApart(march15, 2), "", "XXX-12"},
      {"UTC-3", H, equalHoursApart(march15, 2), "", "XXX+3"},
      {"new year", H, equalHoursApart(newYearsEve, 22), "", "XXX-12"},
      {"new year UTC", D, equalHoursApart(newYearsEve, 22)},
      // One float step past a bound is out of it: no rounding tolerance.
      {"50+ = 50", D, Basic(IDX_Filter_Op_EqualFloat, Float(aboveFifty), Float(50))},
      {"50+ in 10..50", D,
       Basic(IDX_Filter_Op_BetweenFloat, Float(aboveFifty), Float(10), Float(50))},
      // The subject first, then in order up to the first read that fails.
      {"=", U, Basic(IDX_Filter_Op_EqualInt, P('a'), P('b', 1), P('c', 1)), "a"},
      {"=", U, Basic(IDX_Filter_Op_EqualInt, P('a', 1), P('b'), P('c', 1)), "ab"},
      {"=", H, Basic(IDX_Filter_Op_EqualInt, P('a', 1), P('b', 1), P('c', 1)), "ab"},
      {"..", U, Basic(IDX_Filter_Op_BetweenInt, P('a'), P('b', 1), P('c', 1)), "a"},
      {"..", U, Basic(IDX_Filter_Op_BetweenInt, P('a', 1), P('b'), P('c', 1)), "ab"},
      {"..", H, Basic(IDX_Filter_Op_BetweenInt, P('a', 1), P('b', 1), P('c', 1)), "abc"},
      {"in", U, Basic(IDX_Filter_Op_InInt, P('a'), P('b', 1)), "a"},
      {"= string", U, Basic(IDX_Filter_Op_EqualString, P('a'), P('b', 1)), "a"},
      {"in stops at the first match", H,
       Basic(IDX_Filter_Op_InInt, Int(7), Set(Int(7), P('l', 7)))},
      // A string is the delivered length of bytes, zero bytes included.
      {"abc|def = abc", H, Basic(IDX_Filter_Op_EqualString, P('s', "abcdef", 3), String("abc")),
       "s"},
      {"a0b < a0c", H, Basic(IDX_Filter_Op_LowerString, P('s', "a\0b", 3), P('t', "a\0c", 3)),
       "st"},
      {"abc|def like *d*", D, Basic(IDX_Filter_Op_LikeString, P('s', "abcdef", 3), String("*d*")),
       "s"},
  };
  for (const Row& row : rows) {
    const std::unique_ptr<BBDExpression> owner(row.e);
    idxbase_test::ScopedEnv env;
    env.Set("TZ", row.zone);
    trail_.clear();
    EXPECT_EQ(row.expected, Eval(*row.e)) << row.what << " " << row.trail;
    EXPECT_EQ(row.trail, trail_) << row.what;
  }
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
  BBDBasicExpression e(IDX_Filter_Op_InInt, Int(7), Set(reentrant, Int(7)));
  reentrant->expression = &e;
  EXPECT_EQ(H, Eval(e));
  EXPECT_EQ(H, reentrant->inner);
}

TEST_F(BasicExpressionTest, CopiesShareOperandsAndTheLastDeletesThemInOrder) {
  for (bool originalFirst : {true, false}) {
    trail_.clear();
    BBDExpression* original = Basic(IDX_Filter_Op_BetweenInt, P('a', 2), P('b', 1), P('c', 3));
    BBDExpression* copy = original->Duplicate();
    ASSERT_NE(nullptr, copy);
    delete (originalFirst ? original : copy);
    EXPECT_EQ(H, Eval(originalFirst ? *copy : *original));
    delete (originalFirst ? copy : original);
    EXPECT_EQ("abcABC", trail_);
  }
}

TEST_F(BasicExpressionTest, AssignmentReleasesTheOldOperandsAndSharesTheNew) {
  BBDBasicExpression target(IDX_Filter_Op_EqualInt, P('a', 1), P('b', 2));
  {
    const BBDBasicExpression source(IDX_Filter_Op_HigherInt, P('c', 5), P('d', 4));
    target = source;
    EXPECT_EQ("AB", trail_);
  }
  EXPECT_EQ(H, Eval(target));  // 5 > 4: the operator came along with the operands
  const BBDBasicExpression& self = target;
  target = self;
  EXPECT_EQ(H, Eval(target));
  EXPECT_EQ("ABcdcd", trail_);
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

using idxbase_test::Type;
using Twins = std::array<BBDOperand*, 2>;  // a library class, a Derived one

// Builds twin operands holding the same random value, and keeps the
// assignments that give both a new one.
class TwinBuilder {
 public:
  explicit TwinBuilder(idxbase_test::Generator& g) : g_(g) {}

  // Twins of value type `type`; now and then of another, so that reads fail.
  Twins Operand(Type type) {
    switch (g_.Chance(12) ? g_.AnyType() : type) {
      case Type::kInt:
        return Twin<BBDOperandIntConst>([this] { return g_.Int(); });
      case Type::kFloat:
        return Twin<BBDOperandFloatConst>([this] { return g_.Float(); });
      case Type::kString:
        return Twin<BBDOperandStringConst>([this] { return strdup(g_.String().c_str()); });
      case Type::kBool:
        return Twin<BBDOperandBooleanConst>([this] { return g_.Chance(50); });
      case Type::kTime:
        return Twin<BBDOperandTimeConst>([this] { return g_.Time().ToKORTime(); });
    }
    return {};
  }
  // Twin sets of 0 to 3 elements, now and then a null one.
  Twins Set(Type type) {
    auto* direct = new BBDOperandSet();
    auto* plain = new Derived<BBDOperandSet>();
    for (int n = g_.Uniform(0, 3); n > 0; --n) {
      const Twins element = g_.Chance(10) ? Twins{} : Operand(type);
      direct->Append(element[0]);
      plain->Append(element[1]);
    }
    return {direct, plain};
  }
  void AssignSome() {
    for (auto& assign : assignments_) {
      if (g_.Chance(33)) assign();
    }
  }

 private:
  template <class Constant, class Draw>
  Twins Twin(Draw draw) {
    auto* direct = new Constant(draw());
    auto* plain = new Derived<Constant>(draw());
    *plain = *direct;
    assignments_.push_back([direct, plain, draw]() mutable {
      *direct = Constant(draw());
      *plain = *direct;
    });
    return {direct, plain};
  }

  idxbase_test::Generator& g_;
  std::vector<std::function<void()>> assignments_;
};

TEST_F(BasicExpressionTest, DirectReadsAgreeWithVirtualReads) {
  using idxbase_test::Comparison;
  idxbase_test::Generator g(20240612);
  for (int tree = 0; tree < 3000; ++tree) {
    const auto op = static_cast<IDX_Filter_Operator>(g.Uniform(3, 41));
    const idxbase_test::OperatorMeaning meaning = idxbase_test::MeaningOf(op);
    if (meaning.comparison == Comparison::kNone) continue;
    TwinBuilder twins(g);
    const Twins a = twins.Operand(meaning.type);
    const Twins b = meaning.comparison == Comparison::kIn ? twins.Set(meaning.type)
                                                          : twins.Operand(meaning.type);
    const Twins c = twins.Operand(meaning.type);
    BBDExpression* direct = Basic(op, a[0], b[0], c[0]);
    BBDExpression* plain = Basic(op, a[1], b[1], c[1]);
    BBDExpression::Compile(direct);
    BBDExpression::Compile(plain);
    for (int round = 0; round < 4; ++round) {
      const bool caseSensitive = g.Chance(50);
      ASSERT_EQ(Eval(*plain, caseSensitive), Eval(*direct, caseSensitive))
          << "tree " << tree << " round " << round;
      twins.AssignSome();
    }
    delete direct;
    delete plain;
  }
}

}  // namespace
