#include "filter/resolved_attribute.h"

namespace idxbase::detail {
namespace {

KORUnicodeString Text(const std::string& text) { return KORUnicodeString(text.c_str()); }

// The base constructor takes its second name by non-const reference; the
// temporary lives until the constructor has copied it.
KORUnicodeString& Lvalue(KORUnicodeString&& text) { return text; }

}  // namespace

ResolvedAttribute::ResolvedAttribute(const BBDFilterAttribute& attribute)
    : BBDOperandAttribute(Text(attribute.typeName), Lvalue(Text(attribute.attributeName)),
                          attribute.valueType),
      m_Resolved(attribute.pair) {}

KORStatus ResolvedAttribute::GetValString(const BBDOccurrence& occurrence, unsigned int level,
                                          BBDIAttributeRead& reader, const char*& value,
                                          int& length) {
  return ReadString(&m_Resolved, occurrence, level, reader, value, length);
}

KORStatus ResolvedAttribute::GetValInt(const BBDOccurrence& occurrence, unsigned int level,
                                       BBDIAttributeRead& reader, int& value) {
  return ReadInt(&m_Resolved, occurrence, level, reader, value);
}

KORStatus ResolvedAttribute::GetValFloat(const BBDOccurrence& occurrence, unsigned int level,
                                         BBDIAttributeRead& reader, float& value) {
  return ReadFloat(&m_Resolved, occurrence, level, reader, value);
}

KORStatus ResolvedAttribute::GetValBool(const BBDOccurrence& occurrence, unsigned int level,
                                        BBDIAttributeRead& reader, bool& value) {
  return ReadBool(&m_Resolved, occurrence, level, reader, value);
}

KORStatus ResolvedAttribute::GetValTime(const BBDOccurrence& occurrence, unsigned int level,
                                        BBDIAttributeRead& reader, KORTime& value) {
  return ReadTime(&m_Resolved, occurrence, level, reader, value);
}

}  // namespace idxbase::detail
