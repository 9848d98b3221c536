#include "idxbase/filter_attributes.h"

BBDOperandMultiType::BBDOperandMultiType(const KORListPtrBBDTypeInfo& types,
                                         AttributeTypePair* pair, IDX_Filter_ValueType valueType)
    : BBDOperandAttribute(pair, valueType) {
  for (int position = 1; position <= types.Size(); ++position) m_Types.Adopt(types[position]);
}

BBDOperandMultiType::BBDOperandMultiType(const KORListPtrBBDTypeInfo& types,
                                         IDX_Filter_ValueType valueType)
    : BBDOperandMultiType(types, nullptr, valueType) {}

BBDOperandMultiType::~BBDOperandMultiType() = default;

KORStatus BBDOperandMultiType::CheckTypePath(const BBDOccurrence& occurrence, unsigned int level,
                                             BBDIAttributeRead& reader) {
  const unsigned int count = static_cast<unsigned int>(m_Types.Size());
  if (level - 1u + count >= occurrence.GetLevelCount()) return KOR_E_FAIL;
  for (unsigned int i = 1; i < count; ++i) {
    int isOfType = 0;
    if (reader.IsOfType(occurrence, level + i - 1u, m_Types[static_cast<int>(i)], isOfType) == 0 ||
        isOfType == 0) {
      return KOR_E_FAIL;
    }
  }
  return KOR_S_OK;
}
