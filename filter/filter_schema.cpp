#include <utility>

#include "idxbase/filter_parser.h"

BBDFilterSchema::~BBDFilterSchema() = default;

BBDFilterSimpleSchema::BBDFilterSimpleSchema(std::string typeName, int typeNumber)
    : m_TypeName(std::move(typeName)), m_TypeNumber(typeNumber) {}

int BBDFilterSimpleSchema::Add(const std::string& attributeName, IDX_Filter_ValueType valueType) {
  BBDFilterAttribute unused;
  if (Resolve(attributeName, unused)) return -1;
  const int number = Size();
  BBDFilterAttribute attribute;
  attribute.typeName = m_TypeName;
  attribute.attributeName = attributeName;
  attribute.valueType = valueType;
  attribute.pair = AttributeTypePair(m_TypeNumber, number);
  m_Attributes.push_back(std::move(attribute));
  return number;
}

bool BBDFilterSimpleSchema::Resolve(const std::string& name, BBDFilterAttribute& attribute) const {
  std::string_view attributeName = name;
  if (attributeName.size() > m_TypeName.size() && attributeName[m_TypeName.size()] == '.' &&
      attributeName.compare(0, m_TypeName.size(), m_TypeName) == 0) {
    attributeName.remove_prefix(m_TypeName.size() + 1);
  }
  for (const BBDFilterAttribute& known : m_Attributes) {
    if (known.attributeName == attributeName) {
      attribute = known;
      return true;
    }
  }
  return false;
}
