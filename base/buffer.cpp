#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "base/shared_record.h"
#include "idxbase/byte_runs.h"

namespace {

using Record = idxbase::detail::SharedRecord<IDX_Base_BufferRep>;

// Gives the handle a record of its own that owns its bytes, and lets
// `write` fill it. Bytes that the record referred to are forgotten, never
// written or released; storage that it held under them is released once
// `write` has run, since the write may read from it.
template <typename Write>
void WriteOwned(IDX_Base_BufferRep*& rep, const Write& write) {
  IDX_Base_BufferRep& own = Record::Detach(rep);
  unsigned char* held = nullptr;
  if (own.ownsData != 1) {
    held = own.held;
    own.data = nullptr;
    own.capacity = 0;
    own.ownsData = 1;
    own.held = nullptr;
    own.heldCapacity = 0;
  }
  write(own);
  std::free(held);
}

// Switches a private record to the caller's bytes. The storage that the
// record owns, or holds under the bytes it referred to so far, is kept
// while the new bytes lie inside it (releasing it would release them) and
// released otherwise.
void Refer(IDX_Base_BufferRep& rep, const unsigned char* data, unsigned int size) {
  if (rep.ownsData == 1) {
    rep.held = rep.data;
    rep.heldCapacity = rep.capacity;
  }
  if (!idxbase::detail::LiesWithin(data, size, rep.held, rep.heldCapacity)) {
    std::free(rep.held);
    rep.held = nullptr;
    rep.heldCapacity = 0;
  }
  rep.data = const_cast<unsigned char*>(data);
  rep.capacity = 0;
  rep.size = size;
  rep.ownsData = 0;
}

}  // namespace

IDX_Base_Buffer::IDX_Base_Buffer(const IDX_Base_Buffer& other) : rep_(Record::Share(other.rep_)) {}

IDX_Base_Buffer& IDX_Base_Buffer::operator=(const IDX_Base_Buffer& other) {
  Record::Assign(rep_, other.rep_);
  return *this;
}

IDX_Base_Buffer::~IDX_Base_Buffer() { Record::Release(rep_); }

void IDX_Base_Buffer::SetData(const unsigned char* data, unsigned int size, IDX_Bool copy) {
  if (rep_ != nullptr && rep_->data == data && rep_->size == size) return;
  if (copy == IDX_True) {
    WriteOwned(rep_, [&](IDX_Base_BufferRep& own) { Record::Fill(own, data, size); });
  } else {
    Refer(Record::Detach(rep_), data, size);
  }
}

const unsigned char* IDX_Base_Buffer::GetData() const {
  return rep_ == nullptr ? nullptr : rep_->data;
}

unsigned int IDX_Base_Buffer::GetSize() const { return rep_ == nullptr ? 0 : rep_->size; }

unsigned char* IDX_Base_Buffer::GetDataForWriting() {
  MakeUnique();
  return rep_ == nullptr ? nullptr : rep_->data;
}

// Always a new record, so the result is private and owned even when the
// size does not change.
void IDX_Base_Buffer::Resize(unsigned int size) {
  if (rep_ == nullptr) {
    Allocate(size);
    return;
  }
  auto* resized = new IDX_Base_BufferRep();
  Record::FillZero(*resized, size);
  const unsigned int kept = std::min(resized->size, rep_->size);
  if (kept != 0) std::memcpy(resized->data, rep_->data, kept);
  Record::Release(rep_);
  rep_ = resized;
}

void IDX_Base_Buffer::FreeImpl() { Record::Release(rep_); }

void IDX_Base_Buffer::Allocate(unsigned int size) {
  WriteOwned(rep_, [size](IDX_Base_BufferRep& own) { Record::FillZero(own, size); });
}

void IDX_Base_Buffer::MakeUnique() {
  if (rep_ != nullptr && (rep_->refCount != 1 || rep_->ownsData != 1)) Resize(rep_->size);
}
