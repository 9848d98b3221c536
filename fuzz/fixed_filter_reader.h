// What the filter fuzz targets parse and evaluate with: the names of a
// part, a reader that answers the same values for every occurrence, a
// one-level occurrence, and a tree's rendering as text.
#ifndef IDXBASE_FUZZ_FIXED_FILTER_READER_H_
#define IDXBASE_FUZZ_FIXED_FILTER_READER_H_

#include <string>

#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"
#include "idxbase/filter_parser.h"

namespace idxbase_fuzz {

// Reads values derived from the attribute's number, so that different
// attributes answer differently; booleans are never available.
class FixedReader : public BBDIAttributeRead {
 public:
  int ReadInt(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override {
    value = pair == nullptr ? 0 : pair->GetAttribute() * 7 - 3;
    return 1;
  }
  int ReadFloat(const BBDOccurrence&, unsigned int, AttributeTypePair*, float& value) override {
    value = 2.5f;
    return 1;
  }
  int ReadString(const BBDOccurrence&, unsigned int, AttributeTypePair*, const char*& value,
                 int& length) override {
    value = "bolt \"M6\"";
    length = 9;
    return 1;
  }
  int ReadTime(const BBDOccurrence&, unsigned int, AttributeTypePair*, KORTime& value) override {
    value = KORTime::FromEpochSeconds(1795305600);
    return 1;
  }
  int ReadBool(const BBDOccurrence&, unsigned int, AttributeTypePair*, int&) override { return 0; }
  int IsOfType(const BBDOccurrence&, unsigned int, BBDTypeInfo*, int&) override { return 0; }
  AttributeTypePair ResolvePair(const char*, int, unsigned int) override { return {}; }
  AttributeTypePair ResolveStringPair(const char*, int, unsigned int) override { return {}; }
};

class OneLevel : public BBDOccurrence {
 public:
  unsigned int GetLevelKey(unsigned int) const override { return 0; }
  unsigned int GetLevelCount() const override { return 1; }
};

inline std::string Render(BBDExpression& expression) {
  KORUnicodeString text;
  expression.toString(text);
  return text.ConvertToChar();
}

// The names the filter targets' texts may use: one type "Part" (type
// number 3) with an attribute of each value type. Made once, never freed.
inline const BBDFilterSimpleSchema* PartSchema() {
  static BBDFilterSimpleSchema* const schema = [] {
    auto* parts = new BBDFilterSimpleSchema("Part", 3);
    parts->Add("name", IDX_Filter_Type_String);
    parts->Add("mass", IDX_Filter_Type_Float);
    parts->Add("count", IDX_Filter_Type_Int);
    parts->Add("released", IDX_Filter_Type_Boolean);
    parts->Add("modified", IDX_Filter_Type_Time);
    return parts;
  }();
  return schema;
}

}  // namespace idxbase_fuzz

#endif  // IDXBASE_FUZZ_FIXED_FILTER_READER_H_
