// Direct reads of the library's own constant operands, for the evaluation
// paths: an operand whose dynamic type is exactly one of these classes is
// read as the class's GetValX would read it, without the virtual call. The
// read takes the value as it is now, so an assignment to the constant after
// compilation is seen by the next evaluation. Classes derived from them (a
// caller's subclass) never match and are always asked through their
// virtual operations. Also the typed reads through the operand interface.
#ifndef IDXBASE_FILTER_CONSTANT_VALUES_H_
#define IDXBASE_FILTER_CONSTANT_VALUES_H_

#include <typeinfo>

#include "idxbase/filter_operands.h"

namespace idxbase::detail {

struct ConstantValues {
  static void Read(const BBDOperand& operand, int& value) {
    value = static_cast<const BBDOperandIntConst&>(operand).m_Value;
  }
  static void Read(const BBDOperand& operand, float& value) {
    value = static_cast<const BBDOperandFloatConst&>(operand).m_Value;
  }
  static void Read(const BBDOperand& operand, bool& value) {
    value = static_cast<const BBDOperandBooleanConst&>(operand).m_Value;
  }
  static void Read(const BBDOperand& operand, KORTime& value) {
    value = static_cast<const BBDOperandTimeConst&>(operand).m_Value;
  }
  static void Read(const BBDOperand& operand, StringValue& value) {
    const auto& constant = static_cast<const BBDOperandStringConst&>(operand);
    value.text = constant.m_Buffer != nullptr ? constant.m_Buffer : "";
    value.length = constant.m_Length;
  }
  static const SharedElements<BBDOperand>& Elements(const BBDOperand& set) {
    return static_cast<const BBDOperandSet&>(set).m_Elements;
  }
};

// The library constant that delivers values of type Value.
template <class Value>
struct ConstantOf;
template <>
struct ConstantOf<int> {
  using Class = BBDOperandIntConst;
  static constexpr ExactOperand kKind = ExactOperand::kInt;
};
template <>
struct ConstantOf<float> {
  using Class = BBDOperandFloatConst;
  static constexpr ExactOperand kKind = ExactOperand::kFloat;
};
template <>
struct ConstantOf<bool> {
  using Class = BBDOperandBooleanConst;
  static constexpr ExactOperand kKind = ExactOperand::kBoolean;
};
template <>
struct ConstantOf<StringValue> {
  using Class = BBDOperandStringConst;
  static constexpr ExactOperand kKind = ExactOperand::kString;
};
template <>
struct ConstantOf<KORTime> {
  using Class = BBDOperandTimeConst;
  static constexpr ExactOperand kKind = ExactOperand::kTime;
};

// Asks `operand` for its value of the type of `value`, through its virtual
// read.
inline KORStatus Get(BBDOperand& operand, const BBDOccurrence& o, unsigned int c,
                     BBDIAttributeRead& r, int& value) {
  return operand.GetValInt(o, c, r, value);
}
inline KORStatus Get(BBDOperand& operand, const BBDOccurrence& o, unsigned int c,
                     BBDIAttributeRead& r, float& value) {
  return operand.GetValFloat(o, c, r, value);
}
inline KORStatus Get(BBDOperand& operand, const BBDOccurrence& o, unsigned int c,
                     BBDIAttributeRead& r, bool& value) {
  return operand.GetValBool(o, c, r, value);
}
inline KORStatus Get(BBDOperand& operand, const BBDOccurrence& o, unsigned int c,
                     BBDIAttributeRead& r, KORTime& value) {
  return operand.GetValTime(o, c, r, value);
}
inline KORStatus Get(BBDOperand& operand, const BBDOccurrence& o, unsigned int c,
                     BBDIAttributeRead& r, StringValue& value) {
  return operand.GetValString(o, c, r, value.text, value.length);
}

// True when `operand` is exactly the library constant of type Value.
template <class Value>
bool IsExactConstant(const BBDOperand& operand) {
  return typeid(operand) == typeid(typename ConstantOf<Value>::Class);
}

// The library class that `operand` is exactly; kOther for null.
ExactOperand ExactClassOf(const BBDOperand* operand);

}  // namespace idxbase::detail

#endif  // IDXBASE_FILTER_CONSTANT_VALUES_H_
