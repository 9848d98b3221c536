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

#include "filter_test_support.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"
#include "random_filters.h"
#include "support/stdout_capture.h"
#include "support/string_reference.h"

namespace {

using namespace idxbase_test;  // NOLINT: the soak reads as the generator's models

constexpr KORStatus H = IDX_FILTER_HOLDS;
constexpr KORStatus D = IDX_FILTER_DOES_NOT;
constexpr KORStatus U = IDX_FILTER_UNDECIDABLE;

const char kNoEvaluation[] = "No evaluation function defined.\n";
const char kNullExpression[] = "Error in BBDComposedExpression::eval : null expression\n";
const char kNullOperand[] = "Warning : null operand in BBDBasicExpression::Compile()\n";

// ---------------------------------------------------------------------
// The reference evaluator.

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
    if (e->kind == ExprModel::kNA) return U;
    return e->kind == ExprModel::kComposed ? EvalComposed(*e) : EvalBasic(*e);
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
    switch (o.kind) {
      case OperandModel::kConst:
        if (o.type != type) return std::nullopt;
        return Value{o.i, o.f, o.b, Text{o.s, static_cast<int>(o.s.size())}, o.t};
      case OperandModel::kUser:
        if (type != Type::kString || !record_.user) return std::nullopt;
        return Value{0, 0, false, Text{*record_.user, static_cast<int>(record_.user->size())}, {}};
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

  // How a compares with b in `type`: -1 (lower), 0 (equal), 1 (higher) or
  // 2 (unordered). Floats compare as IEEE values, so a NaN is unordered
  // with everything; booleans are equal or unordered; strings compare
  // through their ordering; times by their full value.
  template <class T>
  static int Order(const T& a, const T& b) {
    return a < b ? -1 : a > b ? 1 : a == b ? 0 : 2;
  }
  int Order(Type type, const Value& a, const Value& b) const {
    switch (type) {
      case Type::kInt:
        return Order(a.i, b.i);
      case Type::kFloat:
        return Order(a.f, b.f);
      case Type::kBool:
        return a.b == b.b ? 0 : 2;
      case Type::kString:
        return Order(ReferenceCompare(caseSensitive_, a.s.length, a.s.bytes.data(), b.s.length,
                                      b.s.bytes.data()),
                     0);
      case Type::kTime:
        return Order(a.t.Order(), b.t.Order());
    }
    return 2;
  }

  // Equality; times are equal on the same calendar day.
  bool Same(Type type, const Value& a, const Value& b) const {
    if (type == Type::kTime) return a.t.day == b.t.day;
    return Order(type, a, b) == 0;
  }

  static KORStatus Decide(bool holds) { return holds ? H : D; }

  KORStatus EvalBasic(const ExprModel& e) {
    using C = Comparison;
    const C comparison = MeaningOf(e.op).comparison;
    const Type type = MeaningOf(e.op).type;
    if (comparison == C::kNone) {
      output_ += kNoEvaluation;
      return U;
    }
    if (comparison == C::kUnsupported) return U;
    if (comparison == C::kIn) return EvalIn(e, type);
    if (comparison == C::kDifferent && type == Type::kTime) {
      // Holds unless the equality holds: also when it is undecidable.
      ExprModel equal = e;
      equal.op = IDX_Filter_Op_EqualTime;
      return EvalBasic(equal) == H ? D : H;
    }
    const std::optional<Value> a = Read(e.operands[0], type);
    if (!a) return U;
    const std::optional<Value> b = Read(e.operands[1], type);
    if (!b) return U;
    const int order = Order(type, *a, *b);
    if (comparison == C::kEqual) return Decide(Same(type, *a, *b));
    if (comparison == C::kDifferent) return Decide(!Same(type, *a, *b));
    if (comparison == C::kLower) return Decide(order == -1);
    if (comparison == C::kLowerEq) return Decide(order == -1 || order == 0);
    if (comparison == C::kHigher) return Decide(order == 1);
    if (comparison == C::kHigherEq) return Decide(order == 0 || order == 1);
    if (comparison == C::kLike || comparison == C::kNotLike) {
      const bool matches = ReferenceLike(caseSensitive_, a->s.length, a->s.bytes.data(),
                                         b->s.length, b->s.bytes.data()) == 0;
      return Decide(matches == (comparison == C::kLike));
    }
    // Between: both bounds inclusive, and a NaN is out of neither.
    const std::optional<Value> hi = Read(e.operands[2], type);
    if (!hi) return U;
    return Decide(order != -1 && Order(type, *a, *hi) != 1);
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
    return std::make_shared<ExprModel>(ExprModel{ExprModel::kNA, 0, {}, nullptr, nullptr});
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
  const Record* record = nullptr;

  int ReadInt(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override {
    return Deliver(At(pair).i, [&](int i) { value = i; });
  }
  int ReadFloat(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
                float& value) override {
    return Deliver(At(pair).f, [&](float f) { value = f; });
  }
  int ReadString(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, const char*& value,
                 int& length) override {
    return Deliver(At(pair).s, [&](const Text& text) {
      value = text.bytes.data();
      length = text.length;
    });
  }
  int ReadTime(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
               KORTime& value) override {
    return Deliver(At(pair).t, [&](const Moment& moment) { value = moment.ToKORTime(); });
  }
  int ReadBool(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override {
    return Deliver(At(pair).b, [&](int b) { value = b; });
  }
  int IsOfType(const BBDOccurrence&, unsigned int, BBDTypeInfo*, int&) override { return 0; }
  AttributeTypePair ResolvePair(const char*, int, unsigned int) override { return {}; }
  AttributeTypePair ResolveStringPair(const char*, int, unsigned int) override { return {}; }

 private:
  const Attribute& At(const AttributeTypePair* pair) const {
    return record->attributes[pair->GetAttribute()];
  }
  // Hands a present value to `give` and returns 1, or returns 0.
  template <class T, class Give>
  static int Deliver(const std::optional<T>& source, Give give) {
    if (!source) return 0;
    give(*source);
    return 1;
  }
};

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
  const int evaluations = SoakEvaluations();
  Generator generator(20240611);
  const char* userVariable = nullptr;
  const TreeBuilder builder(&userVariable);
  RecordReader reader;
  FakeOccurrence occurrence;

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
        reader.record = &record;
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
                            << "tree " << Rendered(*copy) << "\ncompiled "
                            << (compiled ? Rendered(*compiled) : "nothing") << "\nrecord "
                            << RecordText(record)
                            << (caseSensitive ? " case sensitive" : " case insensitive")
                            << "\ncompiled: " << gotCompiled << " expected " << wantCompiled
                            << "\nuncompiled copy: " << gotCopy << " expected " << wantCopy);
        }
      }
    }
    const std::string output = capture.Finish();
    for (const ::testing::Message& report : reports) ADD_FAILURE() << report;
    // Where standard output first differs, and what follows.
    const std::size_t at =
        std::mismatch(output.begin(), output.end(), expectedOutput.begin(), expectedOutput.end())
            .first -
        output.begin();
    ASSERT_EQ(output.substr(at, 80), expectedOutput.substr(at, 80))
        << "standard output from byte " << at << " of " << output.size();
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
