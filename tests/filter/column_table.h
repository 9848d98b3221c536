// A table of columns, one of each value type for each attribute, and a
// reader over the same columns: what the column evaluator's differential
// checks (the unit test and the fuzz target) compare against `eval`.
#ifndef IDXBASE_TESTS_FILTER_COLUMN_TABLE_H_
#define IDXBASE_TESTS_FILTER_COLUMN_TABLE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "idxbase/filter_attributes.h"
#include "idxbase/filter_batch.h"

namespace idxbase_test {

// Value types by their number in attribute pairs (as random_filters.h's
// Type): int, string, float, bool, time.
enum ColumnType { kIntColumn, kStringColumn, kFloatColumn, kBoolColumn, kTimeColumn };
constexpr int kColumnTypes = 5;
constexpr int kColumnAttributes = 3;

inline void SetBit(std::vector<std::uint8_t>& bits, std::int64_t row, bool on) {
  if (bits.size() <= static_cast<std::size_t>(row >> 3)) bits.resize((row >> 3) + 1, 0);
  if (on) bits[row >> 3] |= static_cast<std::uint8_t>(1u << (row & 7));
}

inline bool GetBit(const std::vector<std::uint8_t>& bits, std::int64_t row) {
  return ((bits[row >> 3] >> (row & 7)) & 1) != 0;
}

// One column of each type for each attribute; every column has a value
// (possibly not available) in every row.
struct Column {
  // Room for one value, so that an empty column is not a null pointer.
  Column() {
    ints.reserve(1);
    floats.reserve(1);
    seconds.reserve(1);
  }

  std::vector<std::uint8_t> validity{0};
  std::vector<std::int32_t> ints;
  std::vector<float> floats;
  std::vector<std::uint8_t> bools{0};  // bitmap
  std::vector<std::int64_t> seconds;
  std::vector<std::int32_t> offsets{0};
  std::string bytes;

  void Add(std::int64_t row, bool available, std::int32_t i, float f, bool b, std::int64_t t,
           const std::string& s) {
    SetBit(validity, row, available);
    ints.push_back(i);
    floats.push_back(f);
    SetBit(bools, row, b);
    seconds.push_back(t);
    bytes += s;
    offsets.push_back(static_cast<std::int32_t>(bytes.size()));
  }
};

struct ColumnTable {
  std::int64_t rows = 0;
  Column of[kColumnTypes][kColumnAttributes];  // by type, then attribute

  // Binds column (type t, attribute a) to the pair (t, a); false when a
  // bind fails.
  bool BindAll(BBDFilterBatch& batch) const {
    bool ok = true;
    for (int a = 0; a < kColumnAttributes; ++a) {
      auto pair = [a](int t) { return AttributeTypePair(t, a); };
      const Column& i = of[kIntColumn][a];
      const Column& f = of[kFloatColumn][a];
      const Column& b = of[kBoolColumn][a];
      const Column& t = of[kTimeColumn][a];
      const Column& s = of[kStringColumn][a];
      ok = ok && batch.BindInt(pair(kIntColumn), i.ints.data(), i.validity.data()) == KOR_S_OK;
      ok =
          ok && batch.BindFloat(pair(kFloatColumn), f.floats.data(), f.validity.data()) == KOR_S_OK;
      ok = ok && batch.BindBool(pair(kBoolColumn), b.bools.data(), b.validity.data()) == KOR_S_OK;
      ok = ok && batch.BindTime(pair(kTimeColumn), t.seconds.data(), t.validity.data()) == KOR_S_OK;
      ok = ok && batch.BindString(pair(kStringColumn), s.offsets.data(), s.bytes.data(),
                                  s.validity.data()) == KOR_S_OK;
    }
    return ok;
  }
};

// Reads row `row` of the table, as a reader over the columns would: the
// pair's type number chooses the column, and a read of another type, or of
// a row that is not available, gives nothing.
class ColumnReader : public BBDIAttributeRead {
 public:
  explicit ColumnReader(const ColumnTable& table) : table_(table) {}
  std::int64_t row = 0;

  int ReadInt(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override {
    return Read(pair, kIntColumn, [&](const Column& c) { value = c.ints[row]; });
  }
  int ReadFloat(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
                float& value) override {
    return Read(pair, kFloatColumn, [&](const Column& c) { value = c.floats[row]; });
  }
  int ReadBool(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, int& value) override {
    return Read(pair, kBoolColumn, [&](const Column& c) { value = GetBit(c.bools, row); });
  }
  int ReadTime(const BBDOccurrence&, unsigned int, AttributeTypePair* pair,
               KORTime& value) override {
    return Read(pair, kTimeColumn,
                [&](const Column& c) { value = KORTime::FromEpochSeconds(c.seconds[row]); });
  }
  int ReadString(const BBDOccurrence&, unsigned int, AttributeTypePair* pair, const char*& value,
                 int& length) override {
    return Read(pair, kStringColumn, [&](const Column& c) {
      value = c.bytes.data() + c.offsets[row];
      length = c.offsets[row + 1] - c.offsets[row];
    });
  }
  int IsOfType(const BBDOccurrence&, unsigned int, BBDTypeInfo*, int&) override { return 0; }
  AttributeTypePair ResolvePair(const char*, int, unsigned int) override { return {}; }
  AttributeTypePair ResolveStringPair(const char*, int, unsigned int) override { return {}; }

 private:
  // Gives the pair's column to `deliver` and returns 1, or returns 0.
  template <class Deliver>
  int Read(const AttributeTypePair* pair, int type, Deliver deliver) const {
    if (pair == nullptr || pair->GetType() != type || pair->GetAttribute() < 0 ||
        pair->GetAttribute() >= kColumnAttributes) {
      return 0;
    }
    const Column& c = table_.of[type][pair->GetAttribute()];
    if (!GetBit(c.validity, row)) return 0;
    deliver(c);
    return 1;
  }
  const ColumnTable& table_;
};

}  // namespace idxbase_test

#endif  // IDXBASE_TESTS_FILTER_COLUMN_TABLE_H_
