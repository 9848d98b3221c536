// The string constant and the user-string operand.
#include <climits>
#include <cstdlib>
#include <cstring>

#include "idxbase/filter_operands.h"

namespace {

const char kEmpty[] = "";
// The variable that a user-string operand built on a null address reads.
const char* const kEmptyVariable = kEmpty;

int LengthOf(const char* text) {
  const std::size_t length = std::strlen(text);
  return length > INT_MAX ? INT_MAX : static_cast<int>(length);
}

const KORUnicodeString& DoubleQuote() {
  static const KORUnicodeString quote("\"");
  return quote;
}

}  // namespace

BBDOperandStringConst::BBDOperandStringConst(char* buffer)
    : m_Buffer(buffer), m_Length(buffer != nullptr ? LengthOf(buffer) : 0) {}

BBDOperandStringConst& BBDOperandStringConst::operator=(const BBDOperandStringConst& other) {
  if (this == &other) return *this;
  char* copy = nullptr;
  if (other.m_Buffer != nullptr) {
    copy = static_cast<char*>(std::malloc(static_cast<std::size_t>(other.m_Length) + 1));
    if (copy == nullptr) return *this;
    std::memcpy(copy, other.m_Buffer, static_cast<std::size_t>(other.m_Length) + 1);
  }
  std::free(m_Buffer);
  m_Buffer = copy;
  m_Length = other.m_Length;
  return *this;
}

BBDOperandStringConst::~BBDOperandStringConst() { std::free(m_Buffer); }

IDX_Filter_OperandType BBDOperandStringConst::GetOperandType() {
  return IDX_Filter_Operand_Constant;
}
IDX_Filter_ValueType BBDOperandStringConst::GetValueType() { return IDX_Filter_Type_String; }

KORStatus BBDOperandStringConst::GetValString(const BBDOccurrence&, unsigned int,
                                              BBDIAttributeRead&, const char*& value, int& length) {
  value = m_Buffer != nullptr ? m_Buffer : kEmpty;
  length = m_Length;
  return KOR_S_OK;
}

void BBDOperandStringConst::toString(KORUnicodeString& text) {
  text += DoubleQuote();
  text += m_Buffer != nullptr ? m_Buffer : kEmpty;
  text += DoubleQuote();
}

BBDOperandStringUser::BBDOperandStringUser(const void* variableAddress)
    : m_Variable(variableAddress != nullptr ? static_cast<const char* const*>(variableAddress)
                                            : &kEmptyVariable) {}

IDX_Filter_OperandType BBDOperandStringUser::GetOperandType() { return IDX_Filter_Operand_User; }
IDX_Filter_ValueType BBDOperandStringUser::GetValueType() { return IDX_Filter_Type_String; }

KORStatus BBDOperandStringUser::GetValString(const BBDOccurrence&, unsigned int, BBDIAttributeRead&,
                                             const char*& value, int& length) {
  const char* current = *m_Variable;
  if (current == nullptr) return KOR_E_FAIL;
  length = LengthOf(current);
  value = current;
  return KOR_S_OK;
}
