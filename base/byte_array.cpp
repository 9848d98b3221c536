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
    : rep_(Record::Share(other.rep_)) {}

IDX_Base_ByteArray& IDX_Base_ByteArray::operator=(const IDX_Base_ByteArray& other) {
  Record::Assign(rep_, other.rep_);
  return *this;
}

IDX_Base_ByteArray::~IDX_Base_ByteArray() { Record::Release(rep_); }

void IDX_Base_ByteArray::SetData(const unsigned char* data, unsigned int size) {
  if (rep_ != nullptr && rep_->data == data && rep_->size == size) return;
  IDX_Base_ByteArrayRep& own = Record::Detach(rep_);
  own.hashKey = 0;
  Record::Fill(own, data, size);
}

void IDX_Base_ByteArray::Clear() { SetData(nullptr, 0); }

const unsigned char* IDX_Base_ByteArray::GetData() const {
  return rep_ == nullptr ? nullptr : rep_->data;
}

unsigned int IDX_Base_ByteArray::GetSize() const { return rep_ == nullptr ? 0 : rep_->size; }

// A zero key is not remembered: it is computed again at the next call.
unsigned int IDX_Base_ByteArray::GetHashKey() const {
  if (rep_ == nullptr) return 0;
  if (rep_->hashKey == 0 && HasBytes(rep_)) {
    rep_->hashKey = idxbase::detail::XorFoldHashKey(rep_->data, rep_->size);
  }
  return rep_->hashKey;
}

IDX_Bool IDX_Base_ByteArray::SortCompare(const IDX_Base_ByteArray& other, short& result) const {
  result = 0;
  if (rep_ == nullptr) {
    IDX_Base_Trace::Debug("IDX_Base_ByteArray.SortCompare.InvalidArray");
    return IDX_False;
  }
  if (rep_ == other.rep_) return IDX_True;
  result = idxbase::detail::CompareRuns(rep_->data, rep_->size, other.GetData(), other.GetSize());
  return IDX_True;
}

void IDX_Base_ByteArray::DumpAsHexa(char*& text) const {
  if (!HasBytes(rep_)) return;
  text = new char[2 * std::size_t{rep_->size} + 1];
  idxbase::detail::WriteHexa(rep_->data, rep_->size, text);
}

void IDX_Base_ByteArray::DumpAsHexa() const {
  char* text = nullptr;
  DumpAsHexa(text);
  if (text == nullptr) return;
  std::printf("[%s]", text);
  delete[] text;
}

void IDX_Base_ByteArray::DumpPrintable() const {
  if (!HasBytes(rep_)) return;
  std::string line = "[";
  for (unsigned int i = 0; i < rep_->size; ++i) {
    line += IsPrintable(rep_->data[i]) ? static_cast<char>(rep_->data[i]) : '.';
  }
  line += "]";
  std::fputs(line.c_str(), stdout);
}
