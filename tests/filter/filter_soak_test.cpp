// Soak of filter evaluation: random trees (seeded, so every run is the
// same) over constants, sets, the user string and attributes read from
// random records, with NA operands, null operands, null sets and set
// elements, missing sub-expressions and operators without evaluation. Each
// tree is evaluated compiled and as an uncompiled copy against a reference
// three-valued evaluator written here, which also predicts every message
// that the library writes to standard output.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
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
#include "support/like_reference.h"
#include "support/stdout_capture.h"

namespace {

constexpr KORStatus H = IDX_FILTER_HOLDS;
constexpr KORStatus D = IDX_FILTER_DOES_NOT;
constexpr KORStatus U = IDX_FILTER_UNDECIDABLE;

const char kNoEvaluation[] = "No evaluation function defined.\n";
const char kNullExpression[] = "Error in BBDComposedExpression::eval : null expression\n";
const char kNullOperand[] = "Warning : null operand in BBDBasicExpression::Compile()\n";

// 1,000,000 evaluations (a few seconds, also with the sanitizers);
// IDXBASE_SOAK_EVALUATIONS sets another count (the valgrind run uses it).
int EvaluationCount() {
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

OperatorMeaning MeaningOf(int op) {
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

// ---------------------------------------------------------------------
// The reference evaluator.

// The string ordering: signed bytes, A-Z folded unless case sensitive,
// then the shorter first.
int CompareText(bool caseSensitive, const Text& a, const Text& b) {
  for (int k = 0; k < a.length && k < b.length; ++k) {
    int x = static_cast<signed char>(a.bytes[k]);
    int y = static_cast<signed char>(b.bytes[k]);
    if (!caseSensitive && x >= 'A' && x <= 'Z') x += 'a' - 'A';
    if (!caseSensitive && y >= 'A' && y <= 'Z') y += 'a' - 'A';
    if (x != y) return x < y ? -1 : 1;
  }
  return a.length < b.length ? -1 : (a.length > b.length ? 1 : 0);
}

// A value read from an operand in one type.
struct Value {
  int i = 0;
  float f = 0;
  bool b = false;
  Text s;
  Moment t;
};

class Reference {
 public:
  Reference(const Record& record, bool caseSensitive, std::string& output)
      : record_(record), caseSensitive_(caseSensitive), output_(output) {}

  KORStatus Eval(const Expr& e) {
    switch (e->kind) {
      case ExprModel::kNA:
        return U;
      case ExprModel::kComposed:
        return EvalComposed(*e);
      default:
        return EvalBasic(*e);
    }
  }

 private:
  KORStatus NullExpression() {
    output_ += kNullExpression;
    return U;
  }

  KORStatus EvalComposed(const ExprModel& e) {
    if (!e.first) return NullExpression();
    if (e.op == IDX_Filter_Op_Not) {
      const KORStatus r = Eval(e.first);
      return r == U ? U : (r == D ? H : D);
    }
    if (e.op != IDX_Filter_Op_Or && e.op != IDX_Filter_Op_And) return U;
    if (!e.second) return NullExpression();
    const KORStatus r1 = Eval(e.first);
    if (e.op == IDX_Filter_Op_Or) {
      if (r1 == H) return H;
      const KORStatus r2 = Eval(e.second);
      if (r2 == H) return H;
      return (r1 == D || r2 == D) ? D : U;
    }
    if (r1 == U) return U;
    const KORStatus r2 = Eval(e.second);
    if (r2 == U) return U;
    return (r1 == D || r2 == D) ? D : H;
  }

  // The value of `o` in `type`, or nothing when it gives none: constants
  // and attributes answer only in their own type, the user string only as
  // a string and only while its variable is set.
  std::optional<Value> Read(const OperandModel& o, Type type) const {
    Value v;
    switch (o.kind) {
      case OperandModel::kConst:
        if (o.type != type) return std::nullopt;
        v.i = o.i;
        v.f = o.f;
        v.b = o.b;
        v.s = Text{o.s, static_cast<int>(o.s.size())};
        v.t = o.t;
        return v;
      case OperandModel::kUser:
        if (type != Type::kString || !record_.user) return std::nullopt;
        v.s = Text{*record_.user, static_cast<int>(record_.user->size())};
        return v;
      case OperandModel::kAttribute:
        return o.naAttribute || o.type != type ? std::nullopt : ReadAttribute(o.attribute, type);
      default:
        return std::nullopt;
    }
  }

  std::optional<Value> ReadAttribute(int index, Type type) const {
    const Attribute& a = record_.attributes[index];
    Value v;
    const bool present = type == Type::kInt      ? (a.i && (v.i = *a.i, true))
                         : type == Type::kFloat  ? (a.f && (v.f = *a.f, true))
                         : type == Type::kString ? (a.s && (v.s = *a.s, true))
                         : type == Type::kBool   ? (a.b && (v.b = *a.b == 1, true))
                                                 : (a.t && (v.t = *a.t, true));
    return present ? std::optional<Value>(v) : std::nullopt;
  }

  // How a compares with b in `type`. Floats compare as IEEE values, so a
  // NaN is neither lower, higher nor equal; strings through their
  // ordering; times by their full value.
  struct Relation {
    bool lower = false;
    bool higher = false;
    bool equal = false;
  };
  template <class T>
  static Relation Relate(const T& a, const T& b) {
    return Relation{a<b, a> b, a == b};
  }
  Relation Relate(Type type, const Value& a, const Value& b) const {
    switch (type) {
      case Type::kInt:
        return Relate(a.i, b.i);
      case Type::kFloat:
        return Relate(a.f, b.f);
      case Type::kBool:
        return Relation{false, false, a.b == b.b};
      case Type::kString:
        return Relate(CompareText(caseSensitive_, a.s, b.s), 0);
      case Type::kTime:
        return Relate(a.t.Order(), b.t.Order());
    }
    return {};
  }

  // Equality; times are equal on the same calendar day.
  bool Same(Type type, const Value& a, const Value& b) const {
    if (type == Type::kTime) return a.t.day == b.t.day;
    return Relate(type, a, b).equal;
  }

  static KORStatus Decide(bool holds) { return holds ? H : D; }

  KORStatus EvalBasic(const ExprModel& e) {
    const OperatorMeaning meaning = MeaningOf(e.op);
    switch (meaning.comparison) {
      case Comparison::kNone:
        output_ += kNoEvaluation;
        return U;
      case Comparison::kUnsupported:
        return U;
      case Comparison::kIn:
        return EvalIn(e, meaning.type);
      case Comparison::kDifferent:
        if (meaning.type == Type::kTime) {
          // Holds unless the equality holds: also when it is undecidable.
          ExprModel equal = e;
          equal.op = IDX_Filter_Op_EqualTime;
          return EvalBasic(equal) == H ? D : H;
        }
        break;
      default:
        break;
    }
    const Type type = meaning.type;
    const std::optional<Value> a = Read(e.operands[0], type);
    if (!a) return U;
    const std::optional<Value> b = Read(e.operands[1], type);
    if (!b) return U;
    const Relation ab = Relate(type, *a, *b);
    switch (meaning.comparison) {
      case Comparison::kEqual:
        return Decide(Same(type, *a, *b));
      case Comparison::kDifferent:
        return Decide(!Same(type, *a, *b));
      case Comparison::kLower:
        return Decide(ab.lower);
      case Comparison::kLowerEq:
        return Decide(ab.lower || ab.equal);
      case Comparison::kHigher:
        return Decide(ab.higher);
      case Comparison::kHigherEq:
        return Decide(ab.higher || ab.equal);
      case Comparison::kLike:
      case Comparison::kNotLike: {
        const bool matches =
            idxbase_test::ReferenceLike(caseSensitive_, a->s.length, a->s.bytes.data(), b->s.length,
                                        b->s.bytes.data()) == 0;
        return Decide(matches == (meaning.comparison == Comparison::kLike));
      }
      default:
        break;
    }
    // Between: both bounds inclusive, and a NaN is out of neither.
    const std::optional<Value> hi = Read(e.operands[2], type);
    if (!hi) return U;
    return Decide(!ab.lower && !Relate(type, *a, *hi).higher);
  }

  // The subject, then the set's elements in order: a null element or one
  // without a value makes the test undecidable unless an earlier one
  // matched.
  KORStatus EvalIn(const ExprModel& e, Type type) {
    const std::optional<Value> a = Read(e.operands[0], type);
    if (!a) return U;
    const OperandModel& set = e.operands[1];
    if (set.kind != OperandModel::kSet) return U;
    for (const OperandModel& element : set.elements) {
      const std::optional<Value> v = Read(element, type);
      if (!v) return U;
      if (Same(type, *a, *v)) return H;
    }
    return D;
  }

  const Record& record_;
  bool caseSensitive_;
  std::string& output_;
};

// The compiled form of a tree, with the warnings that compiling writes.
class ReferenceCompiler {
 public:
  explicit ReferenceCompiler(std::string& output) : output_(output) {}

  Expr Compile(const Expr& e) {
    if (!e) return e;
    if (e->kind == ExprModel::kBasic) return CompileBasic(e);
    if (e->kind != ExprModel::kComposed) return e;
    auto compiled = std::make_shared<ExprModel>(*e);
    compiled->first = Compile(e->first);
    compiled->second = Compile(e->second);
    const bool firstNA = IsNA(compiled->first);
    const bool secondNA = IsNA(compiled->second);
    if (e->op == IDX_Filter_Op_And && (firstNA || secondNA)) return NA();
    if (e->op == IDX_Filter_Op_Or) {
      // An or becomes its other side, even a missing one.
      if (firstNA) return compiled->second;
      if (secondNA) return compiled->first;
    }
    return compiled;
  }

 private:
  static bool IsNA(const Expr& e) { return e && e->kind == ExprModel::kNA; }
  static Expr NA() {
    auto na = std::make_shared<ExprModel>();
    na->kind = ExprModel::kNA;
    return na;
  }

  // A comparison over an NA operand (the NA operand, or an attribute of
  // type NA) becomes NA; one without a first or second operand stays.
  Expr CompileBasic(const Expr& e) {
    const auto& operands = e->operands;
    if (operands[0].kind == OperandModel::kNull || operands[1].kind == OperandModel::kNull) {
      output_ += kNullOperand;
      return e;
    }
    for (const OperandModel& o : operands) {
      if (o.kind == OperandModel::kNA || (o.kind == OperandModel::kAttribute && o.naAttribute)) {
        return NA();
      }
    }
    return e;
  }

  std::string& output_;
};

// ---------------------------------------------------------------------
// The library's side: trees built from the models, and the reader.

class RecordReader : public BBDIAttributeRead {
 public:
  void Use(const Record& record) { record_ = &record; }

  int ReadInt(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override {
    return Deliver(At(pair).i, value);
  }
  int ReadFloat(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
                float& value) override {
    return Deliver(At(pair).f, value);
  }
  int ReadString(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, const char*& value,
                 int& length) override {
    const std::optional<Text>& text = At(pair).s;
    if (!text) return 0;
    value = text->bytes.data();
    length = text->length;
    return 1;
  }
  int ReadTime(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
               KORTime& value) override {
    const std::optional<Moment>& moment = At(pair).t;
    if (!moment) return 0;
    value = moment->ToKORTime();
    return 1;
  }
  int ReadBool(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override {
    return Deliver(At(pair).b, value);
  }
  int IsOfType(const BBDOccurrence&, unsigned int, BBDTypeInfo*, int&) override { return 0; }
  AttributeTypePair ResolvePair(const char*, int, unsigned int) override { return {}; }
  AttributeTypePair ResolveStringPair(const char*, int, unsigned int) override { return {}; }

 private:
  const Attribute& At(const AttributeTypePair* pair) const {
    return record_->attributes[pair->GetAttribute()];
  }
  template <class T>
  static int Deliver(const std::optional<T>& source, T& value) {
    if (!source) return 0;
    value = *source;
    return 1;
  }

  const Record* record_ = nullptr;
};

class OneLevel : public BBDOccurrence {
 public:
  unsigned int GetLevelKey(unsigned int level) const override { return level; }
  unsigned int GetLevelCount() const override { return 1; }
};

IDX_Filter_ValueType LibraryType(Type type) {
  static const IDX_Filter_ValueType kTypes[] = {IDX_Filter_Type_Int, IDX_Filter_Type_String,
                                                IDX_Filter_Type_Float, IDX_Filter_Type_Boolean,
                                                IDX_Filter_Type_Time};
  return kTypes[static_cast<int>(type)];
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
        return new BBDOperandAttribute(new AttributeTypePair(0, o.attribute),
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
      if (set.elements.back().kind == OperandModel::kSet)
        set.elements.back().kind = OperandModel::kNA;
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

std::string Rendering(BBDExpression* e) {
  KORUnicodeString text;
  if (e != nullptr) e->toString(text);
  return text.ConvertToChar();
}

std::string RecordText(const Record& record) {
  std::string text;
  for (const Attribute& a : record.attributes) {
    text += "{i=" + (a.i ? std::to_string(*a.i) : "-") +
            " f=" + (a.f ? std::to_string(*a.f) : "-") +
            " s=" + (a.s ? "\"" + a.s->bytes + "\"/" + std::to_string(a.s->length) : "-") +
            " b=" + (a.b ? std::to_string(*a.b) : "-") +
            " t=" + (a.t ? std::to_string(a.t->Order()) : "-") + "} ";
  }
  return text + "user=" + (record.user ? "\"" + *record.user + "\"" : "null");
}

TEST(FilterSoak, RandomTreesAgreeWithTheReferenceEvaluator) {
  constexpr int kRecordsPerTree = 50;
  constexpr int kTreesPerCapture = 200;
  const int evaluations = EvaluationCount();
  Generator generator(20240611);
  const char* userVariable = nullptr;
  const TreeBuilder builder(&userVariable);
  RecordReader reader;
  OneLevel occurrence;

  int done = 0;
  int mismatches = 0;
  int results[3] = {};  // holds, does not hold, undecidable (library side)
  while (done < evaluations && mismatches < 5) {
    std::string expectedOutput;
    std::vector<::testing::Message> reports;
    idxbase_test::StdoutCapture capture;
    for (int t = 0; t < kTreesPerCapture && done < evaluations && mismatches < 5; ++t) {
      const Expr model = generator.Tree(0);
      if (!model) continue;
      const Expr compiledModel = ReferenceCompiler(expectedOutput).Compile(model);
      BBDExpression* compiled = builder.Build(model);
      std::unique_ptr<BBDExpression> copy(compiled->Duplicate());
      BBDExpression::Compile(compiled);
      std::unique_ptr<BBDExpression> owner(compiled);

      for (int r = 0; r < kRecordsPerTree && mismatches < 5; ++r) {
        const Record record = generator.MakeRecord();
        const bool caseSensitive = generator.Chance(50);
        reader.Use(record);
        userVariable = record.user ? record.user->c_str() : nullptr;
        // A tree that compiled to nothing has no answer; its model must be
        // nothing too.
        const KORStatus wantCompiled =
            compiledModel ? Reference(record, caseSensitive, expectedOutput).Eval(compiledModel)
                          : U;
        const KORStatus gotCompiled =
            compiled ? compiled->eval(occurrence, 0, reader, caseSensitive) : U;
        const KORStatus wantCopy = Reference(record, caseSensitive, expectedOutput).Eval(model);
        const KORStatus gotCopy = copy->eval(occurrence, 0, reader, caseSensitive);
        done += 2;
        results[gotCopy == H ? 0 : (gotCopy == D ? 1 : 2)]++;
        if (gotCompiled != wantCompiled || gotCopy != wantCopy ||
            (compiled == nullptr) != (compiledModel == nullptr)) {
          ++mismatches;
          // Reported once standard output is back: gtest writes there.
          reports.push_back(::testing::Message()
                            << "tree " << Rendering(copy.get()) << "\ncompiled "
                            << Rendering(compiled) << "\nrecord " << RecordText(record)
                            << (caseSensitive ? " case sensitive" : " case insensitive")
                            << "\ncompiled: " << gotCompiled << " expected " << wantCompiled
                            << "\nuncompiled copy: " << gotCopy << " expected " << wantCopy);
        }
      }
    }
    const std::string output = capture.Finish();
    for (const ::testing::Message& report : reports) ADD_FAILURE() << report;
    if (output != expectedOutput) {
      const std::size_t at =
          std::mismatch(output.begin(), output.end(), expectedOutput.begin(), expectedOutput.end())
              .first -
          output.begin();
      ADD_FAILURE() << "standard output differs at byte " << at << " of " << output.size()
                    << " (expected " << expectedOutput.size() << "): got \""
                    << output.substr(at, 80) << "\" expected \"" << expectedOutput.substr(at, 80)
                    << "\"";
      break;
    }
  }
  std::printf("filter soak: %d evaluations (holds %d, does not hold %d, undecidable %d per copy)\n",
              done, results[0], results[1], results[2]);
  EXPECT_GE(done, evaluations);
  // The trees must decide often enough for the comparison to mean something.
  EXPECT_GT(results[0], done / 20);
  EXPECT_GT(results[1], done / 20);
  EXPECT_GT(results[2], done / 20);
}

}  // namespace
