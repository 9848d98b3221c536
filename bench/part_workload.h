// The filter benchmarks' workload: one million synthetic parts, held as
// records and as columns, and the predicate
//   ( ( ( mass BETWEEN 10.0 50.0 ) & ( name LIKE "*12*" ) ) | ( count IN { 1 2 3 } ) )
// counted by a compiled idxbase tree (per record, and column-at-a-time),
// by hand-written loops over the records and over the columns, and by
// SQLite over an in-memory table. Every way must count the same matches;
// each run reports the count and the time per record.
#ifndef IDXBASE_BENCH_PART_WORKLOAD_H_
#define IDXBASE_BENCH_PART_WORKLOAD_H_
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "idxbase/filter_attributes.h"
#include "idxbase/filter_batch.h"
#include "idxbase/filter_expressions.h"

namespace {

constexpr unsigned kRecords = 1000000;
constexpr int kNameLength = 11;  // "part-%06u" below one million

// Attribute numbers of the reader's pairs.
enum Field : int { kId = 0, kCount = 1, kMass = 2, kReleased = 3, kName = 4 };

struct Part {
  unsigned id;
  int count;   // 0..19
  float mass;  // 0..100
  bool released;
  char name[kNameLength + 1];
};

std::vector<Part> MakeParts() {
  std::vector<Part> parts(kRecords);
  std::uint64_t state = 0x9E3779B97F4A7C15ull;  // xorshift64, fixed seed
  for (unsigned i = 0; i < kRecords; ++i) {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    Part& part = parts[i];
    part.id = i;
    part.count = static_cast<int>(state % 20);
    part.mass = static_cast<float>((state >> 8) % 100001) / 1000.0f;
    part.released = ((state >> 40) & 1) != 0;
    std::snprintf(part.name, sizeof part.name, "part-%06u", i);
  }
  return parts;
}

// The occurrence under evaluation: one record of the array.
class PartOccurrence : public BBDOccurrence {
 public:
  unsigned int GetLevelKey(unsigned int) const override { return 0; }
  unsigned int GetLevelCount() const override { return 1; }

  unsigned int index = 0;
};

// Reads the fields of the current record; the pair's attribute number is
// the field.
class PartReader : public BBDIAttributeRead {
 public:
  explicit PartReader(const Part* parts) : parts_(parts) {}

  int ReadInt(const BBDOccurrence& o, unsigned int, AttributeTypePair* pair, int& value) override {
    const Part& part = Of(o);
    switch (pair->GetAttribute()) {
      case kId:
        value = static_cast<int>(part.id);
        return 1;
      case kCount:
        value = part.count;
        return 1;
      default:
        return 0;
    }
  }
  int ReadFloat(const BBDOccurrence& o, unsigned int, AttributeTypePair* pair,
                float& value) override {
    if (pair->GetAttribute() != kMass) return 0;
    value = Of(o).mass;
    return 1;
  }
  int ReadString(const BBDOccurrence& o, unsigned int, AttributeTypePair* pair, const char*& value,
                 int& length) override {
    if (pair->GetAttribute() != kName) return 0;
    value = Of(o).name;
    length = kNameLength;
    return 1;
  }
  int ReadBool(const BBDOccurrence& o, unsigned int, AttributeTypePair* pair, int& value) override {
    if (pair->GetAttribute() != kReleased) return 0;
    value = Of(o).released ? 1 : 0;
    return 1;
  }
  int ReadTime(const BBDOccurrence&, unsigned int, AttributeTypePair*, KORTime&) override {
    return 0;
  }
  int IsOfType(const BBDOccurrence&, unsigned int, BBDTypeInfo*, int&) override { return 0; }
  AttributeTypePair ResolvePair(const char*, int, unsigned int) override { return {}; }
  AttributeTypePair ResolveStringPair(const char*, int, unsigned int) override { return {}; }

 private:
  const Part& Of(const BBDOccurrence& o) const {
    return parts_[static_cast<const PartOccurrence&>(o).index];
  }

