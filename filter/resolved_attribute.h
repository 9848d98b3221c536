// The attribute operand that the filter parser builds for a name.
#ifndef IDXBASE_FILTER_RESOLVED_ATTRIBUTE_H_
#define IDXBASE_FILTER_RESOLVED_ATTRIBUTE_H_

#include "idxbase/filter_attributes.h"
#include "idxbase/filter_parser.h"

namespace idxbase::detail {

// Renders as "Type.attribute", like an attribute operand built from names,
// but reads with the pair that the schema resolved, so the reader knows
// which attribute is meant. Holds the pair by value; reads do not change
// the operand.
class ResolvedAttribute : public BBDOperandAttribute {
 public:
  explicit ResolvedAttribute(const BBDFilterAttribute& attribute);

  KORStatus GetValString(const BBDOccurrence& occurrence, unsigned int level,
                         BBDIAttributeRead& reader, const char*& value, int& length) override;
  KORStatus GetValInt(const BBDOccurrence& occurrence, unsigned int level,
                      BBDIAttributeRead& reader, int& value) override;
  KORStatus GetValFloat(const BBDOccurrence& occurrence, unsigned int level,
                        BBDIAttributeRead& reader, float& value) override;
  KORStatus GetValBool(const BBDOccurrence& occurrence, unsigned int level,
                       BBDIAttributeRead& reader, bool& value) override;
  KORStatus GetValTime(const BBDOccurrence& occurrence, unsigned int level,
                       BBDIAttributeRead& reader, KORTime& value) override;

 private:
  AttributeTypePair m_Resolved;
};

}  // namespace idxbase::detail

#endif  // IDXBASE_FILTER_RESOLVED_ATTRIBUTE_H_
