// The column evaluator. At each call the tree is read into nodes: fixed
// answers, not/or/and over child nodes, and comparisons whose operands are
// either a column chunk or a value read once for the call (a constant, a
// user string, a set's elements). Each chunk of rows is then answered node
// by node, with codes 0 (holds), 1 (does not hold) and 2 (undecidable), so
// that or is the minimum of its sides and and the maximum.
//
// A node is told which of its rows can still change the answer ("care": 0
// no, 1 only whether it is undecidable, 2 fully), so that the costly
// string comparisons run only where they matter; cheap comparisons answer
// every row. A row that does not matter may hold any code.
#include "filter/batch_program.h"

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <typeinfo>

#include "filter/comparison_rules.h"
#include "filter/constant_values.h"
#include "filter/operator_table.h"
#include "filter/resolved_attribute.h"
#include "filter/string_compare.h"
#include "filter/tree_access.h"
#include "idxbase/filter_attributes.h"

namespace idxbase::detail {

namespace {

constexpr std::uint8_t kHolds = 0;
constexpr std::uint8_t kDoesNot = 1;
constexpr std::uint8_t kUndecidable = 2;
constexpr std::uint8_t kNotOf[3] = {kDoesNot, kHolds, kUndecidable};

// A chunk's worth of values of one type, owned by a column or a constant.
struct AnyChunk {
  virtual ~AnyChunk() = default;
};
template <class Value>
struct TypedChunk : AnyChunk {
  ChunkOf<Value> chunk;
};
// Strings travel as StringRows over the chunk's values or a column.
template <>
struct TypedChunk<StringValue> : AnyChunk {
  ChunkOf<StringValue> chunk;
  StringRows rows;
};
template <class Value>
struct TypedMembers : AnyChunk {
  std::vector<Value> values;
};

// Values travel as the comparison reads them; times as their seconds.
template <IDX_Filter_ValueType Type>
struct ValueOf;
template <>
struct ValueOf<IDX_Filter_Type_Int> {
  using Type = int;
};
template <>
struct ValueOf<IDX_Filter_Type_Float> {
  using Type = float;
};
template <>
struct ValueOf<IDX_Filter_Type_Boolean> {
  using Type = bool;
};
template <>
struct ValueOf<IDX_Filter_Type_Time> {
  using Type = std::int64_t;
};
template <>
struct ValueOf<IDX_Filter_Type_String> {
  using Type = StringValue;
};

// The occurrence and reader of a value read that needs neither: the
// library's constants, sets and user strings ignore them.
class NoOccurrence : public BBDOccurrence {
 public:
  unsigned int GetLevelKey(unsigned int) const override { return 0; }
  unsigned int GetLevelCount() const override { return 0; }
};

// A reader that answers nothing and notes the pair it was asked for: what
// an attribute operand would read, and whether it would read at all.
class PairProbe : public BBDIAttributeRead {
 public:
  int ReadInt(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int&) override {
    return Note(pair);
  }
  int ReadFloat(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, float&) override {
    return Note(pair);
  }
  int ReadString(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, const char*&,
                 int&) override {
    return Note(pair);
  }
  int ReadTime(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, KORTime&) override {
    return Note(pair);
  }
  int ReadBool(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int&) override {
    return Note(pair);
  }
  int IsOfType(const BBDOccurrence&, unsigned int, BBDTypeInfo*, int&) override { return 0; }
  AttributeTypePair ResolvePair(const char*, int, unsigned int) override { return {}; }
  AttributeTypePair ResolveStringPair(const char*, int, unsigned int) override { return {}; }

  bool asked = false;
  bool hasPair = false;
  AttributeTypePair noted;