  const Part* parts_;
};

BBDOperand* Field(Field field, IDX_Filter_ValueType type) {
  return new BBDOperandAttribute(new AttributeTypePair(0, field), type);
}

BBDExpression* BuildFilter() {
  auto* counts = new BBDOperandSet();
  for (int value : {1, 2, 3}) counts->Append(new BBDOperandIntConst(value));
  BBDExpression* root = new BBDComposedExpression(
      IDX_Filter_Op_Or,
      new BBDComposedExpression(
          IDX_Filter_Op_And,
          new BBDBasicExpression(IDX_Filter_Op_BetweenFloat, Field(kMass, IDX_Filter_Type_Float),
                                 new BBDOperandFloatConst(10.0f), new BBDOperandFloatConst(50.0f)),
          new BBDBasicExpression(IDX_Filter_Op_LikeString, Field(kName, IDX_Filter_Type_String),
                                 new BBDOperandStringConst(strdup("*12*")))),
      new BBDBasicExpression(IDX_Filter_Op_InInt, Field(kCount, IDX_Filter_Type_Int), counts));
  BBDExpression::Compile(root);
  return root;
}

bool Contains12(const char* text, int length) {
  for (int i = 0; i + 1 < length; ++i) {
    if (text[i] == '1' && text[i + 1] == '2') return true;
  }
  return false;
}

// Everything the three ways share, built once, outside the timings.
struct Workload {
  Workload();
  ~Workload();

  std::int64_t CountIdxbase();
  std::int64_t CountByHand() const;
  std::int64_t CountSQLite();
  std::int64_t CountBatch();
  std::int64_t CountByHandOverColumns() const;

  std::vector<Part> parts = MakeParts();
  std::unique_ptr<BBDExpression> filter{BuildFilter()};
  PartReader reader{parts.data()};
  PartOccurrence occurrence;
  sqlite3* db = nullptr;
  sqlite3_stmt* query = nullptr;
  std::int64_t expected = 0;  // the hand-written loop's count
  std::string error;          // set when the setup failed or the ways disagree
  // The same parts as columns, and the column evaluator bound to them.
  std::vector<float> masses;
  std::vector<std::int32_t> counts;
  std::vector<std::int32_t> nameOffsets{0};
  std::string nameBytes;
  BBDFilterBatch batch{filter.get()};
  std::vector<std::int64_t> selected = std::vector<std::int64_t>(kRecords);
};

Workload::Workload() {
  const char* const kCreate =
      "CREATE TABLE parts(id INTEGER PRIMARY KEY, count INTEGER, mass REAL, released INTEGER, "
      "name TEXT)";
  sqlite3_stmt* insert = nullptr;
  bool ok = sqlite3_open(":memory:", &db) == SQLITE_OK &&
            sqlite3_exec(db, kCreate, nullptr, nullptr, nullptr) == SQLITE_OK &&
            sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr) == SQLITE_OK &&
            sqlite3_prepare_v2(db, "INSERT INTO parts VALUES(?, ?, ?, ?, ?)", -1, &insert,
                               nullptr) == SQLITE_OK;
  for (unsigned i = 0; ok && i < kRecords; ++i) {
    const Part& part = parts[i];
    sqlite3_bind_int64(insert, 1, part.id);
    sqlite3_bind_int(insert, 2, part.count);
    sqlite3_bind_double(insert, 3, static_cast<double>(part.mass));  // exactly the float
    sqlite3_bind_int(insert, 4, part.released ? 1 : 0);
    sqlite3_bind_text(insert, 5, part.name, kNameLength, SQLITE_STATIC);
    ok = sqlite3_step(insert) == SQLITE_DONE && sqlite3_reset(insert) == SQLITE_OK;
  }
  sqlite3_finalize(insert);
  ok = ok && sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK &&
       sqlite3_prepare_v2(db,
                          "SELECT count(*) FROM parts WHERE (mass BETWEEN 10 AND 50 AND name GLOB "
                          "'*12*') OR count IN (1,2,3)",
                          -1, &query, nullptr) == SQLITE_OK;
  if (!ok) {
    error = std::string("SQLite setup failed: ") + sqlite3_errmsg(db);
    return;
  }
  for (const Part& part : parts) {
    masses.push_back(part.mass);
    counts.push_back(part.count);
    nameBytes.append(part.name, kNameLength);
    nameOffsets.push_back(static_cast<std::int32_t>(nameBytes.size()));
  }
  batch.BindFloat(AttributeTypePair(0, kMass), masses.data(), nullptr);
  batch.BindInt(AttributeTypePair(0, kCount), counts.data(), nullptr);
  batch.BindString(AttributeTypePair(0, kName), nameOffsets.data(), nameBytes.data(), nullptr);
  expected = CountByHand();
  const std::int64_t counted[] = {CountIdxbase(), CountSQLite(), CountBatch(),
                                  CountByHandOverColumns()};
  for (const std::int64_t count : counted) {
    if (count != expected) {
      error = "counts differ: hand-written " + std::to_string(expected) + ", idxbase " +
              std::to_string(counted[0]) + ", SQLite " + std::to_string(counted[1]) + ", batch " +
              std::to_string(counted[2]) + ", columns by hand " + std::to_string(counted[3]);
    }
  }
}

