#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "byte_run_test_support.h"
#include "idxbase/byte_runs.h"
#include "support/allocation_faults.h"

namespace {

using idxbase_test::Bytes;
using idxbase_test::Size;

// Reaches the protected write paths.
class TestBuffer : public IDX_Base_Buffer {
 public:
  using IDX_Base_Buffer::Allocate;
  using IDX_Base_Buffer::MakeUnique;
};

// Read-only caller bytes: a write through the buffer would fault, and
// realloc or free of them would be reported by the sanitizer.
const unsigned char kCallerBytes[] = {'c', 'a', 'l', 'l', 'e', 'r'};
constexpr unsigned int kCallerSize = sizeof kCallerBytes;

std::string Contents(const IDX_Base_Buffer& buffer) {
  return idxbase_test::Text(buffer.GetData(), buffer.GetSize());
}

TestBuffer Owning(const std::string& text) {
  TestBuffer buffer;
  buffer.SetData(Bytes(text), Size(text), IDX_True);
  return buffer;
}

struct WritePath {
  const char* name;
  std::function<void(TestBuffer&)> write;
  std::string expected;  // contents of the written handle
};

const WritePath kWritePaths[] = {
    {"SetData copy", [](TestBuffer& b) { b.SetData(Bytes("xyz"), 3, IDX_True); }, "xyz"},
    {"Allocate", [](TestBuffer& b) { b.Allocate(2); }, std::string(2, '\0')},
    {"Resize", [](TestBuffer& b) { b.Resize(8); }, "caller" + std::string(2, '\0')},
    {"GetDataForWriting", [](TestBuffer& b) { b.GetDataForWriting()[0] = 'C'; }, "Caller"},
    {"MakeUnique", [](TestBuffer& b) { b.MakeUnique(); }, "caller"},
};

// A write gives the handle a private record that owns its bytes: copies
// keep the shared record, and bytes the handle referred to stay untouched.
TEST(Buffer, WritesDetachFromSharedRecordsAndReferredBytes) {
  for (const WritePath& path : kWritePaths) {
    SCOPED_TRACE(path.name);
    const TestBuffer original = Owning("caller");
    TestBuffer copy;
    copy = original;
    const TestBuffer other(copy);
    ASSERT_EQ(copy.GetData(), original.GetData());
    path.write(copy);
    EXPECT_EQ(Contents(copy), path.expected);
    EXPECT_NE(copy.GetData(), original.GetData());
    EXPECT_EQ(Contents(original), "caller");
    EXPECT_EQ(other.GetData(), original.GetData());

    TestBuffer referring;
    referring.SetData(kCallerBytes, kCallerSize, IDX_False);
    ASSERT_EQ(referring.GetData(), kCallerBytes);
    path.write(referring);
    EXPECT_EQ(Contents(referring), path.expected);
    EXPECT_NE(referring.GetData(), kCallerBytes);

    // Without memory the write leaves the handle no bytes.
    if (std::string(path.name) == "GetDataForWriting") continue;  // would write through null
    idxbase_test::AllocationFaults failing;
    copy = original;
    path.write(copy);
    EXPECT_EQ(copy.GetData(), nullptr);
    EXPECT_EQ(copy.GetSize(), 0u);
    EXPECT_EQ(Contents(original), "caller");
  }
}

// Rewriting, also from the record's own bytes, keeps the storage and
// zero-fills its tail.
TEST(Buffer, WritingAPrivateOwnedBufferKeepsItsStorage) {
  TestBuffer buffer = Owning("abcdef");
  const unsigned char* storage = buffer.GetData();
  buffer.MakeUnique();
  EXPECT_EQ(buffer.GetDataForWriting(), storage);
  buffer.SetData(Bytes("xyz"), 3, IDX_True);
  ASSERT_EQ(buffer.GetData(), storage);
  EXPECT_EQ(idxbase_test::Text(storage, 6), std::string("xyz\0\0\0", 6));
  buffer.SetData(Bytes("123456"), 6, IDX_True);
  EXPECT_EQ(buffer.GetData(), storage);
  EXPECT_EQ(Contents(buffer), "123456");
  buffer.SetData(buffer.GetData() + 2, 3, IDX_True);
  EXPECT_EQ(idxbase_test::Text(storage, 6), std::string("345\0\0\0", 6));
  EXPECT_EQ(buffer.GetSize(), 3u);
}

TEST(Buffer, SetDataOfTheHeldBytesChangesNothing) {
  IDX_Base_Buffer buffer;
  buffer.SetData(kCallerBytes, kCallerSize, IDX_False);
  buffer.SetData(kCallerBytes, kCallerSize, IDX_True);
  EXPECT_EQ(buffer.GetData(), kCallerBytes);
  // Any value other than IDX_True refers.
  buffer.SetData(kCallerBytes, 2, static_cast<IDX_Bool>(2));
  EXPECT_EQ(buffer.GetData(), kCallerBytes);
  EXPECT_EQ(buffer.GetSize(), 2u);
}

TEST(Buffer, ResizeKeepsLeadingBytes) {
  IDX_Base_Buffer buffer = Owning("abc");
  buffer.Resize(5);
  EXPECT_EQ(Contents(buffer), std::string("abc\0\0", 5));
  buffer.Resize(2);
  EXPECT_EQ(Contents(buffer), "ab");
  buffer.Resize(0);
  EXPECT_EQ(buffer.GetSize(), 0u);
  EXPECT_EQ(buffer.GetData(), nullptr);

  IDX_Base_Buffer empty;
  empty.Resize(4);
  EXPECT_EQ(Contents(empty), std::string(4, '\0'));
}

// The buffer refers to bytes inside its own storage in place and keeps that
// storage until it lets go of it, and releases it when it refers to other
// bytes: the sanitizer reports any read of the bytes after the storage is
// released, and the leak checker storage that never is.
TEST(Buffer, ReferringIntoItsOwnStorageKeepsTheStorage) {
  IDX_Base_Buffer switching = Owning("abcdef");
  switching.SetData(kCallerBytes, 3, IDX_False);
  EXPECT_EQ(switching.GetData(), kCallerBytes);
  EXPECT_EQ(Contents(switching), "cal");

  IDX_Base_Buffer buffer = Owning("abcdef");
  const unsigned char* inside = buffer.GetData() + 2;
  for (int call = 0; call < 2; ++call) {
    buffer.SetData(inside, 3, IDX_False);
    EXPECT_EQ(buffer.GetData(), inside);
    EXPECT_EQ(Contents(buffer), "cde");
  }
  buffer.SetData(inside + 1, 2, IDX_False);
  EXPECT_EQ(Contents(buffer), "de");

  IDX_Base_Buffer copy(buffer);
  buffer.SetData(inside, 1, IDX_True);
  EXPECT_EQ(Contents(buffer), "c");
  EXPECT_EQ(copy.GetData(), inside + 1);
  EXPECT_EQ(Contents(copy), "de");
  copy.SetData(inside, 2, IDX_True);
  EXPECT_EQ(Contents(copy), "cd");

  buffer.SetData(Bytes("abc"), 3, IDX_True);
  buffer.SetData(buffer.GetData() + 1, 1, IDX_False);
  EXPECT_EQ(Contents(buffer), "b");
  buffer.SetData(kCallerBytes, kCallerSize, IDX_False);
  EXPECT_EQ(Contents(buffer), "caller");
}

TEST(Buffer, FreeImplEmptiesOnlyThisHandle) {
  IDX_Base_Buffer buffer = Owning("abc");
  IDX_Base_Buffer copy(buffer);
  buffer.FreeImpl();
  EXPECT_EQ(buffer.GetData(), nullptr);
  EXPECT_EQ(buffer.GetSize(), 0u);
  EXPECT_EQ(buffer.GetDataForWriting(), nullptr);
  EXPECT_EQ(Contents(copy), "abc");
}

}  // namespace
