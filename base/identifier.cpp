#include <cstring>

#include "base/byte_fold.h"
#include "base/run_compare.h"
#include "idxbase/strings.h"

// A copy's or an assignment's subclass may hold other bytes than the
// cache was taken from, so the copy computes its own.
IDX_Base_Identifier::IDX_Base_Identifier(const IDX_Base_Identifier&) {}

IDX_Base_Identifier& IDX_Base_Identifier::operator=(const IDX_Base_Identifier&) {
  hashKey = 0;
  return *this;
}

IDX_Base_Identifier::~IDX_Base_Identifier() = default;

IDX_Bool IDX_Base_Identifier::operator==(const IDX_Base_Identifier& other) const {
  short result = 0;
  if (SortCompare(other, result) != IDX_True) return IDX_False;
  return result == 0 ? IDX_True : IDX_False;
}

IDX_Bool IDX_Base_Identifier::operator!=(const IDX_Base_Identifier& other) const {
  short result = 0;
  if (SortCompare(other, result) != IDX_True) return IDX_False;
  return result != 0 ? IDX_True : IDX_False;
}

IDX_Bool IDX_Base_Identifier::Equals(const unsigned char* bytes, unsigned int size) const {
  if (GetSize() != size) return IDX_False;
  const unsigned char* own = GetData();
  if (own == bytes || size == 0) return IDX_True;
  return std::memcmp(own, bytes, size) == 0 ? IDX_True : IDX_False;
}

unsigned int IDX_Base_Identifier::GetHashKey() const {
  const unsigned int size = GetSize();
  if (hashKey != 0 || size == 0) return hashKey;
  hashKey = idxbase::detail::XorFoldHashKey(GetData(), size);
  return hashKey;
}

IDX_Bool IDX_Base_Identifier::SortCompare(const IDX_Base_Identifier& other, short& result) const {
  result = idxbase::detail::CompareRuns(GetData(), GetSize(), other.GetData(), other.GetSize());
  return IDX_True;
}
