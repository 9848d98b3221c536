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

IDX_Base_String::IDX_Base_String(const IDX_Base_String& other) : rep_(Record::Share(other.rep_)) {}

IDX_Base_String& IDX_Base_String::operator=(const IDX_Base_String& other) {
  Record::Assign(rep_, other.rep_);
  return *this;
}

IDX_Base_String::~IDX_Base_String() { Record::Release(rep_); }

void IDX_Base_String::SetData(const char* text, unsigned int length) {
  if (rep_ != nullptr && rep_->data == text && rep_->size == length) return;
  Record::Fill(Record::Detach(rep_), text, length);
}

void IDX_Base_String::Clear() { SetData(nullptr, 0); }

const char* IDX_Base_String::GetData() const { return rep_ == nullptr ? nullptr : rep_->data; }

unsigned int IDX_Base_String::GetLength() const { return rep_ == nullptr ? 0 : rep_->size; }

IDX_Bool IDX_Base_String::SortCompare(const IDX_Base_String& other, short& result) const {
  result = 0;
  if (rep_ == nullptr) {
    IDX_Base_Trace::Debug("IDX_Base_String.SortCompare.InvalidString");
    return IDX_False;
  }
  if (rep_ == other.rep_) return IDX_True;
  result = idxbase::detail::CompareRuns(Bytes(rep_->data), rep_->size, Bytes(other.GetData()),
                                        other.GetLength());
  return IDX_True;
}

bool IDX_Base_String::operator!=(const IDX_Base_String& other) const {
  short result = 0;
  return SortCompare(other, result) == IDX_True && result != 0;
}

// The characters are not zero-terminated; a terminated copy is printed.
void IDX_Base_String::Dump() const {
  if (rep_ == nullptr || rep_->data == nullptr || rep_->size == 0) return;
  const std::string text(rep_->data, rep_->size);
  std::printf("%s", text.c_str());
}
