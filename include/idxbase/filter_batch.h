// Column-at-a-time evaluation of a compiled filter: the answers of `eval`
// for a batch of rows whose attributes are held as columns, plain arrays or
// Arrow arrays (C data interface).
#ifndef IDXBASE_FILTER_BATCH_H_
#define IDXBASE_FILTER_BATCH_H_

#include <cstdint>
#include <memory>

#include "idxbase/export.h"
#include "idxbase/filter_attributes.h"
#include "idxbase/filter_expressions.h"

// The Arrow C data interface structures, under the interface's own include
// guard, so that this header and Arrow's may be included in either order.
#ifndef ARROW_C_DATA_INTERFACE
#define ARROW_C_DATA_INTERFACE

#define ARROW_FLAG_DICTIONARY_ORDERED 1
#define ARROW_FLAG_NULLABLE 2
#define ARROW_FLAG_MAP_KEYS_SORTED 4

struct ArrowSchema {
  const char* format;
  const char* name;
  const char* metadata;
  int64_t flags;
  int64_t n_children;
  struct ArrowSchema** children;
  struct ArrowSchema* dictionary;
  void (*release)(struct ArrowSchema*);
  void* private_data;
};

struct ArrowArray {
  int64_t length;
  int64_t null_count;
  int64_t offset;
  int64_t n_buffers;
  int64_t n_children;
  const void** buffers;
  struct ArrowArray** children;
  struct ArrowArray* dictionary;
  void (*release)(struct ArrowArray*);
  void* private_data;
};

#endif  // ARROW_C_DATA_INTERFACE

namespace idxbase::detail {
class BatchProgram;
}  // namespace idxbase::detail

// Evaluates a compiled filter for rows 0 .. count-1 at once, reading each
// attribute from a column bound to its pair instead of through a reader.
// Row i's answer is what `eval` answers for an occurrence whose attributes
// are the columns' row i: 0 holds, 1 does not hold, 0x80004005 undecidable.
//
// Accepted trees (anything else makes Evaluate and Select fail):
// - the library's own classes exactly, not classes derived from them:
//   BBDComposedExpression (not, or, and; another operator is undecidable),
//   BBDNAExpression, BBDBasicExpression;
// - composed expressions with both sides present (one for a not), and
//   basic expressions whose operator has an evaluation (a missing side or
//   evaluation makes `eval` print a message for every row);
// - operands: the constants (BBDOperandIntConst, ...FloatConst,
//   ...BooleanConst, ...StringConst, ...TimeConst), BBDNAOperand, a null
//   operand, BBDOperandStringUser, BBDOperandSet whose elements are any of
//   these but a set (or null), and attribute operands built from a pair
//   (BBDOperandAttribute) or by BBDFilterParser. Attribute operands built
//   from names without a pair, multi-type operands (type paths) and set
//   elements that are attributes are refused.
// Constants, sets and user-string variables are read once per call, as
// they are then, so assignments between calls are seen.
//
// Columns: an attribute operand reading its own value type needs a column
// of that type bound to its pair (type and attribute numbers); a pair the
// tree does not read may be bound and is ignored. `validity` is an
// LSB-first bitmap, bit i set when row i is available; null means every
// row is. A row that is not available answers as the reader's "not
// available": the comparison is undecidable. Columns are not copied: the
// caller keeps them alive and unchanged while Evaluate or Select runs.
// Binding a pair again replaces its column.
//
// Thread safety: one thread at a time per object; the tree must not be
// evaluated, compiled or changed by another thread meanwhile. Unlike
// `eval`, the batch does not set the process-wide case switch.
class IDXBASE_API BBDFilterBatch {
 public:
  // Prepares `root` (a compiled tree, not owned: it must stay alive and
  // keep its shape while this object is used).
  explicit BBDFilterBatch(BBDExpression* root);
  ~BBDFilterBatch();
  BBDFilterBatch(const BBDFilterBatch&) = delete;
  BBDFilterBatch& operator=(const BBDFilterBatch&) = delete;

  // Each binds a column for the pair; KOR_S_OK, or KOR_E_FAIL (nothing
  // bound) when a required pointer is null. Strings: `offsets` holds
  // count + 1 entries, row i being bytes[offsets[i], offsets[i+1]). Bools:
  // `bits` is an LSB-first bitmap. Times: seconds since 1970-01-01 UTC.
  KORStatus BindInt(const AttributeTypePair& pair, const std::int32_t* values,
                    const std::uint8_t* validity);
  KORStatus BindFloat(const AttributeTypePair& pair, const float* values,
                      const std::uint8_t* validity);
  KORStatus BindBool(const AttributeTypePair& pair, const std::uint8_t* bits,
                     const std::uint8_t* validity);
  KORStatus BindTime(const AttributeTypePair& pair, const std::int64_t* seconds,
                     const std::uint8_t* validity);
  KORStatus BindString(const AttributeTypePair& pair, const std::int32_t* offsets,
                       const char* bytes, const std::uint8_t* validity);
  // An Arrow column, honouring its offset and null bitmap: formats "i"
  // int32, "f" float32, "g" float64 (narrowed to float as a reader would),
  // "b" bool, "u" utf8, "U" large utf8, "tss:" "tsm:" "tsu:" "tsn:"
  // timestamps (the whole second in which the instant falls, any time
  // zone), "tdD" date32 (midnight UTC). Another format, a dictionary, or a
  // malformed array: KOR_E_FAIL and nothing bound. Nothing is copied; the
  // array's length bounds the rows that may be evaluated.
  KORStatus BindArrow(const AttributeTypePair& pair, const ArrowSchema* schema,
                      const ArrowArray* array);

  // Answers for rows [0, count): results[i] is what `eval` answers for row
  // i. KOR_S_OK, or KOR_E_FAIL writing nothing when the tree is not
  // accepted, a column the tree reads is not bound (or is shorter than
  // `count`), count is negative or results is null.
  KORStatus Evaluate(std::int64_t count, KORStatus* results, bool caseSensitive);
  // The rows in [0, count) for which the filter holds, ascending, written
  // to `rows` (room for `count` entries); returns how many, or -1 on the
  // failures of Evaluate.
  std::int64_t Select(std::int64_t count, std::int64_t* rows, bool caseSensitive);

 private:
  std::unique_ptr<idxbase::detail::BatchProgram> m_Program;
};

#endif  // IDXBASE_FILTER_BATCH_H_
