#include <climits>
#include <cstdio>
#include <cstring>

#include "idxbase/filter_attributes.h"

namespace {

int ByteLength(const std::string& text) {
  return text.size() > INT_MAX ? INT_MAX : static_cast<int>(text.size());
}

}  // namespace

BBDOperandMultiTypeClient::BBDOperandMultiTypeClient(const KORListPtrBBDTypeInfo& types,
                                                     const KORUnicodeString& name,
                                                     IDX_Filter_ValueType valueType)
    : BBDOperandMultiType(types, valueType),
      m_HasClientName(true),
      m_ClientName(name.ConvertToChar()) {}

BBDOperandMultiTypeClient::BBDOperandMultiTypeClient(const KORListPtrBBDTypeInfo& types,
                                                     AttributeTypePair* pair,
                                                     IDX_Filter_ValueType valueType)
    : BBDOperandMultiType(types, pair, valueType), m_HasClientName(false) {}

BBDOperandMultiTypeClient::~BBDOperandMultiTypeClient() = default;

// Checks the path, then performs `read(pair, attributeLevel)` with the held
// pair or, with a client name, with the pair that the reader resolves for
// the starting level.
template <class Read>
KORStatus BBDOperandMultiTypeClient::ReadResolved(const BBDOccurrence& occurrence,
                                                  unsigned int level, BBDIAttributeRead& reader,
                                                  Read read) {
  if (CheckTypePath(occurrence, level, reader) != KOR_S_OK) return KOR_E_FAIL;
  const unsigned int attributeLevel = level + static_cast<unsigned int>(GetTypesNumber()) - 1u;
  if (!m_HasClientName) return read(GetPair(), attributeLevel);
  const unsigned int key = occurrence.GetLevelKey(level);
  AttributeTypePair resolved =
      reader.ResolvePair(m_ClientName.c_str(), ByteLength(m_ClientName), key);
  return read(&resolved, attributeLevel);
}

KORStatus BBDOperandMultiTypeClient::GetValInt(const BBDOccurrence& occurrence, unsigned int level,
                                               BBDIAttributeRead& reader, int& value) {
  return ReadResolved(occurrence, level, reader, [&](AttributeTypePair* pair, unsigned int at) {
    return ReadInt(pair, occurrence, at, reader, value);
  });
}

KORStatus BBDOperandMultiTypeClient::GetValFloat(const BBDOccurrence& occurrence,
                                                 unsigned int level, BBDIAttributeRead& reader,
                                                 float& value) {
  return ReadResolved(occurrence, level, reader, [&](AttributeTypePair* pair, unsigned int at) {
    return ReadFloat(pair, occurrence, at, reader, value);
  });
}

KORStatus BBDOperandMultiTypeClient::GetValBool(const BBDOccurrence& occurrence, unsigned int level,
                                                BBDIAttributeRead& reader, bool& value) {
  return ReadResolved(occurrence, level, reader, [&](AttributeTypePair* pair, unsigned int at) {
    return ReadBool(pair, occurrence, at, reader, value);
  });
}

KORStatus BBDOperandMultiTypeClient::GetValTime(const BBDOccurrence& occurrence, unsigned int level,
                                                BBDIAttributeRead& reader, KORTime& value) {
  return ReadResolved(occurrence, level, reader, [&](AttributeTypePair* pair, unsigned int at) {
    return ReadTime(pair, occurrence, at, reader, value);
  });
}

// Strings resolve with the key of the attribute level, and refuse an
// unresolved name.
KORStatus BBDOperandMultiTypeClient::GetValString(const BBDOccurrence& occurrence,
                                                  unsigned int level, BBDIAttributeRead& reader,
                                                  const char*& value, int& length) {
  if (CheckTypePath(occurrence, level, reader) != KOR_S_OK) return KOR_E_FAIL;
  const unsigned int attributeLevel = level + static_cast<unsigned int>(GetTypesNumber()) - 1u;
  if (!m_HasClientName)
    return ReadString(GetPair(), occurrence, attributeLevel, reader, value, length);
  const unsigned int key = occurrence.GetLevelKey(attributeLevel);
  AttributeTypePair resolved =
      reader.ResolveStringPair(m_ClientName.c_str(), ByteLength(m_ClientName), key);
  if (resolved.GetType() == -1) {
    std::printf("ERROR : null pair\n");
    return KOR_E_FAIL;
  }
  return ReadString(&resolved, occurrence, attributeLevel, reader, value, length);
}

void BBDOperandMultiTypeClient::toString(KORUnicodeString& text) {
  text = "BBDOperandMultiTypeClient";
}
