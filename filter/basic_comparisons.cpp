// The evaluation functions of basic expressions and their table. Each
// comparison reads its operands into the expression's value slots and
// compares them; only a membership test over a set that is not made of the
// library's constants builds a (pointer) list.
#include "filter/comparison_rules.h"
#include "filter/constant_values.h"
#include "filter/operator_table.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"

using Basic = BBDBasicExpression;
namespace rules = idxbase::detail::rules;
using idxbase::detail::Get;

namespace {

KORStatus Decide(bool holds) { return holds ? IDX_FILTER_HOLDS : IDX_FILTER_DOES_NOT; }

}  // namespace

template <>
int& Basic::SlotOf<int>(int position) {
  return m_IntValue[position];
}
template <>
float& Basic::SlotOf<float>(int position) {
  return m_FloatValue[position];
}
template <>
bool& Basic::SlotOf<bool>(int position) {
  return m_BoolValue[position];
}
template <>
Basic::StringSlot& Basic::SlotOf<Basic::StringSlot>(int position) {
  return m_StringValue[position];
}
template <>
KORTime& Basic::SlotOf<KORTime>(int position) {
  return m_TimeValue[position];
}

using idxbase::detail::ConstantOf;
using idxbase::detail::ConstantValues;

template <class Value>
KORStatus Basic::Read(int position, const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  BBDOperand* operand = m_Operand[position].get();
  if (m_Exact[position] == ConstantOf<Value>::kKind) {
    ConstantValues::Read(*operand, SlotOf<Value>(position));
    return KOR_S_OK;
  }
  return operand == nullptr || Get(*operand, o, c, r, SlotOf<Value>(position)) != KOR_S_OK
             ? KOR_E_FAIL
             : KOR_S_OK;
}

template <class Value, class Holds>
KORStatus Basic::Compare(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r,
                         Holds holds) {
  if (Read<Value>(0, o, c, r) != KOR_S_OK || Read<Value>(1, o, c, r) != KOR_S_OK) {
    return IDX_FILTER_UNDECIDABLE;
  }
  return Decide(holds(SlotOf<Value>(0), SlotOf<Value>(1)));
}

template <class Value, class Holds>
KORStatus Basic::CompareRange(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r,
                              Holds holds) {
  if (Read<Value>(0, o, c, r) != KOR_S_OK || Read<Value>(1, o, c, r) != KOR_S_OK ||
      Read<Value>(2, o, c, r) != KOR_S_OK) {
    return IDX_FILTER_UNDECIDABLE;
  }
  return Decide(holds(SlotOf<Value>(0), SlotOf<Value>(1), SlotOf<Value>(2)));
}

// An element that gives no value (or is null) makes the test undecidable
// unless an earlier element matched. The element pointers are read into a
// list of this test's own: the elements stay owned by the set, and nothing
// that a read does to another test's list can reach this one.
template <class Value, class Same>
KORStatus Basic::IsMember(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r, Same same) {
  if (Read<Value>(0, o, c, r) != KOR_S_OK) return IDX_FILTER_UNDECIDABLE;
  if (m_Exact[1] == idxbase::detail::ExactOperand::kSet)
    return FindInLibrarySet<Value>(o, c, r, same);
  KORListPtrBBDOperand elements;
  if (m_Operand[1] == nullptr || m_Operand[1]->GetValSet(o, c, r, elements) != KOR_S_OK) {
    return IDX_FILTER_UNDECIDABLE;
  }
  return FindMember<Value>(elements, o, c, r, same);
}

// The library set's GetValSet hands out its element pointers and does
// nothing else, so reading them in place is the same until a read may call
// the caller's code, which could change the set: from there on the test
// goes on over a copy of the remaining pointers, taken before that read.
template <class Value, class Same>
KORStatus Basic::FindInLibrarySet(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r,
                                  Same same) {
  const auto& set = ConstantValues::Elements(*m_Operand[1]);
  const int size = set.Size();
  for (int position = 1; position <= size; ++position) {
    const BBDOperand* element = set[position];
    if (element == nullptr) return IDX_FILTER_UNDECIDABLE;
    if (!idxbase::detail::IsExactConstant<Value>(*element)) {
      KORListPtrBBDOperand rest;
      for (int next = position; next <= size; ++next) rest.Append(set[next]);
      return FindMember<Value>(rest, o, c, r, same);
    }
    Value value{};
    ConstantValues::Read(*element, value);
    if (same(SlotOf<Value>(0), value)) return IDX_FILTER_HOLDS;
  }
  return IDX_FILTER_DOES_NOT;
}

template <class Value, class Same>
KORStatus Basic::FindMember(const KORListPtrBBDOperand& elements, const BBDOccurrence& o,
                            unsigned int c, BBDIAttributeRead& r, Same same) {
  for (int position = 1; position <= elements.Size(); ++position) {
    BBDOperand* element = elements[position];
    Value value{};
    if (element == nullptr || Get(*element, o, c, r, value) != KOR_S_OK) {
      return IDX_FILTER_UNDECIDABLE;
    }
    if (same(SlotOf<Value>(0), value)) return IDX_FILTER_HOLDS;
  }
  return IDX_FILTER_DOES_NOT;
}

KORStatus Basic::EvalEqualInt(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<int>(o, c, r, rules::Equal{});
}

KORStatus Basic::EvalEqualString(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<StringSlot>(o, c, r, [](const StringSlot& a, const StringSlot& b) {
    return rules::Equal::Order(CompareStrings(a.length, a.text, b.length, b.text));
  });
}

KORStatus Basic::EvalEqualFloat(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<float>(o, c, r, rules::Equal{});
}

KORStatus Basic::EvalEqualBoolean(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<bool>(o, c, r, rules::Equal{});
}