std::int64_t Workload::CountBatch() { return batch.Select(kRecords, selected.data(), true); }

// The same evaluation order as over the records: both sides of the and.
std::int64_t Workload::CountByHandOverColumns() const {
  std::int64_t matches = 0;
  for (unsigned i = 0; i < kRecords; ++i) {
    const float mass = masses[i];
    const bool inRange = mass >= 10.0f && mass <= 50.0f;
    bool has12 = Contains12(nameBytes.data() + nameOffsets[i], nameOffsets[i + 1] - nameOffsets[i]);
    benchmark::DoNotOptimize(has12);
    const int count = counts[i];
    if ((inRange && has12) || count == 1 || count == 2 || count == 3) ++matches;
  }
  return matches;
}

Workload::~Workload() {
  sqlite3_finalize(query);
  sqlite3_close(db);
}

std::int64_t Workload::CountIdxbase() {
  std::int64_t matches = 0;
  for (unsigned i = 0; i < kRecords; ++i) {
    occurrence.index = i;
    if (filter->eval(occurrence, 0, reader, true) == IDX_FILTER_HOLDS) ++matches;
  }
  return matches;
}

std::int64_t Workload::CountByHand() const {
  std::int64_t matches = 0;
  for (const Part& part : parts) {
    // The engine's and evaluates its second side even when the first does
    // not hold, so the loop runs the LIKE on every record too; its or stops
    // after a first side that holds.
    const bool inRange = part.mass >= 10.0f && part.mass <= 50.0f;
    bool has12 = Contains12(part.name, kNameLength);
    benchmark::DoNotOptimize(has12);
    if ((inRange && has12) || part.count == 1 || part.count == 2 || part.count == 3) ++matches;
  }
  return matches;
}

std::int64_t Workload::CountSQLite() {
  sqlite3_reset(query);
  if (sqlite3_step(query) != SQLITE_ROW) return -1;
  return sqlite3_column_int64(query, 0);
}

Workload& Shared() {
  static Workload workload;
  return workload;
}

template <class Count>
void Run(benchmark::State& state, Count count) {
  Workload& workload = Shared();
  if (!workload.error.empty()) {
    state.SkipWithError(workload.error.c_str());
    return;
  }
  std::int64_t matches = 0;
  for (auto _ : state) {
    matches = count(workload);
    benchmark::DoNotOptimize(matches);
  }
  if (matches != workload.expected) {
    state.SkipWithError("the count differs from the hand-written loop's");
    return;
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kRecords);
  state.counters["matches"] = static_cast<double>(matches);
  // Records per second, inverted: the time per record.
  state.counters["per_record"] = benchmark::Counter(
      kRecords, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

}  // namespace

#endif  // IDXBASE_BENCH_PART_WORKLOAD_H_
