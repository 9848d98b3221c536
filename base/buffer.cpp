#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "base/shared_record.h"
#include "idxbase/byte_runs.h"

namespace {

using Record = idxbase::detail::SharedRecord<IDX_Base_BufferRep>;

// A record that only this handle uses and whose bytes, if any, it owns:
// bytes that it referred to are forgotten, never written or released.
IDX_Base_BufferRep& PrivateOwned(IDX_Base_BufferRep*& rep) {
  IDX_Base_BufferRep& own = Record::Detach(rep);
  if (own.ownsData != 1) {
    own.data = nullptr;
    own.capacity = 0;
    own.ownsData = 1;
  }
  return own;
}

// Switches a private, owned record to the caller's bytes and releases its
// old storage. Bytes inside that storage cannot outlive it: they are moved
// to its front instead and stay owned.
void Refer(IDX_Base_BufferRep& rep, const unsigned char* data, unsigned int size) {
  if (idxbase::detail::LiesWithin(data, size, rep.data, rep.capacity)) {
    Record::Fill(rep, data, size);
    return;
  }
  std::free(rep.data);
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
  IDX_Base_BufferRep& own = PrivateOwned(rep_);
  if (copy == IDX_True) {
    Record::Fill(own, data, size);
  } else {
    Refer(own, data, size);
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

void IDX_Base_Buffer::Allocate(unsigned int size) { Record::FillZero(PrivateOwned(rep_), size); }

void IDX_Base_Buffer::MakeUnique() {
  if (rep_ != nullptr && (rep_->refCount != 1 || rep_->ownsData != 1)) Resize(rep_->size);
}