 private:
  int Note(AttributeTypePair* read) {
    asked = true;
    hasPair = read != nullptr;
    if (hasPair) noted = AttributeTypePair(read->GetType(), read->GetAttribute());
    return 0;
  }
};

// Reads `operand`'s value as Value; false when it delivers none.
bool ReadOnce(BBDOperand& operand, BBDIAttributeRead& reader, int& value) {
  return Get(operand, NoOccurrence(), 0, reader, value) == KOR_S_OK;
}
bool ReadOnce(BBDOperand& operand, BBDIAttributeRead& reader, float& value) {
  return Get(operand, NoOccurrence(), 0, reader, value) == KOR_S_OK;
}
bool ReadOnce(BBDOperand& operand, BBDIAttributeRead& reader, bool& value) {
  return Get(operand, NoOccurrence(), 0, reader, value) == KOR_S_OK;
}
bool ReadOnce(BBDOperand& operand, BBDIAttributeRead& reader, StringValue& value) {
  return Get(operand, NoOccurrence(), 0, reader, value) == KOR_S_OK;
}
bool ReadOnce(BBDOperand& operand, BBDIAttributeRead& reader, std::int64_t& seconds) {
  KORTime time;
  if (Get(operand, NoOccurrence(), 0, reader, time) != KOR_S_OK) return false;
  seconds = time.GetEpochSeconds();
  return true;
}

// Asks an attribute operand for a value of `type` through the probe.
void Probe(BBDOperand& operand, IDX_Filter_ValueType type, PairProbe& probe) {
  switch (type) {
    case IDX_Filter_Type_Int: {
      int value;
      ReadOnce(operand, probe, value);
      break;
    }
    case IDX_Filter_Type_Float: {
      float value;
      ReadOnce(operand, probe, value);
      break;
    }
    case IDX_Filter_Type_Boolean: {
      bool value;
      ReadOnce(operand, probe, value);
      break;
    }
    case IDX_Filter_Type_Time: {
      std::int64_t value;
      ReadOnce(operand, probe, value);
      break;
    }
    default: {
      StringValue value;
      ReadOnce(operand, probe, value);
      break;
    }
  }
}

// The library's operands whose value does not depend on the occurrence.
bool IsValueOperand(const std::type_info& type) {
  return type == typeid(BBDOperandIntConst) || type == typeid(BBDOperandFloatConst) ||
         type == typeid(BBDOperandBooleanConst) || type == typeid(BBDOperandStringConst) ||
         type == typeid(BBDOperandTimeConst) || type == typeid(BBDNAOperand) ||
         type == typeid(BBDOperandStringUser) || type == typeid(BBDOperandSet);
}

bool IsAttributeOperand(const std::type_info& type) {
  return type == typeid(BBDOperandAttribute) || type == typeid(ResolvedAttribute);
}

// The type a comparison reads: its row's, except that the membership test
// over booleans reads integers (its row's evaluation is the integer test).
IDX_Filter_ValueType ReadTypeOf(const OperatorRow& row) {
  return row.kind == OperatorKind::kIn && row.type == IDX_Filter_Type_Boolean ? IDX_Filter_Type_Int
                                                                              : row.type;
}

}  // namespace

// One operand of a comparison: kBatchChunk values and availabilities of the
// read type, from a column's chunk or a constant repeated; or none at all.
struct BatchOperand {
  bool fails = false;
  int column = -1;  // the used column whose chunk it reads, if any
  const void* values = nullptr;
  const std::uint8_t* valid = nullptr;
  std::unique_ptr<AnyChunk> repeated;  // the constant's values
};

struct BatchNode {
  enum class Kind : std::uint8_t { kFixed, kNot, kOr, kAnd, kCompare };
  using Kernel = void (*)(const BatchNode&, const std::uint8_t* care, std::uint8_t* out, int n,
                          bool caseSensitive);

