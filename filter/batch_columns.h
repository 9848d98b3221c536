// The columns of the column evaluator: where a bound column's values are,
// and how a chunk of its rows is read into plain arrays of the value type
// that comparisons use.
#ifndef IDXBASE_FILTER_BATCH_COLUMNS_H_
#define IDXBASE_FILTER_BATCH_COLUMNS_H_

#include <cstdint>

#include "idxbase/filter_batch.h"
#include "idxbase/filter_operands.h"

namespace idxbase::detail {

// Rows are evaluated this many at a time, so that a chunk's columns and
// intermediate answers stay in the first-level cache.
constexpr int kBatchChunk = 2048;

// How a column stores its values.
enum class ColumnLayout : std::uint8_t {
  kInt32,      // int32 values
  kFloat32,    // float values
  kFloat64,    // double values, narrowed to float when read
  kBits,       // LSB-first bitmap of booleans
  kSeconds,    // int64 seconds
  kTimestamp,  // int64 ticks of 1 / `ticksPerSecond` second
  kDate32,     // int32 days since 1970-01-01
  kUtf8,       // int32 offsets into bytes
  kLargeUtf8,  // int64 offsets into bytes
};

// A bound column. Positions are shifted by `offset` rows (Arrow's array
// offset) in the values, the offsets and the validity bitmap alike.
struct BatchColumn {
  IDX_Filter_ValueType type = IDX_Filter_Type_NA;  // what it delivers
  ColumnLayout layout = ColumnLayout::kInt32;
  const void* values = nullptr;  // values, bits or string offsets
  const char* bytes = nullptr;   // string bytes
  const std::uint8_t* validity = nullptr;
  std::int64_t offset = 0;
  std::int64_t length = -1;  // rows available; -1 when the caller did not say
  std::int64_t ticksPerSecond = 1;
};

// One chunk of a column read as `Value` (int, float, bool, KORTime-seconds
// as std::int64_t, StringValue), with one availability byte per row.
template <class Value>
struct ChunkOf {
  Value values[kBatchChunk];
  std::uint8_t valid[kBatchChunk];
};

// The strings of a chunk, row by row: laid out as values (a constant
// repeated), or read from a column's offsets and bytes when asked, so that
// rows no comparison looks at cost nothing.
struct StringRows {
  const StringValue* values = nullptr;
  const void* offsets = nullptr;  // int32, or int64 when `large`
  const char* bytes = nullptr;
  bool large = false;

  StringValue operator[](int i) const {
    if (values != nullptr) return values[i];
    if (large) {
      const auto* o = static_cast<const std::int64_t*>(offsets);
      return {bytes + o[i], static_cast<int>(o[i + 1] - o[i])};
    }
    const auto* o = static_cast<const std::int32_t*>(offsets);
    return {bytes + o[i], o[i + 1] - o[i]};
  }
};

// Where rows [first, first + n) of a column are, as values (StringRows
// for strings) and availability bytes.
struct ChunkView {
  const void* values;
  const std::uint8_t* valid;
};

// Rows [first, first + n) of `column` (n <= kBatchChunk): in place when the
// column stores exactly what comparisons read, else read into `scratch`.
ChunkView ViewChunk(const BatchColumn& column, std::int64_t first, int n, ChunkOf<int>& scratch);
ChunkView ViewChunk(const BatchColumn& column, std::int64_t first, int n, ChunkOf<float>& scratch);
ChunkView ViewChunk(const BatchColumn& column, std::int64_t first, int n, ChunkOf<bool>& scratch);
ChunkView ViewChunk(const BatchColumn& column, std::int64_t first, int n,
                    ChunkOf<std::int64_t>& scratch);
ChunkView ViewChunk(const BatchColumn& column, std::int64_t first, int n,
                    ChunkOf<StringValue>& scratch, StringRows& rows);

// kBatchChunk availability bytes of 1.
const std::uint8_t* AllAvailable();

// The column that an Arrow array describes, or false when its format,
// buffers or length are not usable.
bool ArrowColumn(const ArrowSchema& schema, const ArrowArray& array, BatchColumn& column);

}  // namespace idxbase::detail

#endif  // IDXBASE_FILTER_BATCH_COLUMNS_H_
