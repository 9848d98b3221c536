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

IDX_Base_Buffer::IDX_Base_Buffer(const IDX_Base_Buffer& other)
    : m_Rep(Record::Share(other.m_Rep)) {}

IDX_Base_Buffer& IDX_Base_Buffer::operator=(const IDX_Base_Buffer& other) {
  Record::Assign(m_Rep, other.m_Rep);
  return *this;
}

IDX_Base_Buffer::~IDX_Base_Buffer() { Record::Release(m_Rep); }

void IDX_Base_Buffer::SetData(const unsigned char* data, unsigned int size, IDX_Bool copy) {
  if (m_Rep != nullptr && m_Rep->data == data && m_Rep->size == size) return;
  if (copy == IDX_True) {
    WriteOwned(m_Rep, [&](IDX_Base_BufferRep& own) { Record::Fill(own, data, size); });
  } else {
    Refer(Record::Detach(m_Rep), data, size);
  }
}

const unsigned char* IDX_Base_Buffer::GetData() const {
  return m_Rep == nullptr ? nullptr : m_Rep->data;
}

unsigned int IDX_Base_Buffer::GetSize() const { return m_Rep == nullptr ? 0 : m_Rep->size; }

unsigned char* IDX_Base_Buffer::GetDataForWriting() {
  MakeUnique();
  return m_Rep == nullptr ? nullptr : m_Rep->data;
}

// Always a new record, so the result is private and owned even when the
// size does not change.
void IDX_Base_Buffer::Resize(unsigned int size) {
  if (m_Rep == nullptr) {
    Allocate(size);
    return;
  }
  auto* resized = new IDX_Base_BufferRep();
  Record::FillZero(*resized, size);
  const unsigned int kept = std::min(resized->size, m_Rep->size);
  if (kept != 0) std::memcpy(resized->data, m_Rep->data, kept);
  Record::Release(m_Rep);
  m_Rep = resized;
}

void IDX_Base_Buffer::FreeImpl() { Record::Release(m_Rep); }

void IDX_Base_Buffer::Allocate(unsigned int size) {
  WriteOwned(m_Rep, [size](IDX_Base_BufferRep& own) { Record::FillZero(own, size); });
}

void IDX_Base_Buffer::MakeUnique() {
  if (m_Rep != nullptr && (m_Rep->refCount != 1 || m_Rep->ownsData != 1)) Resize(m_Rep->size);
}
