#include "idxbase/filter_attributes.h"

BBDOperandAttribute::BBDOperandAttribute(const KORUnicodeString& first, KORUnicodeString& second,
                                         IDX_Filter_ValueType valueType)
    : m_FirstName(first), m_SecondName(second), m_ValueType(valueType) {}

BBDOperandAttribute::BBDOperandAttribute(AttributeTypePair* pair, IDX_Filter_ValueType valueType)
    : m_Pair(pair), m_ValueType(valueType) {}

BBDOperandAttribute::~BBDOperandAttribute() = default;

IDX_Filter_OperandType BBDOperandAttribute::GetOperandType() {
  return IDX_Filter_Operand_Attribute;
}
IDX_Filter_ValueType BBDOperandAttribute::GetValueType() { return m_ValueType; }

namespace {

// Runs `read` (a call of the reader) into a local and hands the value on
// only when the reader succeeded, so a failed read leaves `out` untouched.
template <class Local, class Out, class Read>
KORStatus Deliver(bool typeMatches, Out& out, Read read) {
  if (!typeMatches) return KOR_E_FAIL;
  Local value{};
  if (read(value) == 0) return KOR_E_FAIL;
  out = value;
  return KOR_S_OK;
}

}  // namespace

KORStatus BBDOperandAttribute::ReadString(AttributeTypePair* pair, const BBDOccurrence& occurrence,
                                          unsigned int level, BBDIAttributeRead& reader,
                                          const char*& value, int& length) {
  // The reader writes the string pointer straight into the caller's output.
  return Deliver<int>(m_ValueType == IDX_Filter_Type_String, length, [&](int& read) {
    return reader.ReadString(occurrence, level, pair, value, read);
  });
}

KORStatus BBDOperandAttribute::ReadInt(AttributeTypePair* pair, const BBDOccurrence& occurrence,
                                       unsigned int level, BBDIAttributeRead& reader, int& value) {
  return Deliver<int>(m_ValueType == IDX_Filter_Type_Int, value,
                      [&](int& read) { return reader.ReadInt(occurrence, level, pair, read); });
}

KORStatus BBDOperandAttribute::ReadFloat(AttributeTypePair* pair, const BBDOccurrence& occurrence,
                                         unsigned int level, BBDIAttributeRead& reader,
                                         float& value) {
  return Deliver<float>(m_ValueType == IDX_Filter_Type_Float, value, [&](float& read) {
    return reader.ReadFloat(occurrence, level, pair, read);
  });
}

// The boolean is true exactly when the reader gives 1.
KORStatus BBDOperandAttribute::ReadBool(AttributeTypePair* pair, const BBDOccurrence& occurrence,
                                        unsigned int level, BBDIAttributeRead& reader,
                                        bool& value) {
  int read = 0;
  const KORStatus status =
      Deliver<int>(m_ValueType == IDX_Filter_Type_Boolean, read,
                   [&](int& local) { return reader.ReadBool(occurrence, level, pair, local); });
  if (status == KOR_S_OK) value = read == 1;
  return status;
}

// The reader writes the time straight into the caller's output.
KORStatus BBDOperandAttribute::ReadTime(AttributeTypePair* pair, const BBDOccurrence& occurrence,
                                        unsigned int level, BBDIAttributeRead& reader,
                                        KORTime& value) {
  if (m_ValueType != IDX_Filter_Type_Time) return KOR_E_FAIL;
  return reader.ReadTime(occurrence, level, pair, value) == 0 ? KOR_E_FAIL : KOR_S_OK;
}

KORStatus BBDOperandAttribute::GetValString(const BBDOccurrence& occurrence, unsigned int level,
                                            BBDIAttributeRead& reader, const char*& value,
                                            int& length) {
  return ReadString(m_Pair.get(), occurrence, level, reader, value, length);
}

KORStatus BBDOperandAttribute::GetValInt(const BBDOccurrence& occurrence, unsigned int level,
                                         BBDIAttributeRead& reader, int& value) {
  return ReadInt(m_Pair.get(), occurrence, level, reader, value);
}

KORStatus BBDOperandAttribute::GetValFloat(const BBDOccurrence& occurrence, unsigned int level,
                                           BBDIAttributeRead& reader, float& value) {
  return ReadFloat(m_Pair.get(), occurrence, level, reader, value);
}

KORStatus BBDOperandAttribute::GetValBool(const BBDOccurrence& occurrence, unsigned int level,
                                          BBDIAttributeRead& reader, bool& value) {
  return ReadBool(m_Pair.get(), occurrence, level, reader, value);
}

KORStatus BBDOperandAttribute::GetValTime(const BBDOccurrence& occurrence, unsigned int level,
                                          BBDIAttributeRead& reader, KORTime& value) {
  return ReadTime(m_Pair.get(), occurrence, level, reader, value);
}

void BBDOperandAttribute::toString(KORUnicodeString& text) {
  if (m_FirstName.GetLengthInChar() > 0) {
    text = m_FirstName + "." + m_SecondName;
  } else if (m_Pair == nullptr) {
    text = "ErrorBBDoperandAttributeToString";
  } else {
    KORUnicodeString type;
    type.BuildFromNum(m_Pair->GetType(), "%d");
    text.BuildFromNum(m_Pair->GetAttribute(), "%d");
    text += ".";
    text += type;
  }
}
