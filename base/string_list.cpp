#include <memory>

#include "idxbase/strings.h"

namespace {

IDX_Base_String* At(const KORRawCollPV& elements, int position) {
  return static_cast<IDX_Base_String*>(elements[position]);
}

void AppendHandle(KORRawCollPV& elements, const IDX_Base_String& text) {
  auto handle = std::make_unique<IDX_Base_String>(text);
  elements.Append(handle.get());
  handle.release();
}

void AppendAll(KORRawCollPV& elements, const KORRawCollPV& source) {
  for (int i = 1; i <= source.Size(); ++i) AppendHandle(elements, *At(source, i));
}

void DeleteHandles(KORRawCollPV& elements) {
  for (int i = elements.Size(); i >= 1; --i) delete At(elements, i);
}

}  // namespace

KORListValIDX_Base_String::KORListValIDX_Base_String() = default;

KORListValIDX_Base_String::KORListValIDX_Base_String(int initialCapacity)
    : m_Elements(initialCapacity) {}

KORListValIDX_Base_String::KORListValIDX_Base_String(int initialCapacity, int /*unused*/)
    : m_Elements(initialCapacity) {}

// Delegation makes the list complete before the handles are appended, so
// the destructor deletes them if an allocation fails on the way.
KORListValIDX_Base_String::KORListValIDX_Base_String(const KORListValIDX_Base_String& other)
    : KORListValIDX_Base_String(other.Size()) {
  AppendAll(m_Elements, other.m_Elements);
}

KORListValIDX_Base_String& KORListValIDX_Base_String::operator=(
    const KORListValIDX_Base_String& other) {
  if (this == &other) return *this;
  RemoveAll(KORCollec::KeepMemory);
  AppendAll(m_Elements, other.m_Elements);
  return *this;
}

KORListValIDX_Base_String::~KORListValIDX_Base_String() { DeleteHandles(m_Elements); }

void KORListValIDX_Base_String::Append(const IDX_Base_String& text) {
  AppendHandle(m_Elements, text);
}

IDX_Base_String& KORListValIDX_Base_String::operator[](int position) {
  return *At(m_Elements, position);
}

const IDX_Base_String& KORListValIDX_Base_String::operator[](int position) const {
  return *At(m_Elements, position);
}

int KORListValIDX_Base_String::Size() const { return m_Elements.Size(); }

void KORListValIDX_Base_String::RemoveAll(KORCollec::MemoryHandling mode) {
  DeleteHandles(m_Elements);
  m_Elements.RemoveAll(mode);
}

int KORListValIDX_Base_String::operator==(const KORListValIDX_Base_String& other) const {
  return (*this != other) == 0 ? 1 : 0;
}

// Element strings compare by their own operator!=, which traces an empty
// handle on this side and counts it as equal.
int KORListValIDX_Base_String::operator!=(const KORListValIDX_Base_String& other) const {
  if (this == &other) return 0;
  if (Size() != other.Size()) return 1;
  for (int i = 1; i <= Size(); ++i) {
    if ((*this)[i] != other[i]) return 1;
  }
  return 0;
}
