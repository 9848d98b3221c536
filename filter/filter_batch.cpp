#include "idxbase/filter_batch.h"

#include "filter/batch_program.h"

using idxbase::detail::BatchColumn;
using idxbase::detail::ColumnLayout;

namespace {

BatchColumn Plain(IDX_Filter_ValueType type, ColumnLayout layout, const void* values,
                  const std::uint8_t* validity) {
  BatchColumn column;
  column.type = type;
  column.layout = layout;
  column.values = values;
  column.validity = validity;
  return column;
}

KORStatus StatusOf(std::uint8_t code) {
  return code == 0 ? IDX_FILTER_HOLDS : (code == 1 ? IDX_FILTER_DOES_NOT : IDX_FILTER_UNDECIDABLE);
}

}  // namespace

BBDFilterBatch::BBDFilterBatch(BBDExpression* root)
    : m_Program(std::make_unique<idxbase::detail::BatchProgram>(root)) {}

BBDFilterBatch::~BBDFilterBatch() = default;

KORStatus BBDFilterBatch::BindInt(const AttributeTypePair& pair, const std::int32_t* values,
                                  const std::uint8_t* validity) {
  if (values == nullptr) return KOR_E_FAIL;
  m_Program->Bind(pair, Plain(IDX_Filter_Type_Int, ColumnLayout::kInt32, values, validity));
  return KOR_S_OK;
}

KORStatus BBDFilterBatch::BindFloat(const AttributeTypePair& pair, const float* values,
                                    const std::uint8_t* validity) {
  if (values == nullptr) return KOR_E_FAIL;
  m_Program->Bind(pair, Plain(IDX_Filter_Type_Float, ColumnLayout::kFloat32, values, validity));
  return KOR_S_OK;
}

KORStatus BBDFilterBatch::BindBool(const AttributeTypePair& pair, const std::uint8_t* bits,
                                   const std::uint8_t* validity) {
  if (bits == nullptr) return KOR_E_FAIL;
  m_Program->Bind(pair, Plain(IDX_Filter_Type_Boolean, ColumnLayout::kBits, bits, validity));
  return KOR_S_OK;
}

KORStatus BBDFilterBatch::BindTime(const AttributeTypePair& pair, const std::int64_t* seconds,
                                   const std::uint8_t* validity) {
  if (seconds == nullptr) return KOR_E_FAIL;
  m_Program->Bind(pair, Plain(IDX_Filter_Type_Time, ColumnLayout::kSeconds, seconds, validity));
  return KOR_S_OK;
}

KORStatus BBDFilterBatch::BindString(const AttributeTypePair& pair, const std::int32_t* offsets,
                                     const char* bytes, const std::uint8_t* validity) {
  if (offsets == nullptr || bytes == nullptr) return KOR_E_FAIL;
  BatchColumn column = Plain(IDX_Filter_Type_String, ColumnLayout::kUtf8, offsets, validity);
  column.bytes = bytes;
  m_Program->Bind(pair, column);
  return KOR_S_OK;
}

KORStatus BBDFilterBatch::BindArrow(const AttributeTypePair& pair, const ArrowSchema* schema,
                                    const ArrowArray* array) {
  BatchColumn column;
  if (schema == nullptr || array == nullptr ||
      !idxbase::detail::ArrowColumn(*schema, *array, column)) {
    return KOR_E_FAIL;
  }
  m_Program->Bind(pair, column);
  return KOR_S_OK;
}

KORStatus BBDFilterBatch::Evaluate(std::int64_t count, KORStatus* results, bool caseSensitive) {
  if (count < 0 || (results == nullptr && count > 0)) return KOR_E_FAIL;
  const bool ran = m_Program->Run(count, caseSensitive,
                                  [results](std::int64_t first, int n, const std::uint8_t* codes) {
                                    for (int i = 0; i < n; ++i)
                                      results[first + i] = StatusOf(codes[i]);
                                  });
  return ran ? KOR_S_OK : KOR_E_FAIL;
}

std::int64_t BBDFilterBatch::Select(std::int64_t count, std::int64_t* rows, bool caseSensitive) {
  if (count < 0 || (rows == nullptr && count > 0)) return -1;
  std::int64_t selected = 0;
  const bool ran =
      m_Program->Run(count, caseSensitive,
                     [rows, &selected](std::int64_t first, int n, const std::uint8_t* codes) {
                       for (int i = 0; i < n; ++i) {
                         rows[selected] = first + i;
                         selected += codes[i] == 0 ? 1 : 0;
                       }
                     });
  return ran ? selected : -1;
}
