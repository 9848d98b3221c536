#include "base/hexadecimal.h"

#include <new>

#include "idxbase/hashing.h"
#include "idxbase/trace.h"

namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

void ReportEmptyInput() {
  IDX_Base_Trace::Debug("[IDX_Base_Functions Info] NULL input data or 0 buffer size\n");
}

}  // namespace

namespace idxbase::detail {

void WriteHexa(const unsigned char* bytes, std::size_t count, char* text) {
  text[2 * count] = '\0';
  for (std::size_t i = 0; i < count; ++i) {
    text[2 * i] = kDigits[bytes[i] >> 4];
    text[2 * i + 1] = kDigits[bytes[i] & 15];
  }
}

}  // namespace idxbase::detail

KORStatus ConvertToHexa(const unsigned char* data, unsigned int length, char*& text) {
  if (data == nullptr || length == 0) {
    ReportEmptyInput();
    return KOR_S_FALSE;
  }
  text = nullptr;
  text = new (std::nothrow) char[2 * std::size_t{length} + 1];
  if (text == nullptr) {
    IDX_Base_Trace::Debug("[IDX_Base_Functions Error] Failed to allocate buffer");
    return KOR_E_FAIL;
  }
  idxbase::detail::WriteHexa(data, length, text);
  return KOR_S_OK;
}

KORStatus ConvertToHexaPreAlloc(const unsigned char* data, short length, char* text) {
  if (data == nullptr || length == 0) {
    ReportEmptyInput();
    return KOR_S_FALSE;
  }
  if (length < 0) return KOR_S_OK;
  idxbase::detail::WriteHexa(data, static_cast<std::size_t>(length), text);
  return KOR_S_OK;
}
