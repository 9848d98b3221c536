#include <cstdio>
#include <string>

#include "base/byte_fold.h"
#include "base/hexadecimal.h"
#include "base/run_compare.h"
#include "base/shared_record.h"
#include "idxbase/byte_runs.h"
#include "idxbase/trace.h"

namespace {

using Record = idxbase::detail::SharedRecord<IDX_Base_ByteArrayRep>;

bool HasBytes(const IDX_Base_ByteArrayRep* rep) {
  return rep != nullptr && rep->data != nullptr && rep->size != 0;
}

bool IsPrintable(unsigned char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9');
}

}  // namespace

IDX_Base_ByteArray::IDX_Base_ByteArray(const IDX_Base_ByteArray& other)
    : m_Rep(Record::Share(other.m_Rep)) {}

IDX_Base_ByteArray& IDX_Base_ByteArray::operator=(const IDX_Base_ByteArray& other) {
  Record::Assign(m_Rep, other.m_Rep);
  return *this;
}

IDX_Base_ByteArray::~IDX_Base_ByteArray() { Record::Release(m_Rep); }

void IDX_Base_ByteArray::SetData(const unsigned char* data, unsigned int size) {
  if (m_Rep != nullptr && m_Rep->data == data && m_Rep->size == size) return;
  IDX_Base_ByteArrayRep& own = Record::Detach(m_Rep);
  own.hashKey = 0;
  Record::Fill(own, data, size);
}

void IDX_Base_ByteArray::Clear() { SetData(nullptr, 0); }

const unsigned char* IDX_Base_ByteArray::GetData() const {
  return m_Rep == nullptr ? nullptr : m_Rep->data;
}

unsigned int IDX_Base_ByteArray::GetSize() const { return m_Rep == nullptr ? 0 : m_Rep->size; }

// A zero key is not remembered: it is computed again at the next call.
unsigned int IDX_Base_ByteArray::GetHashKey() const {
  if (m_Rep == nullptr) return 0;
  if (m_Rep->hashKey == 0 && HasBytes(m_Rep)) {
    m_Rep->hashKey = idxbase::detail::XorFoldHashKey(m_Rep->data, m_Rep->size);
  }
  return m_Rep->hashKey;
}

IDX_Bool IDX_Base_ByteArray::SortCompare(const IDX_Base_ByteArray& other, short& result) const {
  result = 0;
  if (m_Rep == nullptr) {
    IDX_Base_Trace::Debug("IDX_Base_ByteArray.SortCompare.InvalidArray");
    return IDX_False;
  }
  if (m_Rep == other.m_Rep) return IDX_True;
  result = idxbase::detail::CompareRuns(m_Rep->data, m_Rep->size, other.GetData(), other.GetSize());
  return IDX_True;
}

void IDX_Base_ByteArray::DumpAsHexa(char*& text) const {
  if (!HasBytes(m_Rep)) return;
  text = new char[2 * std::size_t{m_Rep->size} + 1];
  idxbase::detail::WriteHexa(m_Rep->data, m_Rep->size, text);
}

void IDX_Base_ByteArray::DumpAsHexa() const {
  char* text = nullptr;
  DumpAsHexa(text);
  if (text == nullptr) return;
  std::printf("[%s]", text);
  delete[] text;
}

void IDX_Base_ByteArray::DumpPrintable() const {
  if (!HasBytes(m_Rep)) return;
  std::string line = "[";
  for (unsigned int i = 0; i < m_Rep->size; ++i) {
    line += IsPrintable(m_Rep->data[i]) ? static_cast<char>(m_Rep->data[i]) : '.';
  }
  line += "]";
  std::fputs(line.c_str(), stdout);
}
