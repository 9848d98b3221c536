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

KORStatus BBDOperandAttribute::ReadString(AttributeTypePair* pair, const BBDOccurrence& occurrence,
                                          unsigned int level, BBDIAttributeRead& reader,
                                          const char*& value, int& length) {
  if (m_ValueType != IDX_Filter_Type_String) return KOR_E_FAIL;
  int read = 0;
  if (reader.ReadString(occurrence, level, pair, value, read) == 0) return KOR_E_FAIL;
  length = read;
  return KOR_S_OK;
}

KORStatus BBDOperandAttribute::ReadInt(AttributeTypePair* pair, const BBDOccurrence& occurrence,
                                       unsigned int level, BBDIAttributeRead& reader, int& value) {
  if (m_ValueType != IDX_Filter_Type_Int) return KOR_E_FAIL;
  int read = 0;
  if (reader.ReadInt(occurrence, level, pair, read) == 0) return KOR_E_FAIL;
  value = read;
  return KOR_S_OK;
}

KORStatus BBDOperandAttribute::ReadFloat(AttributeTypePair* pair, const BBDOccurrence& occurrence,
                                         unsigned int level, BBDIAttributeRead& reader,
                                         float& value) {
  if (m_ValueType != IDX_Filter_Type_Float) return KOR_E_FAIL;
  float read = 0.0f;
  if (reader.ReadFloat(occurrence, level, pair, read) == 0) return KOR_E_FAIL;
  value = read;
  return KOR_S_OK;
}

KORStatus BBDOperandAttribute::ReadBool(AttributeTypePair* pair, const BBDOccurrence& occurrence,
                                        unsigned int level, BBDIAttributeRead& reader,
                                        bool& value) {
  if (m_ValueType != IDX_Filter_Type_Boolean) return KOR_E_FAIL;
  int read = 0;
  if (reader.ReadBool(occurrence, level, pair, read) == 0) return KOR_E_FAIL;
  value = read == 1;
  return KOR_S_OK;
}

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
