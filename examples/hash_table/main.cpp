// A typed table over BBDVerySimpleHashTable, the way engine code uses it:
// the derived class fixes the value type and turns the byte-level
// operations into typed ones.
#include <idxbase/idxbase.h>

#include <cstdint>
#include <cstdio>
#include <type_traits>

namespace {

// The value stored under each key: a fixed-size, trivially copyable
// record, since the table copies its bytes and never destroys it.
struct Occurrence {
  std::uint32_t file;
  std::uint32_t offset;
  std::uint64_t size;
};
static_assert(std::is_trivially_copyable_v<Occurrence>, "values are copied as bytes");

class OccurrenceTable : public BBDVerySimpleHashTable {
 public:
  // Sized for about `expected` keys; the table never grows.
  explicit OccurrenceTable(int expected) : BBDVerySimpleHashTable(expected, sizeof(Occurrence)) {}

  void Put(int id, const Occurrence& occurrence) { PutElem(id, &occurrence); }
  // The stored record, or null; valid until `id` is removed.
  const Occurrence* Find(int id) { return static_cast<const Occurrence*>(GetElem(id)); }
  using BBDVerySimpleHashTable::RemoveElem;

  // Calls `visit(id, occurrence)` for every element.
  template <typename Visit>
  void ForEach(Visit visit) {
    for (BBDVerySimpleHashTableIterator it = GetIterator(); !it.IsFinished(); it.Next()) {
      int id = 0;
      const void* value = nullptr;
      it.GetElem(id, value);
      visit(id, *static_cast<const Occurrence*>(value));
    }
  }
};

}  // namespace

int main() {
  OccurrenceTable table(100);
  for (int id = 1; id <= 5; ++id) {
    table.Put(id, Occurrence{static_cast<std::uint32_t>(id % 2), 512u * id, 64u * id});
  }
  table.Put(3, Occurrence{9, 0, 1});  // replaces the record of 3
  table.RemoveElem(4);

  OccurrenceTable copy(table);  // deep: the copy owns its own nodes
  copy.RemoveElem(1);

  int count = 0;
  table.ForEach([&count](int id, const Occurrence& o) {
    std::printf("%d -> file %u, offset %u, size %llu\n", id, o.file, o.offset,
                static_cast<unsigned long long>(o.size));
    ++count;
  });
  const Occurrence* three = table.Find(3);
  const bool ok = count == 4 && table.Find(4) == nullptr && three != nullptr && three->file == 9 &&
                  table.Find(1) != nullptr && copy.Find(1) == nullptr;
  std::printf("%s\n", ok ? "ok" : "unexpected content");
  return ok ? 0 : 1;
}
