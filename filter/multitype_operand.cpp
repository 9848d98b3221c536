#include "idxbase/filter_attributes.h"

BBDOperandMultiType::BBDOperandMultiType(const KORListPtrBBDTypeInfo& types,
                                         AttributeTypePair* pair, IDX_Filter_ValueType valueType)
    : BBDOperandAttribute(pair, valueType), m_Types(types) {
  for (int position = 1; position <= types.Size(); ++position) {
    m_TypeOwners.emplace_back(types[position]);
  }
}

BBDOperandMultiType::BBDOperandMultiType(const KORListPtrBBDTypeInfo& types,
                                         IDX_Filter_ValueType valueType)
    : BBDOperandMultiType(types, nullptr, valueType) {}

BBDOperandMultiType::BBDOperandMultiType(const BBDOperandMultiType& other)
    : BBDOperandAttribute(other), m_Types(other.m_Types), m_TypeOwners(other.m_TypeOwners) {}

BBDOperandMultiType& BBDOperandMultiType::operator=(const BBDOperandMultiType& other) {
  if (this == &other) return *this;
  BBDOperandAttribute::operator=(other);
  ReleaseTypes();
  m_Types = other.m_Types;
  m_TypeOwners = other.m_TypeOwners;
  return *this;
}

BBDOperandMultiType::~BBDOperandMultiType() { ReleaseTypes(); }

void BBDOperandMultiType::ReleaseTypes() {
  // In path order: a descriptor goes with the last operand that shares it.
  for (std::shared_ptr<BBDTypeInfo>& owner : m_TypeOwners) owner.reset();
  m_TypeOwners.clear();
  m_Types.RemoveAll(KORCollec::KeepMemory);
}

KORStatus BBDOperandMultiType::CheckTypePath(const BBDOccurrence& occurrence, unsigned int level,
                                             BBDIAttributeRead& reader) {
  const unsigned int count = static_cast<unsigned int>(m_Types.Size());
  if (level - 1u + count >= occurrence.GetLevelCount()) return KOR_E_FAIL;
  for (unsigned int i = 1; i < count; ++i) {
    int isOfType = 0;
    const int position = static_cast<int>(i);
    if (reader.IsOfType(occurrence, level + i - 1u, m_Types[position], isOfType) == 0 ||
        isOfType == 0) {
      return KOR_E_FAIL;
    }
  }
  return KOR_S_OK;
}
