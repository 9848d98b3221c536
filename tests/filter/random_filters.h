// Random filter trees and records for the filter tests: models of trees
// that a reference evaluator can read, the library trees built from them,
// and a seeded generator of both.
#ifndef IDXBASE_TESTS_FILTER_RANDOM_FILTERS_H_
#define IDXBASE_TESTS_FILTER_RANDOM_FILTERS_H_

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"

namespace idxbase_test {

// How many evaluations the random-tree tests make: 1,000,000 (a few
// seconds, also with the sanitizers), or IDXBASE_SOAK_EVALUATIONS (the
// valgrind run asks for fewer).
inline int SoakEvaluations() {
  const char* count = std::getenv("IDXBASE_SOAK_EVALUATIONS");
  return count != nullptr ? std::atoi(count) : 1000000;
}

// ---------------------------------------------------------------------
// Values, as the reference sees them.

enum class Type { kInt, kString, kFloat, kBool, kTime };

// A moment on one of a few days, in local time.
struct Moment {
  int day = 0;
  int hour = 0;
  int minute = 0;
  KORTime ToKORTime() const { return KORTime(2024, 6, 10 + day, hour, minute, 0); }
  int Order() const { return (day * 24 + hour) * 60 + minute; }
};

// A string as an operand delivers it: bytes and a length that may be
// negative (readers can give one).
struct Text {
  std::string bytes;
  int length = 0;
};

// One attribute of a record: a value of every type, each possibly absent.
// A boolean reads as true exactly when the reader gives 1.
struct Attribute {
  std::optional<int> i;
  std::optional<float> f;
  std::optional<Text> s;
  std::optional<int> b;
  std::optional<Moment> t;
};

constexpr int kAttributes = 3;

struct Record {
  std::array<Attribute, kAttributes> attributes;
  std::optional<std::string> user;  // the user variable; absent: null
};

// ---------------------------------------------------------------------
// Trees, as the reference sees them.

struct OperandModel {
  enum Kind { kNull, kNA, kConst, kSet, kAttribute, kUser } kind = kNull;
  Type type = Type::kInt;    // of a constant or an attribute
  bool naAttribute = false;  // an attribute operand declared of type NA
  int attribute = 0;
  int i = 0;
  float f = 0;
  bool b = false;
  std::string s;
  Moment t;
  std::vector<OperandModel> elements;
};

struct ExprModel;
using Expr = std::shared_ptr<const ExprModel>;

struct ExprModel {
  enum Kind { kBasic, kComposed, kNA } kind = kBasic;
  int op = 0;
  std::array<OperandModel, 3> operands;  // basic
  Expr first, second;                    // composed
};

// What a comparison operator does, by operator value.
enum class Comparison {
  kNone,
  kUnsupported,
  kEqual,
  kDifferent,
  kLower,
  kLowerEq,
  kHigher,
  kHigherEq,
  kBetween,
  kIn,
  kLike,
  kNotLike
};

struct OperatorMeaning {
  Comparison comparison;
  Type type;  // the type that the operands are read in
};

inline OperatorMeaning MeaningOf(int op) {
  using C = Comparison;
  using T = Type;
  // IN over booleans (31) reads integers.
  static const OperatorMeaning kMeanings[] = {
      {C::kNone, T::kInt},       {C::kNone, T::kInt},         {C::kNone, T::kInt},
      {C::kEqual, T::kInt},      {C::kEqual, T::kString},     {C::kEqual, T::kFloat},
      {C::kEqual, T::kBool},     {C::kBetween, T::kString},   {C::kBetween, T::kInt},
      {C::kBetween, T::kFloat},  {C::kLower, T::kString},     {C::kLower, T::kInt},
      {C::kLower, T::kFloat},    {C::kLowerEq, T::kString},   {C::kLowerEq, T::kInt},
      {C::kLowerEq, T::kFloat},  {C::kHigher, T::kString},    {C::kHigher, T::kInt},
      {C::kHigher, T::kFloat},   {C::kHigherEq, T::kString},  {C::kHigherEq, T::kInt},
      {C::kHigherEq, T::kFloat}, {C::kNone, T::kInt},         {C::kLike, T::kString},
      {C::kDifferent, T::kInt},  {C::kDifferent, T::kString}, {C::kDifferent, T::kFloat},
      {C::kDifferent, T::kBool}, {C::kIn, T::kInt},           {C::kIn, T::kString},
      {C::kIn, T::kFloat},       {C::kIn, T::kInt},           {C::kNone, T::kInt},
      {C::kNotLike, T::kString}, {C::kEqual, T::kTime},       {C::kDifferent, T::kTime},
      {C::kBetween, T::kTime},   {C::kLower, T::kTime},       {C::kLowerEq, T::kTime},
      {C::kHigher, T::kTime},    {C::kHigherEq, T::kTime},    {C::kUnsupported, T::kInt},
  };
  static_assert(sizeof kMeanings / sizeof kMeanings[0] == 42);
  return op >= 0 && op < 42 ? kMeanings[op] : OperatorMeaning{C::kNone, T::kInt};
}

// The library's value type of `type`: numbered alike, but for time.
inline IDX_Filter_ValueType LibraryType(Type type) {
  return type == Type::kTime ? IDX_Filter_Type_Time : static_cast<IDX_Filter_ValueType>(type);
}

// Builds library trees whose user-string operands read `*userVariable`.
class TreeBuilder {
 public:
  explicit TreeBuilder(const char* const* userVariable) : userVariable_(userVariable) {}