KORStatus Basic::EvalEqualTime(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<KORTime>(o, c, r, rules::Equal{});
}

KORStatus Basic::EvalDifferentInt(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<int>(o, c, r, rules::Different{});
}

KORStatus Basic::EvalDifferentString(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<StringSlot>(o, c, r, [](const StringSlot& a, const StringSlot& b) {
    return rules::Different::Order(CompareStrings(a.length, a.text, b.length, b.text));
  });
}

KORStatus Basic::EvalDifferentFloat(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<float>(o, c, r, rules::Different{});
}

KORStatus Basic::EvalDifferentBoolean(const BBDOccurrence& o, unsigned int c,
                                      BBDIAttributeRead& r) {
  return Compare<bool>(o, c, r, rules::Different{});
}

// Holds whenever equality does not: also when equality is undecidable.
KORStatus Basic::EvalDifferentTime(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return EvalEqualTime(o, c, r) == IDX_FILTER_HOLDS ? IDX_FILTER_DOES_NOT : IDX_FILTER_HOLDS;
}

KORStatus Basic::EvalLowerInt(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<int>(o, c, r, rules::Lower{});
}

KORStatus Basic::EvalLowerString(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<StringSlot>(o, c, r, [](const StringSlot& a, const StringSlot& b) {
    return rules::Lower::Order(CompareStrings(a.length, a.text, b.length, b.text));
  });
}

KORStatus Basic::EvalLowerFloat(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<float>(o, c, r, rules::Lower{});
}

KORStatus Basic::EvalLowerTime(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<KORTime>(o, c, r, rules::Lower{});
}

KORStatus Basic::EvalLowerEqInt(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<int>(o, c, r, rules::LowerEq{});
}

KORStatus Basic::EvalLowerEqString(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<StringSlot>(o, c, r, [](const StringSlot& a, const StringSlot& b) {
    return rules::LowerEq::Order(CompareStrings(a.length, a.text, b.length, b.text));
  });
}

KORStatus Basic::EvalLowerEqFloat(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<float>(o, c, r, rules::LowerEq{});
}

KORStatus Basic::EvalLowerEqTime(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<KORTime>(o, c, r, rules::LowerEq{});
}

KORStatus Basic::EvalHigherInt(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<int>(o, c, r, rules::Higher{});
}

KORStatus Basic::EvalHigherString(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<StringSlot>(o, c, r, [](const StringSlot& a, const StringSlot& b) {
    return rules::Higher::Order(CompareStrings(a.length, a.text, b.length, b.text));
  });
}

KORStatus Basic::EvalHigherFloat(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<float>(o, c, r, rules::Higher{});
}

KORStatus Basic::EvalHigherTime(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<KORTime>(o, c, r, rules::Higher{});
}

KORStatus Basic::EvalHigherEqInt(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<int>(o, c, r, rules::HigherEq{});
}

KORStatus Basic::EvalHigherEqString(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<StringSlot>(o, c, r, [](const StringSlot& a, const StringSlot& b) {
    return rules::HigherEq::Order(CompareStrings(a.length, a.text, b.length, b.text));
  });
}

KORStatus Basic::EvalHigherEqFloat(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<float>(o, c, r, rules::HigherEq{});
}

KORStatus Basic::EvalHigherEqTime(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<KORTime>(o, c, r, rules::HigherEq{});
}

KORStatus Basic::EvalBetweenInt(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return CompareRange<int>(o, c, r, rules::Between{});
}

KORStatus Basic::EvalBetweenString(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return CompareRange<StringSlot>(
      o, c, r, [](const StringSlot& a, const StringSlot& lo, const StringSlot& hi) {
        return rules::Between::Order(CompareStrings(a.length, a.text, lo.length, lo.text),
                                     CompareStrings(a.length, a.text, hi.length, hi.text));
      });
}

KORStatus Basic::EvalBetweenFloat(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return CompareRange<float>(o, c, r, rules::Between{});
}

KORStatus Basic::EvalBetweenTime(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return CompareRange<KORTime>(o, c, r, rules::Between{});
}

KORStatus Basic::EvalInInt(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return IsMember<int>(o, c, r, rules::Equal{});
}

KORStatus Basic::EvalInFloat(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return IsMember<float>(o, c, r, rules::Equal{});
}

KORStatus Basic::EvalInString(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return IsMember<StringSlot>(o, c, r, [](const StringSlot& a, const StringSlot& e) {
    return rules::Equal::Order(CompareStrings(a.length, a.text, e.length, e.text));
  });
}

KORStatus Basic::EvalLikeString(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<StringSlot>(o, c, r, [](const StringSlot& a, const StringSlot& b) {
    return CompareLikeStrings(a.length, a.text, b.length, b.text) == 0;
  });
}

KORStatus Basic::EvalNotLikeString(const BBDOccurrence& o, unsigned int c, BBDIAttributeRead& r) {
  return Compare<StringSlot>(o, c, r, [](const StringSlot& a, const StringSlot& b) {
    return CompareLikeStrings(a.length, a.text, b.length, b.text) != 0;
  });
}

KORStatus Basic::EvalUnsupported(const BBDOccurrence&, unsigned int, BBDIAttributeRead&) {
  return IDX_FILTER_UNDECIDABLE;
}

// Indexed by operator value: each operator's evaluation, from its row of
// the operator table; null where it has none.
#define IDXBASE_EVAL_OF(op) idxbase::detail::kOperatorRows[op].eval,
const Basic::EvalFunction Basic::m_EvalFunctionTable[42] = {IDXBASE_EACH_OPERATOR(IDXBASE_EVAL_OF)};
#undef IDXBASE_EVAL_OF
