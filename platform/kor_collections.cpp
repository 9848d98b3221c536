#include "idxbase/kor_collections.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace {

template <typename Vector>
int Clear(Vector& elements, KORCollec::MemoryHandling mode) {
  const int removed = static_cast<int>(elements.size());
  if (mode == KORCollec::ReleaseMemory) {
    Vector().swap(elements);
  } else {
    elements.clear();
  }
  return removed;
}

}  // namespace

// Out of line, so that the tables of virtual operations live in the library.
KORCollecRoot::~KORCollecRoot() = default;
KORRawCollPV::~KORRawCollPV() = default;
KORListValKORUnicodeString::~KORListValKORUnicodeString() = default;

// ---- KORRawCollPV ----------------------------------------------------------

KORRawCollPV::KORRawCollPV(int initialCapacity) {
  if (initialCapacity > 0) m_Elements.reserve(static_cast<std::size_t>(initialCapacity));
}

void*& KORRawCollPV::operator[](int position) {
  if (IsValid(position)) return m_Elements[static_cast<std::size_t>(position - 1)];
  m_Scratch = nullptr;
  return m_Scratch;
}

int KORRawCollPV::Append(void* element) {
  m_Elements.push_back(element);
  return Size();
}

int KORRawCollPV::InsertAt(int position, void* element) {
  if (position < 1 || position > Size() + 1) return 0;
  m_Elements.insert(m_Elements.begin() + (position - 1), element);
  return position;
}

int KORRawCollPV::Locate(const void* element, int from) const {
  for (int position = std::max(from, 1); position <= Size(); ++position) {
    if (m_Elements[static_cast<std::size_t>(position - 1)] == element) return position;
  }
  return 0;
}

int KORRawCollPV::RemoveValue(const void* element) {
  const auto kept = std::remove(m_Elements.begin(), m_Elements.end(), element);
  const auto removed = static_cast<int>(m_Elements.end() - kept);
  m_Elements.erase(kept, m_Elements.end());
  return removed;
}

int KORRawCollPV::RemovePosition(int position, unsigned int count) {
  if (!IsValid(position)) return 0;
  const auto available = static_cast<unsigned int>(Size() - position + 1);
  const auto removed = static_cast<int>(std::min(count, available));
  const auto first = m_Elements.begin() + (position - 1);
  m_Elements.erase(first, first + removed);
  return removed;
}

int KORRawCollPV::RemoveAll(KORCollec::MemoryHandling mode) { return Clear(m_Elements, mode); }

int KORRawCollPV::RemoveDuplicates(KORRawCollPV* removed) {
  std::unordered_set<const void*> seen;
  std::vector<void*> kept;
  std::vector<void*> duplicates;
  for (void* element : m_Elements) {
    (seen.insert(element).second ? kept : duplicates).push_back(element);
  }
  m_Elements = std::move(kept);
  // Appended only now, so that `removed` may be this collection itself.
  if (removed != nullptr) {
    for (void* element : duplicates) removed->Append(element);
  }
  return static_cast<int>(duplicates.size());
}

bool KORRawCollPV::operator==(const KORRawCollPV& other) const {
  return m_Elements == other.m_Elements;
}

bool KORRawCollPV::operator!=(const KORRawCollPV& other) const { return !(*this == other); }

// ---- KORListValKORUnicodeString -------------------------------------------

int KORListValKORUnicodeString::Append(const KORUnicodeString& text) {
  m_Elements.push_back(text);
  return Size();
}

KORUnicodeString& KORListValKORUnicodeString::operator[](int position) {
  if (position >= 1 && position <= Size()) {
    return m_Elements[static_cast<std::size_t>(position - 1)];
  }
  m_Scratch = KORUnicodeString();
  return m_Scratch;
}

const KORUnicodeString& KORListValKORUnicodeString::operator[](int position) const {
  static const KORUnicodeString empty;
  if (position >= 1 && position <= Size()) {
    return m_Elements[static_cast<std::size_t>(position - 1)];
  }
  return empty;
}

int KORListValKORUnicodeString::RemoveAll(KORCollec::MemoryHandling mode) {
  return Clear(m_Elements, mode);
}

bool KORListValKORUnicodeString::operator==(const KORListValKORUnicodeString& other) const {
  return m_Elements == other.m_Elements;
}

bool KORListValKORUnicodeString::operator!=(const KORListValKORUnicodeString& other) const {
  return !(*this == other);
}