  BBDOperand* Build(const OperandModel& o) const {
    switch (o.kind) {
      case OperandModel::kNull:
        return nullptr;
      case OperandModel::kNA:
        return new BBDNAOperand();
      case OperandModel::kUser:
        return new BBDOperandStringUser(userVariable_);
      case OperandModel::kAttribute:
        // The pair's type number is the declared type's, so that a reader
        // holding one column per type and attribute can serve it.
        return new BBDOperandAttribute(new AttributeTypePair(static_cast<int>(o.type), o.attribute),
                                       o.naAttribute ? IDX_Filter_Type_NA : LibraryType(o.type));
      case OperandModel::kSet: {
        auto* set = new BBDOperandSet();
        for (const OperandModel& element : o.elements) set->Append(Build(element));
        return set;
      }
      case OperandModel::kConst:
        return BuildConstant(o);
    }
    return nullptr;
  }

  BBDExpression* Build(const Expr& e) const {
    if (!e) return nullptr;
    if (e->kind == ExprModel::kComposed) {
      return new BBDComposedExpression(static_cast<IDX_Filter_Operator>(e->op), Build(e->first),
                                       Build(e->second));
    }
    return new BBDBasicExpression(static_cast<IDX_Filter_Operator>(e->op), Build(e->operands[0]),
                                  Build(e->operands[1]), Build(e->operands[2]));
  }

 private:
  static BBDOperand* BuildConstant(const OperandModel& o) {
    switch (o.type) {
      case Type::kInt:
        return new BBDOperandIntConst(o.i);
      case Type::kFloat:
        return new BBDOperandFloatConst(o.f);
      case Type::kBool:
        return new BBDOperandBooleanConst(o.b);
      case Type::kString:
        return new BBDOperandStringConst(strdup(o.s.c_str()));
      case Type::kTime:
        return new BBDOperandTimeConst(o.t.ToKORTime());
    }
    return nullptr;
  }

  const char* const* userVariable_;
};

// ---------------------------------------------------------------------
// Random trees and records, from small domains so that comparisons often
// meet equal values.

class Generator {
 public:
  explicit Generator(std::uint32_t seed) : random_(seed) {}

  // Whether set elements may be attributes (the column evaluator refuses
  // them).
  bool attributesInSets = true;

