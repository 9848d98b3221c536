// Fakes shared by the filter tests: an occurrence with a fixed number of
// levels and a GoogleMock attribute reader.
#ifndef IDXBASE_TESTS_FILTER_FILTER_TEST_SUPPORT_H_
#define IDXBASE_TESTS_FILTER_FILTER_TEST_SUPPORT_H_

#include <gmock/gmock.h>

#include "idxbase/filter_attributes.h"

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

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_FILTER_FILTER_TEST_SUPPORT_H_
