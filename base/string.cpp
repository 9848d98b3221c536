#include <cstdio>
#include <string>

#include "base/run_compare.h"
#include "base/shared_record.h"
#include "idxbase/strings.h"
#include "idxbase/trace.h"

namespace {

using Record = idxbase::detail::SharedRecord<IDX_Base_StringRep>;

const unsigned char* Bytes(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

}  // namespace

IDX_Base_String::IDX_Base_String(const IDX_Base_String& other)
    : m_Rep(Record::Share(other.m_Rep)) {}

IDX_Base_String& IDX_Base_String::operator=(const IDX_Base_String& other) {
  Record::Assign(m_Rep, other.m_Rep);
  return *this;
}

IDX_Base_String::~IDX_Base_String() { Record::Release(m_Rep); }

void IDX_Base_String::SetData(const char* text, unsigned int length) {
  if (m_Rep != nullptr && m_Rep->data == text && m_Rep->size == length) return;
  Record::Fill(Record::Detach(m_Rep), text, length);
}

void IDX_Base_String::Clear() { SetData(nullptr, 0); }

const char* IDX_Base_String::GetData() const { return m_Rep == nullptr ? nullptr : m_Rep->data; }

unsigned int IDX_Base_String::GetLength() const { return m_Rep == nullptr ? 0 : m_Rep->size; }

IDX_Bool IDX_Base_String::SortCompare(const IDX_Base_String& other, short& result) const {
  result = 0;
  if (m_Rep == nullptr) {
    IDX_Base_Trace::Debug("IDX_Base_String.SortCompare.InvalidString");
    return IDX_False;
  }
  if (m_Rep == other.m_Rep) return IDX_True;
  result = idxbase::detail::CompareRuns(Bytes(m_Rep->data), m_Rep->size, Bytes(other.GetData()),
                                        other.GetLength());
  return IDX_True;
}

bool IDX_Base_String::operator!=(const IDX_Base_String& other) const {
  short result = 0;
  return SortCompare(other, result) == IDX_True && result != 0;
}

// The characters are not zero-terminated; a terminated copy is printed.
void IDX_Base_String::Dump() const {
  if (m_Rep == nullptr || m_Rep->data == nullptr || m_Rep->size == 0) return;
  const std::string text(m_Rep->data, m_Rep->size);
  std::printf("%s", text.c_str());
}