  Kind kind = Kind::kFixed;
  std::uint8_t fixed = kUndecidable;
  // A rough cost per row: string comparisons are the dear ones.
  int cost = 0;
  int first = -1;
  int second = -1;
  Kernel kernel = nullptr;
  BatchOperand operands[3];
  // Membership: the elements' values up to the first that delivers none,
  // and whether there is such an element.
  std::unique_ptr<AnyChunk> members;
  bool memberFails = false;
  // The chunk's answers, and what the parent needs of them.
  std::uint8_t codes[kBatchChunk];
  std::uint8_t care[kBatchChunk];
};

namespace {

template <class Value>
const Value* ValuesOf(const BatchOperand& operand) {
  return static_cast<const Value*>(operand.values);
}

template <class Rule>
bool Decide(Rule rule, int a, int b) {
  return rule(a, b);
}
template <class Rule>
bool Decide(Rule rule, float a, float b) {
  return rule(a, b);
}
template <class Rule>
bool Decide(Rule rule, bool a, bool b) {
  return rule(a, b);
}
template <class Rule>
bool Decide(Rule rule, std::int64_t a, std::int64_t b) {
  return rule(KORTime::FromEpochSeconds(a), KORTime::FromEpochSeconds(b));
}
template <class Rule>
bool DecideRange(Rule rule, int a, int lo, int hi) {
  return rule(a, lo, hi);
}
template <class Rule>
bool DecideRange(Rule rule, float a, float lo, float hi) {
  return rule(a, lo, hi);
}
template <class Rule>
bool DecideRange(Rule rule, std::int64_t a, std::int64_t lo, std::int64_t hi) {
  return rule(KORTime::FromEpochSeconds(a), KORTime::FromEpochSeconds(lo),
              KORTime::FromEpochSeconds(hi));
}

// kFixed: the operands after the subject are values read for the call,
// the same for every row (the usual "attribute op constant").
template <class Value, class Rule, bool kFixed>
void CompareKernel(const BatchNode& node, const std::uint8_t*, std::uint8_t* out, int n, bool) {
  const Value* a = ValuesOf<Value>(node.operands[0]);
  const Value* b = ValuesOf<Value>(node.operands[1]);
  const std::uint8_t* va = node.operands[0].valid;
  const std::uint8_t* vb = node.operands[1].valid;
  const Value fixed = b[0];
  for (int i = 0; i < n; ++i) {
    const bool holds = Decide(Rule{}, a[i], kFixed ? fixed : b[i]);
    const bool available = kFixed ? va[i] != 0 : (va[i] & vb[i]) != 0;
    out[i] = available ? (holds ? kHolds : kDoesNot) : kUndecidable;
  }
}

template <class Value, bool kFixed>
void BetweenKernel(const BatchNode& node, const std::uint8_t*, std::uint8_t* out, int n, bool) {
  const Value* a = ValuesOf<Value>(node.operands[0]);
  const Value* lo = ValuesOf<Value>(node.operands[1]);
  const Value* hi = ValuesOf<Value>(node.operands[2]);
  const std::uint8_t* va = node.operands[0].valid;
  const std::uint8_t* vlo = node.operands[1].valid;
  const std::uint8_t* vhi = node.operands[2].valid;
  const Value low = lo[0];
  const Value high = hi[0];
  for (int i = 0; i < n; ++i) {
    const bool holds =
        DecideRange(rules::Between{}, a[i], kFixed ? low : lo[i], kFixed ? high : hi[i]);
    const bool available = kFixed ? va[i] != 0 : (va[i] & vlo[i] & vhi[i]) != 0;
    out[i] = available ? (holds ? kHolds : kDoesNot) : kUndecidable;
  }
}

// A time difference holds unless the time equality holds.
void DifferentTimeKernel(const BatchNode& node, const std::uint8_t*, std::uint8_t* out, int n,
                         bool) {
  const auto* a = ValuesOf<std::int64_t>(node.operands[0]);
  const auto* b = ValuesOf<std::int64_t>(node.operands[1]);
  const std::uint8_t* va = node.operands[0].valid;
  const std::uint8_t* vb = node.operands[1].valid;
  for (int i = 0; i < n; ++i) {
    const bool sameDay = (va[i] & vb[i]) != 0 && Decide(rules::Equal{}, a[i], b[i]);
    out[i] = sameDay ? kDoesNot : kHolds;
  }
}

// Strings compare only where the answer matters: the other rows answer
// whether they are available (undecidable or, for any code, "does not
// hold"). The rows to compare are gathered first, so that the loop that
// compares them does not branch on each row.
template <class Test>
void StringKernel(const BatchNode& node, const std::uint8_t* care, std::uint8_t* out, int n,
                  bool caseSensitive, Test test) {
  const StringRows& a = *ValuesOf<StringRows>(node.operands[0]);
  const StringRows& b = *ValuesOf<StringRows>(node.operands[1]);
  const std::uint8_t* va = node.operands[0].valid;
  const std::uint8_t* vb = node.operands[1].valid;
  std::uint16_t rows[kBatchChunk];
  int count = 0;
  for (int i = 0; i < n; ++i) {
    const bool available = (va[i] & vb[i]) != 0;
    out[i] = available ? kDoesNot : kUndecidable;
    rows[count] = static_cast<std::uint16_t>(i);
    count += available && care[i] == 2 ? 1 : 0;
  }
  for (int k = 0; k < count; ++k) {
    const int i = rows[k];
    if (test(caseSensitive, a[i], b[i])) out[i] = kHolds;
  }
}

template <class Rule>
void CompareStringKernel(const BatchNode& node, const std::uint8_t* care, std::uint8_t* out, int n,
                         bool caseSensitive) {
  StringKernel(node, care, out, n, caseSensitive,
               [](bool cs, const StringValue& a, const StringValue& b) {
                 return Rule::Order(CompareStrings(cs, a.length, a.text, b.length, b.text));
               });
}

template <bool kMatches>
void LikeKernel(const BatchNode& node, const std::uint8_t* care, std::uint8_t* out, int n,
                bool caseSensitive) {
  // A pattern that is the same for every row and is one segment between
  // wildcards ("*12*") is searched for directly, without reading the
  // pattern again at every row.
  const BatchOperand& pattern = node.operands[1];
  int start = 0;
  int length = 0;
  if (pattern.column < 0) {
    const StringValue fixed = (*ValuesOf<StringRows>(pattern))[0];
    if (IsOneSegment(fixed.length, fixed.text, start, length)) {
      const char* segment = fixed.text + start;
      StringKernel(node, care, out, n, caseSensitive,
                   [segment, length](bool cs, const StringValue& s, const StringValue&) {
                     const bool matches =
                         s.length < 0 || FindSegment(cs, s.text, 0, s.length, segment, length) >= 0;
                     return matches == kMatches;
                   });
      return;
    }
  }
  StringKernel(
      node, care, out, n, caseSensitive, [](bool cs, const StringValue& s, const StringValue& p) {
        return (CompareLikeStrings(cs, s.length, s.text, p.length, p.text) == 0) == kMatches;
      });
}

void BetweenStringKernel(const BatchNode& node, const std::uint8_t* care, std::uint8_t* out, int n,
                         bool caseSensitive) {
  const StringRows& a = *ValuesOf<StringRows>(node.operands[0]);
  const StringRows& lo = *ValuesOf<StringRows>(node.operands[1]);
  const StringRows& hi = *ValuesOf<StringRows>(node.operands[2]);
  const std::uint8_t* va = node.operands[0].valid;
  const std::uint8_t* vlo = node.operands[1].valid;
  const std::uint8_t* vhi = node.operands[2].valid;
  for (int i = 0; i < n; ++i) {
    if ((va[i] & vlo[i] & vhi[i]) == 0) {
      out[i] = kUndecidable;
    } else if (care[i] != 2) {
      out[i] = kDoesNot;
    } else {
      const StringValue value = a[i], low = lo[i], high = hi[i];
      out[i] = rules::Between::Order(
                   CompareStrings(caseSensitive, value.length, value.text, low.length, low.text),
                   CompareStrings(caseSensitive, value.length, value.text, high.length, high.text))
                   ? kHolds
                   : kDoesNot;
    }
  }
}

// The first element equal to the subject decides; failing that, an element
// that delivers no value makes the test undecidable. Numbers are tested
// against every element, element by element over the rows.
template <class Value>
void MemberKernel(const BatchNode& node, const std::uint8_t*, std::uint8_t* out, int n, bool) {
  const Value* a = ValuesOf<Value>(node.operands[0]);
  const std::uint8_t* va = node.operands[0].valid;
  const std::vector<Value>& members = static_cast<const TypedMembers<Value>&>(*node.members).values;
  const std::uint8_t notFound = node.memberFails ? kUndecidable : kDoesNot;
  // Four elements a pass, the last pass answering; a short group repeats
  // its first element, which changes nothing. No element: nothing found.
  std::uint8_t found[kBatchChunk];
  std::fill_n(found, n, std::uint8_t{0});
  std::size_t k = 0;
  do {
    Value m[4] = {};
    const bool any = k < members.size();
    for (std::size_t j = 0; j < 4 && any; ++j) m[j] = members[k + j < members.size() ? k + j : k];
    const bool last = k + 4 >= members.size();
    const rules::Equal same;
    for (int i = 0; i < n; ++i) {
      // Bitwise, not logical: four comparisons without a branch.
      const int hit = static_cast<int>(any) &
                      (static_cast<int>(same(a[i], m[0])) | static_cast<int>(same(a[i], m[1])) |
                       static_cast<int>(same(a[i], m[2])) | static_cast<int>(same(a[i], m[3])));
      found[i] |= static_cast<std::uint8_t>(hit);
      if (last) out[i] = va[i] == 0 ? kUndecidable : (found[i] != 0 ? kHolds : notFound);
    }
    k += 4;
  } while (k < members.size());
}

template <>
void MemberKernel<StringValue>(const BatchNode& node, const std::uint8_t* care, std::uint8_t* out,
                               int n, bool caseSensitive) {
  const StringRows& a = *ValuesOf<StringRows>(node.operands[0]);
  const std::uint8_t* va = node.operands[0].valid;
  const auto& members = static_cast<const TypedMembers<StringValue>&>(*node.members).values;
  const std::uint8_t notFound = node.memberFails ? kUndecidable : kDoesNot;
  for (int i = 0; i < n; ++i) {
    if (va[i] == 0 || care[i] == 0) {
      out[i] = va[i] == 0 ? kUndecidable : kDoesNot;
      continue;
    }
    out[i] = notFound;
    const StringValue subject = a[i];
    for (const StringValue& member : members) {
      if (rules::Equal::Order(CompareStrings(caseSensitive, subject.length, subject.text,
                                             member.length, member.text))) {
        out[i] = kHolds;
        break;
      }
    }
  }
}

template <class Value, class Rule>
BatchNode::Kernel Compare(bool fixed) {
  return fixed ? &CompareKernel<Value, Rule, true> : &CompareKernel<Value, Rule, false>;
}

template <class Value>
BatchNode::Kernel OrderKernel(OperatorKind kind, bool fixed) {
  switch (kind) {
    case OperatorKind::kEqual:
      return Compare<Value, rules::Equal>(fixed);
    case OperatorKind::kDifferent:
      if constexpr (std::is_same_v<Value, std::int64_t>) {
        return &DifferentTimeKernel;
      } else {
        return Compare<Value, rules::Different>(fixed);
      }
    case OperatorKind::kLower:
      return Compare<Value, rules::Lower>(fixed);
    case OperatorKind::kLowerEq:
      return Compare<Value, rules::LowerEq>(fixed);
    case OperatorKind::kHigher:
      return Compare<Value, rules::Higher>(fixed);
    case OperatorKind::kHigherEq:
      return Compare<Value, rules::HigherEq>(fixed);
    case OperatorKind::kBetween:
      return fixed ? &BetweenKernel<Value, true> : &BetweenKernel<Value, false>;
    default:
      return nullptr;
  }
}

BatchNode::Kernel StringKernelOf(OperatorKind kind) {
  switch (kind) {
    case OperatorKind::kEqual:
      return &CompareStringKernel<rules::Equal>;
    case OperatorKind::kDifferent:
      return &CompareStringKernel<rules::Different>;
    case OperatorKind::kLower:
      return &CompareStringKernel<rules::Lower>;
    case OperatorKind::kLowerEq:
      return &CompareStringKernel<rules::LowerEq>;
    case OperatorKind::kHigher:
      return &CompareStringKernel<rules::Higher>;
    case OperatorKind::kHigherEq:
      return &CompareStringKernel<rules::HigherEq>;
    case OperatorKind::kBetween:
      return &BetweenStringKernel;
    case OperatorKind::kLike:
      return &LikeKernel<true>;
    case OperatorKind::kNotLike:
      return &LikeKernel<false>;
    case OperatorKind::kIn:
      return &MemberKernel<StringValue>;
    default:
      return nullptr;
  }
}

// The kernel of a comparison of `kind` reading `type`; `fixed` when the
// operands after the subject are the same for every row.
BatchNode::Kernel KernelOf(OperatorKind kind, IDX_Filter_ValueType type, bool fixed) {
  switch (type) {
    case IDX_Filter_Type_Int:
      return kind == OperatorKind::kIn ? &MemberKernel<int> : OrderKernel<int>(kind, fixed);
    case IDX_Filter_Type_Float:
      return kind == OperatorKind::kIn ? &MemberKernel<float> : OrderKernel<float>(kind, fixed);
    case IDX_Filter_Type_Boolean:
      return kind == OperatorKind::kEqual       ? Compare<bool, rules::Equal>(fixed)
             : kind == OperatorKind::kDifferent ? Compare<bool, rules::Different>(fixed)
                                                : nullptr;
    case IDX_Filter_Type_Time:
      return OrderKernel<std::int64_t>(kind, fixed);
    case IDX_Filter_Type_String:
      return StringKernelOf(kind);
    default:
      return nullptr;
  }
}

// Calls `f` with a value of the C++ type that comparisons of `type` read.
template <class F>
bool WithValueType(IDX_Filter_ValueType type, F f) {
  switch (type) {
    case IDX_Filter_Type_Int:
      return f(int{});
    case IDX_Filter_Type_Float:
      return f(float{});
    case IDX_Filter_Type_Boolean:
      return f(bool{});
    case IDX_Filter_Type_Time:
      return f(std::int64_t{});
    case IDX_Filter_Type_String:
      return f(StringValue{});
    default:
      return false;
  }
}

}  // namespace

struct BatchProgram::Binding {
  int type;
  int attribute;
  BatchColumn column;
};

// A column that the tree reads, and its current chunk.
struct BatchProgram::UsedColumn {
  const BatchColumn* column;
  std::unique_ptr<AnyChunk> scratch;
  ChunkView (*view)(const BatchColumn&, std::int64_t, int, AnyChunk&);
};

BatchProgram::BatchProgram(BBDExpression* root) : root_(root) {}
BatchProgram::~BatchProgram() = default;

void BatchProgram::Bind(const AttributeTypePair& pair, const BatchColumn& column) {
  for (Binding& binding : bindings_) {
    if (binding.type == pair.GetType() && binding.attribute == pair.GetAttribute()) {
      binding.column = column;
      return;
    }
  }
  bindings_.push_back(Binding{pair.GetType(), pair.GetAttribute(), column});
}

bool BatchProgram::Prepare(std::int64_t count, bool caseSensitive) {
  count_ = count;
  caseSensitive_ = caseSensitive;
  nodes_.clear();
  used_.clear();
  return root_ != nullptr && AddExpression(root_) >= 0;
}

int BatchProgram::AddExpression(BBDExpression* expression) {
  if (expression == nullptr) return -1;
  const std::type_info& type = typeid(*expression);
  if (type == typeid(BBDBasicExpression)) {
    return AddComparison(static_cast<BBDBasicExpression&>(*expression));
  }
  nodes_.emplace_back();
  const int index = static_cast<int>(nodes_.size()) - 1;
  if (type == typeid(BBDNAExpression)) return index;
  if (type != typeid(BBDComposedExpression)) return -1;
  auto& composed = static_cast<BBDComposedExpression&>(*expression);
  const IDX_Filter_Operator op = composed.GetOperator();
  BBDExpression* first = TreeAccess::First(composed);
  BBDExpression* second = TreeAccess::Second(composed);
  // Another operator is undecidable without looking at its sides.
  if (op != IDX_Filter_Op_Not && op != IDX_Filter_Op_Or && op != IDX_Filter_Op_And) {
    return first != nullptr ? index : -1;
  }
  int a = AddExpression(first);
  if (a < 0) return -1;
  BatchNode::Kind kind = BatchNode::Kind::kNot;
  int b = -1;
  if (op != IDX_Filter_Op_Not) {
    b = AddExpression(second);
    if (b < 0) return -1;
    kind = op == IDX_Filter_Op_Or ? BatchNode::Kind::kOr : BatchNode::Kind::kAnd;
  }
  // Or and and answer alike whichever side comes first (their tables are
  // symmetric), so the cheaper side goes first and spares the other the
  // rows that it decides.
  const int costA = nodes_[static_cast<std::size_t>(a)].cost;
  const int costB = b >= 0 ? nodes_[static_cast<std::size_t>(b)].cost : 0;
  if (b >= 0 && costB < costA) std::swap(a, b);
  BatchNode& node = nodes_[static_cast<std::size_t>(index)];
  node.kind = kind;
  node.first = a;
  node.second = b;
  node.cost = costA + costB;
  return index;
}

int BatchProgram::AddComparison(BBDBasicExpression& expression) {
  const IDX_Filter_Operator op = expression.GetOperator();
  if (op < 0 || op >= IDX_Filter_Infos::kOperatorCount) return -1;
  const OperatorRow& row = kOperatorRows[op];
  if (row.eval == nullptr) return -1;  // eval prints a message for every row
  nodes_.emplace_back();
  const int index = static_cast<int>(nodes_.size()) - 1;
  if (op == IDX_Filter_Op_Unsupported) return index;
  BatchNode& node = nodes_[static_cast<std::size_t>(index)];
  const IDX_Filter_ValueType type = ReadTypeOf(row);
  const int count = row.kind == OperatorKind::kBetween ? 3 : 2;
  bool ok = AddOperand(TreeAccess::OperandOf(expression, 0), type, node.operands[0]);
  if (row.kind == OperatorKind::kIn) {
    ok = ok && AddMembers(TreeAccess::OperandOf(expression, 1), type, node);
  } else {
    for (int p = 1; ok && p < count; ++p) {
      ok = AddOperand(TreeAccess::OperandOf(expression, p), type, node.operands[p]);
    }
  }
  if (!ok) return -1;
  bool fails = false;
  bool fixed = true;
  for (int p = 0; p < count; ++p) {
    fails = fails || node.operands[p].fails;
    fixed = fixed && (p == 0 || node.operands[p].column < 0);
  }
  node.kernel = KernelOf(row.kind, type, fixed);
  if (node.kernel == nullptr) return -1;
  node.cost = type == IDX_Filter_Type_String ? 8 : 1;
  if (fails) {
    node.kind = BatchNode::Kind::kFixed;
    node.fixed = op == IDX_Filter_Op_DifferentTime ? kHolds : kUndecidable;
  } else {
    node.kind = BatchNode::Kind::kCompare;
  }
  return index;
}

bool BatchProgram::AddOperand(BBDOperand* operand, IDX_Filter_ValueType readType,
                              BatchOperand& out) {
  out.fails = true;
  if (operand == nullptr) return true;
  const std::type_info& type = typeid(*operand);
  if (IsAttributeOperand(type)) {
    PairProbe probe;
    Probe(*operand, readType, probe);
    if (!probe.asked) return true;  // it reads only its own value type
    if (!probe.hasPair) return false;
    out.column = UseColumn(probe.noted, readType);
    out.fails = false;
    return out.column >= 0;
  }
  if (!IsValueOperand(type)) return false;
  return WithValueType(readType, [&](auto kind) {
    using Value = decltype(kind);
    PairProbe noReader;
    Value value{};
    if (!ReadOnce(*operand, noReader, value)) return true;
    auto repeated = std::make_unique<TypedChunk<Value>>();
    const int n = count_ < kBatchChunk ? static_cast<int>(count_) : kBatchChunk;
    std::fill_n(repeated->chunk.values, n, value);
    std::memset(repeated->chunk.valid, 1, kBatchChunk);
    out.values = repeated->chunk.values;
    if constexpr (std::is_same_v<Value, StringValue>) {
      repeated->rows.values = repeated->chunk.values;
      out.values = &repeated->rows;
    }
    out.valid = repeated->chunk.valid;
    out.repeated = std::move(repeated);
    out.fails = false;
    return true;
  });
}

bool BatchProgram::AddMembers(BBDOperand* set, IDX_Filter_ValueType readType, BatchNode& node) {
  BatchOperand& operand = node.operands[1];
  operand.fails = true;
  if (set == nullptr) return true;
  const std::type_info& type = typeid(*set);
  if (type != typeid(BBDOperandSet)) {
    // Every other operand of the library fails GetValSet.
    return IsValueOperand(type) || IsAttributeOperand(type);
  }
  PairProbe noReader;
  KORListPtrBBDOperand elements;
  set->GetValSet(NoOccurrence(), 0, noReader, elements);
  operand.fails = false;
  return WithValueType(readType, [&](auto kind) {
    using Value = decltype(kind);
    auto members = std::make_unique<TypedMembers<Value>>();
    for (int position = 1; position <= elements.Size(); ++position) {
      BBDOperand* element = elements[position];
      if (element != nullptr && !IsValueOperand(typeid(*element))) return false;
      Value value{};
      if (element == nullptr || !ReadOnce(*element, noReader, value)) {
        node.memberFails = true;
        break;
      }
      members->values.push_back(value);
    }
    node.members = std::move(members);
    return true;
  });
}

int BatchProgram::UseColumn(const AttributeTypePair& pair, IDX_Filter_ValueType type) {
  const BatchColumn* column = nullptr;
  for (const Binding& binding : bindings_) {
    if (binding.type == pair.GetType() && binding.attribute == pair.GetAttribute()) {
      column = &binding.column;
    }
  }
  if (column == nullptr || column->type != type ||
      (column->length >= 0 && column->length < count_)) {
    return -1;
  }
  for (std::size_t i = 0; i < used_.size(); ++i) {
    if (used_[i].column == column) return static_cast<int>(i);
  }
  UsedColumn used{column, nullptr, nullptr};
  WithValueType(type, [&](auto kind) {
    using Value = decltype(kind);
    used.scratch = std::make_unique<TypedChunk<Value>>();
    used.view = [](const BatchColumn& c, std::int64_t first, int n, AnyChunk& scratch) {
      auto& typed = static_cast<TypedChunk<Value>&>(scratch);
      if constexpr (std::is_same_v<Value, StringValue>) {
        return ViewChunk(c, first, n, typed.chunk, typed.rows);
      } else {
        return ViewChunk(c, first, n, typed.chunk);
      }
    };
    return true;
  });
  used_.push_back(std::move(used));
  return static_cast<int>(used_.size()) - 1;
}

const std::uint8_t* BatchProgram::AnswerChunk(std::int64_t first, int n) {
  views_.clear();
  for (UsedColumn& used : used_) views_.push_back(used.view(*used.column, first, n, *used.scratch));
  for (BatchNode& node : nodes_) {
    for (BatchOperand& operand : node.operands) {
      if (operand.column < 0) continue;
      operand.values = views_[static_cast<std::size_t>(operand.column)].values;
      operand.valid = views_[static_cast<std::size_t>(operand.column)].valid;
    }
  }
  BatchNode& root = nodes_.front();
  std::fill_n(root.care, n, 2);
  Answer(0, root.care, n);
  return root.codes;
}

void BatchProgram::Answer(int index, const std::uint8_t* care, int n) {
  BatchNode& node = nodes_[static_cast<std::size_t>(index)];
  std::uint8_t* out = node.codes;
  switch (node.kind) {
    case BatchNode::Kind::kFixed:
      std::fill_n(out, n, node.fixed);
      return;
    case BatchNode::Kind::kCompare:
      node.kernel(node, care, out, n, caseSensitive_);
      return;
    case BatchNode::Kind::kNot: {
      Answer(node.first, care, n);
      const std::uint8_t* a = nodes_[static_cast<std::size_t>(node.first)].codes;
      for (int i = 0; i < n; ++i) out[i] = kNotOf[a[i]];
      return;
    }
    default:
      break;
  }
  Answer(node.first, care, n);
  const std::uint8_t* a = nodes_[static_cast<std::size_t>(node.first)].codes;
  BatchNode& second = nodes_[static_cast<std::size_t>(node.second)];
  std::uint8_t* careB = second.care;
  // What the second side must tell, in arithmetic that vectorises. And:
  // after an undecidable first side nothing, after one that does not hold
  // only whether the second is undecidable: min(care, 2 - a). Or: after a
  // first side that holds nothing; after one that does not hold all, or
  // nothing when only undecidability is asked; after an undecidable one
  // what is asked: care & {0, 2, 3}[a].
  std::uint8_t anyCare = 0;
  if (node.kind == BatchNode::Kind::kAnd) {
    for (int i = 0; i < n; ++i) {
      const std::uint8_t limit = static_cast<std::uint8_t>(2 - a[i]);
      careB[i] = care[i] < limit ? care[i] : limit;
      anyCare |= careB[i];
    }
  } else {
    for (int i = 0; i < n; ++i) {
      careB[i] = care[i] & static_cast<std::uint8_t>((a[i] << 1) - (a[i] >> 1));
      anyCare |= careB[i];
    }
  }
  if (anyCare != 0) {
    Answer(node.second, careB, n);
  } else {
    std::fill_n(second.codes, n, kDoesNot);
  }
  const std::uint8_t* b = second.codes;
  if (node.kind == BatchNode::Kind::kAnd) {
    for (int i = 0; i < n; ++i) out[i] = std::max(a[i], b[i]);
  } else {
    for (int i = 0; i < n; ++i) out[i] = std::min(a[i], b[i]);
  }
}

}  // namespace idxbase::detail
