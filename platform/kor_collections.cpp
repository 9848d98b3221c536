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
  if (initialCapacity > 0) elements_.reserve(static_cast<std::size_t>(initialCapacity));
}

void*& KORRawCollPV::operator[](int position) {
  if (IsValid(position)) return elements_[static_cast<std::size_t>(position - 1)];
  scratch_ = nullptr;
  return scratch_;
}

int KORRawCollPV::Append(void* element) {
  elements_.push_back(element);
  return Size();
}

int KORRawCollPV::InsertAt(int position, void* element) {
  if (position < 1 || position > Size() + 1) return 0;
  elements_.insert(elements_.begin() + (position - 1), element);
  return position;
}

int KORRawCollPV::Locate(const void* element, int from) const {
  for (int position = std::max(from, 1); position <= Size(); ++position) {
    if (elements_[static_cast<std::size_t>(position - 1)] == element) return position;
  }
  return 0;
}

int KORRawCollPV::RemoveValue(const void* element) {
  const auto kept = std::remove(elements_.begin(), elements_.end(), element);
  const auto removed = static_cast<int>(elements_.end() - kept);
  elements_.erase(kept, elements_.end());
  return removed;
}

int KORRawCollPV::RemovePosition(int position, unsigned int count) {
  if (!IsValid(position)) return 0;
  const auto available = static_cast<unsigned int>(Size() - position + 1);
  const auto removed = static_cast<int>(std::min(count, available));
  const auto first = elements_.begin() + (position - 1);
  elements_.erase(first, first + removed);
  return removed;
}

int KORRawCollPV::RemoveAll(KORCollec::MemoryHandling mode) { return Clear(elements_, mode); }

int KORRawCollPV::RemoveDuplicates(KORRawCollPV* removed) {
  std::unordered_set<const void*> seen;
  std::vector<void*> kept;
  std::vector<void*> duplicates;
  for (void* element : elements_) {
    (seen.insert(element).second ? kept : duplicates).push_back(element);
  }
  elements_ = std::move(kept);
  // Appended only now, so that `removed` may be this collection itself.
  if (removed != nullptr) {
    for (void* element : duplicates) removed->Append(element);
  }
  return static_cast<int>(duplicates.size());
}

bool KORRawCollPV::operator==(const KORRawCollPV& other) const {
  return elements_ == other.elements_;
}

bool KORRawCollPV::operator!=(const KORRawCollPV& other) const { return !(*this == other); }

// ---- KORListValKORUnicodeString -------------------------------------------

int KORListValKORUnicodeString::Append(const KORUnicodeString& text) {
  elements_.push_back(text);
  return Size();
}

KORUnicodeString& KORListValKORUnicodeString::operator[](int position) {
  if (position >= 1 && position <= Size()) {
    return elements_[static_cast<std::size_t>(position - 1)];
  }
  scratch_ = KORUnicodeString();
  return scratch_;
}

const KORUnicodeString& KORListValKORUnicodeString::operator[](int position) const {
  static const KORUnicodeString empty;
  if (position >= 1 && position <= Size()) {
    return elements_[static_cast<std::size_t>(position - 1)];
  }
  return empty;
}

int KORListValKORUnicodeString::RemoveAll(KORCollec::MemoryHandling mode) {
  return Clear(elements_, mode);
}

bool KORListValKORUnicodeString::operator==(const KORListValKORUnicodeString& other) const {
  return elements_ == other.elements_;
}

bool KORListValKORUnicodeString::operator!=(const KORListValKORUnicodeString& other) const {
  return !(*this == other);
}
