// Fakes and helpers shared by the filter tests: an occurrence with a fixed
// number of levels, a GoogleMock attribute reader, reads into sentinel
// outputs, rendering and printing.
#ifndef IDXBASE_TESTS_FILTER_FILTER_TEST_SUPPORT_H_
#define IDXBASE_TESTS_FILTER_FILTER_TEST_SUPPORT_H_

#include <gmock/gmock.h>

#include <string>

#include "idxbase/filter_attributes.h"
#include "support/stdout_capture.h"

namespace idxbase_test {

// An occurrence of `levels` levels; the object at level L has key
// FakeOccurrence::KeyOf(L).
class FakeOccurrence : public BBDOccurrence {
 public:
  explicit FakeOccurrence(unsigned int levels = 1) : levels_(levels) {}
  static unsigned int KeyOf(unsigned int level) { return 1000u + level; }
  unsigned int GetLevelKey(unsigned int level) const override { return KeyOf(level); }
  unsigned int GetLevelCount() const override { return levels_; }

 private:
  unsigned int levels_;
};

class MockAttributeReader : public BBDIAttributeRead {
 public:
  MOCK_METHOD(int, ReadInt, (const BBDOccurrence&, unsigned int, AttributeTypePair*, int&),
              (override));
  MOCK_METHOD(int, ReadFloat, (const BBDOccurrence&, unsigned int, AttributeTypePair*, float&),
              (override));
  MOCK_METHOD(int, ReadString,
              (const BBDOccurrence&, unsigned int, AttributeTypePair*, const char*&, int&),
              (override));
  MOCK_METHOD(int, ReadTime, (const BBDOccurrence&, unsigned int, AttributeTypePair*, KORTime&),
              (override));
  MOCK_METHOD(int, ReadBool, (const BBDOccurrence&, unsigned int, AttributeTypePair*, int&),
              (override));
  MOCK_METHOD(int, IsOfType, (const BBDOccurrence&, unsigned int, BBDTypeInfo*, int&), (override));
  MOCK_METHOD(AttributeTypePair, ResolvePair, (const char*, int, unsigned int), (override));
  MOCK_METHOD(AttributeTypePair, ResolveStringPair, (const char*, int, unsigned int), (override));
};

// The value types an operand can be read in.
inline constexpr IDX_Filter_ValueType kReadTypes[] = {
    IDX_Filter_Type_String,  IDX_Filter_Type_Int,  IDX_Filter_Type_Float,
    IDX_Filter_Type_Boolean, IDX_Filter_Type_Time, IDX_Filter_Type_Set};

// What a read's outputs hold before the read (a boolean starts true, a set
// as a list of one outsider).
inline constexpr char kSentinelText[] = "sentinel";
inline constexpr int kSentinelInt = -77;  // also the string length
inline constexpr float kSentinelFloat = -9.5f;
inline KORTime SentinelTime() { return KORTime(2001, 2, 3, 4, 5, 6); }

struct ReadOutcome {
  KORStatus status;
  bool kept;  // every output still holds its sentinel
};

inline ReadOutcome ReadAs(BBDOperand& op, IDX_Filter_ValueType type,
                          const BBDOccurrence& occurrence, unsigned int level,
                          BBDIAttributeRead& reader) {
  const char* s = kSentinelText;
  int n = kSentinelInt;
  float f = kSentinelFloat;
  bool b = true;
  KORTime t = SentinelTime();
  BBDOperandIntConst outsider(0);
  KORListPtrBBDOperand list;
  list.Append(&outsider);
  const KORStatus status =
      type == IDX_Filter_Type_String    ? op.GetValString(occurrence, level, reader, s, n)
      : type == IDX_Filter_Type_Int     ? op.GetValInt(occurrence, level, reader, n)
      : type == IDX_Filter_Type_Float   ? op.GetValFloat(occurrence, level, reader, f)
      : type == IDX_Filter_Type_Boolean ? op.GetValBool(occurrence, level, reader, b)
      : type == IDX_Filter_Type_Time    ? op.GetValTime(occurrence, level, reader, t)
                                        : op.GetValSet(occurrence, level, reader, list);
  const KORListPtrBBDOperand& elements = list;
  const bool kept = s == kSentinelText && n == kSentinelInt && f == kSentinelFloat && b &&
                    t == SentinelTime() && elements.Size() == 1 && elements[1] == &outsider;
  return {status, kept};
}

// The rendering of an operand or expression into a text holding `initial`.
template <class T>
std::string Rendered(T& item, const char* initial = "") {
  KORUnicodeString text(initial);
  item.toString(text);
  return text.ConvertToChar();
}

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_FILTER_FILTER_TEST_SUPPORT_H_