  bool Chance(int percent) { return Uniform(0, 99) < percent; }
  int Uniform(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

  Type AnyType() { return static_cast<Type>(Uniform(0, 4)); }
  int Int() {
    static const int kExtremes[] = {std::numeric_limits<int>::min(),
                                    std::numeric_limits<int>::max()};
    return Chance(5) ? kExtremes[Uniform(0, 1)] : Uniform(-3, 3);
  }
  float Float() {
    static const float kValues[] = {
        std::numeric_limits<float>::quiet_NaN(), -0.0f, 0.0f, 1.5f, -2.25f, 3.0f,
        std::numeric_limits<float>::infinity()};
    return kValues[Uniform(0, 6)];
  }
  std::string String() {
    static const char kAlphabet[] = "aAbB*\xC8";
    std::string s(static_cast<std::size_t>(Uniform(0, 4)), ' ');
    for (char& c : s) c = kAlphabet[Uniform(0, 5)];
    return s;
  }
  Moment Time() { return Moment{Uniform(0, 2), Uniform(0, 2) * 11, Uniform(0, 1) * 30}; }

  Record MakeRecord() {
    Record record;
    for (Attribute& a : record.attributes) {
      if (!Chance(10)) a.i = Int();
      if (!Chance(10)) a.f = Float();
      if (!Chance(10)) {
        const std::string s = String();
        // Now and then a reader hands out a negative length.
        a.s = Text{s, Chance(3) ? -Uniform(1, 3) : static_cast<int>(s.size())};
      }
      if (!Chance(10)) a.b = Uniform(0, 2);
      if (!Chance(10)) a.t = Time();
    }
    if (!Chance(15)) record.user = String();
    return record;
  }

  // An operand meant to be read in `type`; sometimes of another type,
  // missing, NA, the user string or a set.
  OperandModel Operand(Type type) {
    OperandModel o;
    const int roll = Uniform(0, 99);
    o.type = roll < 8 ? AnyType() : type;
    if (roll < 3) {
      o.kind = OperandModel::kNull;
    } else if (roll < 6) {
      o.kind = OperandModel::kNA;
    } else if (roll < 8) {
      o.kind = Chance(50) ? OperandModel::kUser : OperandModel::kSet;
    } else if (roll < 50) {
      o.kind = OperandModel::kAttribute;
      o.attribute = Uniform(0, kAttributes - 1);
      o.naAttribute = Chance(3);
    } else {
      o.kind = OperandModel::kConst;
    }
    if (o.kind == OperandModel::kUser && type == Type::kString) o.type = Type::kString;
    o.i = Int();
    o.f = Float();
    o.b = Chance(50);
    o.s = String();
    o.t = Time();
    return o;
  }

  // The set of a membership test: missing, not a set, or elements of
  // which some may be null or of another type.
  OperandModel Set(Type type) {
    OperandModel set;
    const int roll = Uniform(0, 99);
    if (roll < 4) return set;  // no set at all
    if (roll < 8) return Operand(type);
    set.kind = OperandModel::kSet;
    const int size = Uniform(0, 4);
    for (int k = 0; k < size; ++k) {
      set.elements.push_back(Operand(type));
      OperandModel::Kind& kind = set.elements.back().kind;
      if (kind == OperandModel::kSet || (kind == OperandModel::kAttribute && !attributesInSets))
        kind = OperandModel::kNA;
    }
    return set;
  }

  Expr Basic() {
    auto e = std::make_shared<ExprModel>();
    e->kind = ExprModel::kBasic;
    const int roll = Uniform(0, 99);
    if (roll < 2) {
      static const int kNoEvaluationOps[] = {-1, 0, 1, 2, 22, 32, 42};
      e->op = kNoEvaluationOps[Uniform(0, 6)];
    } else {
      e->op = Uniform(3, 41);
      if (e->op == 22 || e->op == 32) e->op = 23;
    }
    Type type = MeaningOf(e->op).type;
    if (e->op == IDX_Filter_Op_InBoolean && Chance(30)) type = Type::kBool;
    e->operands[0] = Operand(type);
    if (MeaningOf(e->op).comparison == Comparison::kIn) {
      e->operands[1] = Set(type);
    } else {
      e->operands[1] = Operand(type);
    }
    // Ranges take a third operand; it is missing now and then.
    if (MeaningOf(e->op).comparison == Comparison::kBetween || Chance(3)) {
      e->operands[2] = Operand(type);
    }
    return e;
  }

  Expr Tree(int depth) {
    if (depth > 0 && Chance(4)) return nullptr;  // a missing sub-expression
    if (depth >= 4 || Chance(30 + 15 * depth)) return Basic();
    auto e = std::make_shared<ExprModel>();
    e->kind = ExprModel::kComposed;
    const int roll = Uniform(0, 99);
    e->op = roll < 20   ? IDX_Filter_Op_Not
            : roll < 58 ? IDX_Filter_Op_Or
            : roll < 97 ? IDX_Filter_Op_And
                        : Uniform(3, 9);
    e->first = Tree(depth + 1);
    // A not has no second side, or one that is ignored.
    if (e->op != IDX_Filter_Op_Not || Chance(5)) e->second = Tree(depth + 1);
    return e;
  }

 private:
  std::mt19937 random_;
};

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_FILTER_RANDOM_FILTERS_H_
