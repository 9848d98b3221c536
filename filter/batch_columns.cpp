#include "filter/batch_columns.h"

#include <climits>
#include <cstring>

namespace idxbase::detail {
namespace {

bool Bit(const std::uint8_t* bits, std::int64_t position) {
  return ((bits[position >> 3] >> (position & 7)) & 1) != 0;
}

// The availability of the rows: every row's without a bitmap, else the
// bitmap's bits spread into `valid`.
const std::uint8_t* ReadValidity(const BatchColumn& column, std::int64_t first, int n,
                                 std::uint8_t* valid) {
  if (column.validity == nullptr) return AllAvailable();
  const std::int64_t start = column.offset + first;
  for (int i = 0; i < n; ++i) valid[i] = Bit(column.validity, start + i) ? 1 : 0;
  return valid;
}

template <class Stored>
const Stored* ValuesFrom(const BatchColumn& column, std::int64_t first) {
  return static_cast<const Stored*>(column.values) + column.offset + first;
}

// Floor division, so that an instant before 1970 falls in the second that
// contains it.
std::int64_t WholeSeconds(std::int64_t ticks, std::int64_t ticksPerSecond) {
  std::int64_t seconds = ticks / ticksPerSecond;
  if (ticks % ticksPerSecond != 0 && ticks < 0) --seconds;
  return seconds;
}

// Offsets that go backwards, or a string longer than an int can count,
// deliver no value rather than a misread one: such rows are marked not
// available in `valid` (copied into `scratch` first when it is shared).
template <class Offset>
const std::uint8_t* MarkBadStrings(const Offset* offsets, int n, const std::uint8_t* valid,
                                   std::uint8_t* scratch) {
  bool bad = false;
  for (int i = 0; i < n; ++i) {
    const Offset length = offsets[i + 1] - offsets[i];
    bad |= length < 0 || length > INT_MAX;
  }
  if (!bad) return valid;
  if (valid != scratch) std::memcpy(scratch, valid, static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) {
    const Offset length = offsets[i + 1] - offsets[i];
    if (length < 0 || length > INT_MAX) scratch[i] = 0;
  }
  return scratch;
}

// The size of one time unit of an Arrow timestamp format ("tss:", ...).
bool TicksPerSecond(const char* format, std::int64_t& ticks) {
  if (std::strncmp(format, "ts", 2) != 0 || format[2] == '\0' || format[3] != ':') return false;
  switch (format[2]) {
    case 's':
      ticks = 1;
      return true;
    case 'm':
      ticks = 1000;
      return true;
    case 'u':
      ticks = 1000000;
      return true;
    case 'n':
      ticks = 1000000000;
      return true;
    default:
      return false;
  }
}

// Sets the layout and type for `format`, and how many buffers it needs.
bool LayoutOf(const char* format, BatchColumn& column, int& buffers) {
  struct Plain {
    const char* format;
    ColumnLayout layout;
    IDX_Filter_ValueType type;
    int buffers;
  };
  static const Plain kPlain[] = {
      {"i", ColumnLayout::kInt32, IDX_Filter_Type_Int, 2},
      {"f", ColumnLayout::kFloat32, IDX_Filter_Type_Float, 2},
      {"g", ColumnLayout::kFloat64, IDX_Filter_Type_Float, 2},
      {"b", ColumnLayout::kBits, IDX_Filter_Type_Boolean, 2},
      {"u", ColumnLayout::kUtf8, IDX_Filter_Type_String, 3},
      {"U", ColumnLayout::kLargeUtf8, IDX_Filter_Type_String, 3},
      {"tdD", ColumnLayout::kDate32, IDX_Filter_Type_Time, 2},
  };
  for (const Plain& plain : kPlain) {
    if (std::strcmp(format, plain.format) == 0) {
      column.layout = plain.layout;
      column.type = plain.type;
      buffers = plain.buffers;
      return true;
    }
  }
  if (!TicksPerSecond(format, column.ticksPerSecond)) return false;
  column.layout = ColumnLayout::kTimestamp;
  column.type = IDX_Filter_Type_Time;
  buffers = 2;
  return true;
}

}  // namespace

const std::uint8_t* AllAvailable() {
  static const auto* const kOnes = [] {
    static std::uint8_t ones[kBatchChunk];
    std::memset(ones, 1, sizeof ones);
    return ones;
  }();
  return kOnes;
}

ChunkView ViewChunk(const BatchColumn& column, std::int64_t first, int n, ChunkOf<int>& scratch) {
  return {ValuesFrom<std::int32_t>(column, first), ReadValidity(column, first, n, scratch.valid)};
}

ChunkView ViewChunk(const BatchColumn& column, std::int64_t first, int n, ChunkOf<float>& scratch) {
  const std::uint8_t* valid = ReadValidity(column, first, n, scratch.valid);
  if (column.layout == ColumnLayout::kFloat32) return {ValuesFrom<float>(column, first), valid};
  const double* values = ValuesFrom<double>(column, first);
  for (int i = 0; i < n; ++i) scratch.values[i] = static_cast<float>(values[i]);
  return {scratch.values, valid};
}

ChunkView ViewChunk(const BatchColumn& column, std::int64_t first, int n, ChunkOf<bool>& scratch) {
  const auto* bits = static_cast<const std::uint8_t*>(column.values);
  const std::int64_t start = column.offset + first;
  for (int i = 0; i < n; ++i) scratch.values[i] = Bit(bits, start + i);
  return {scratch.values, ReadValidity(column, first, n, scratch.valid)};
}

ChunkView ViewChunk(const BatchColumn& column, std::int64_t first, int n,
                    ChunkOf<std::int64_t>& scratch) {
  const std::uint8_t* valid = ReadValidity(column, first, n, scratch.valid);
  switch (column.layout) {
    case ColumnLayout::kDate32: {
      const std::int32_t* days = ValuesFrom<std::int32_t>(column, first);
      for (int i = 0; i < n; ++i) scratch.values[i] = std::int64_t{days[i]} * 86400;
      return {scratch.values, valid};
    }
    case ColumnLayout::kTimestamp: {
      const std::int64_t* ticks = ValuesFrom<std::int64_t>(column, first);
      for (int i = 0; i < n; ++i) {
        scratch.values[i] = WholeSeconds(ticks[i], column.ticksPerSecond);
      }
      return {scratch.values, valid};
    }
    default:
      return {ValuesFrom<std::int64_t>(column, first), valid};
  }
}

ChunkView ViewChunk(const BatchColumn& column, std::int64_t first, int n,
                    ChunkOf<StringValue>& scratch, StringRows& rows) {
  const std::uint8_t* valid = ReadValidity(column, first, n, scratch.valid);
  rows = StringRows{};
  rows.bytes = column.bytes;
  rows.large = column.layout == ColumnLayout::kLargeUtf8;
  if (rows.large) {
    rows.offsets = ValuesFrom<std::int64_t>(column, first);
    valid = MarkBadStrings(ValuesFrom<std::int64_t>(column, first), n, valid, scratch.valid);
  } else {
    rows.offsets = ValuesFrom<std::int32_t>(column, first);
    valid = MarkBadStrings(ValuesFrom<std::int32_t>(column, first), n, valid, scratch.valid);
  }
  return {&rows, valid};
}

bool ArrowColumn(const ArrowSchema& schema, const ArrowArray& array, BatchColumn& column) {
  BatchColumn result;
  int buffers = 0;
  if (schema.format == nullptr || schema.dictionary != nullptr || array.dictionary != nullptr ||
      !LayoutOf(schema.format, result, buffers)) {
    return false;
  }
  if (array.length < 0 || array.offset < 0 || array.n_buffers != buffers ||
      array.buffers == nullptr) {
    return false;
  }
  // A null bitmap may be left out only when no row is null.
  if (array.buffers[0] == nullptr && array.null_count != 0) return false;
  for (int b = 1; b < buffers; ++b) {
    if (array.buffers[b] == nullptr && array.length > 0) return false;
  }
  result.validity = static_cast<const std::uint8_t*>(array.buffers[0]);
  result.values = array.buffers[1];
  if (buffers == 3) result.bytes = static_cast<const char*>(array.buffers[2]);
  result.offset = array.offset;
  result.length = array.length;
  column = result;
  return true;
}

}  // namespace idxbase::detail
