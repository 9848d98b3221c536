#include <gtest/gtest.h>

#include <map>
#include <string>

#include "idxbase/kor_system.h"
#include "support/temp_dir.h"

namespace {

using idxbase_test::FileExists;
using idxbase_test::TempDir;
using idxbase_test::WriteFile;

std::string Joined(const char* path, const char* name) {
  KORUnicodeString result(path);
  KORMakePath(result, name);
  return result.ConvertToChar();
}

TEST(KORMakePath, AddsOneSeparatorWhenNeeded) {
  EXPECT_EQ("dir/file", Joined("dir", "file"));
  EXPECT_EQ("dir/file", Joined("dir/", "file"));
  EXPECT_EQ("file", Joined("", "file"));
  EXPECT_EQ("/file", Joined("/", "file"));
}

// Every entry of the listing of `path`, name to full path.
std::map<std::string, std::string> List(const std::string& path) {
  std::map<std::string, std::string> entries;
  KORDIR dir{};
  EXPECT_EQ(KOR_S_OK, KOROpenDirectory(path.c_str(), &dir));
  int end = 0;
  KORDirEnt entry;
  while (KORReadDirectory(&dir, &entry, &end, 0) == KOR_S_OK && end == 0) {
    entries[entry.name.ConvertToChar()] = entry.fullPath.ConvertToChar();
  }
  EXPECT_EQ(1, end);
  EXPECT_EQ(KOR_S_OK, KORCloseDirectory(&dir));
  return entries;
}

TEST(KOROpenDirectory, ListsEntriesWithoutDotAndDotDot) {
  TempDir temp;
  WriteFile(temp.Join("file"), "1");
  ASSERT_EQ(KOR_S_OK, _KORCreateDirectory(temp.Join("sub").c_str()));
  const std::map<std::string, std::string> expected = {{"file", temp.Join("file")},
                                                       {"sub", temp.Join("sub")}};
  EXPECT_EQ(expected, List(temp.path()));
  EXPECT_EQ(expected, List(temp.path() + "/"));
  EXPECT_TRUE(List(temp.Join("sub")).empty());
}

TEST(KOROpenDirectory, RefusesBadArgumentsAndUnopenedOrOpenListings) {
  TempDir temp;
  KORDIR dir{};
  KORDirEnt entry;
  int end = 0;
  EXPECT_EQ(KOR_E_FAIL, KOROpenDirectory(temp.Join("missing").c_str(), &dir));
  EXPECT_EQ(KOR_E_FAIL, KOROpenDirectory(temp.path().c_str(), nullptr));
  EXPECT_EQ(KOR_E_FAIL, KORReadDirectory(&dir, &entry, &end, 0));  // not open
  EXPECT_EQ(1, end);
  ASSERT_EQ(KOR_S_OK, KOROpenDirectory(temp.path().c_str(), &dir));
  EXPECT_EQ(KOR_E_FAIL, KOROpenDirectory(temp.path().c_str(), &dir));  // already open
  end = 0;
  EXPECT_EQ(KOR_E_FAIL, KORReadDirectory(&dir, nullptr, &end, 0));
  EXPECT_EQ(1, end);
  EXPECT_EQ(KOR_E_FAIL, KORReadDirectory(&dir, &entry, nullptr, 0));
  EXPECT_EQ(KOR_E_FAIL, KORReadDirectory(&dir, &entry, &end, 1));
  EXPECT_EQ(KOR_S_OK, KORCloseDirectory(&dir));
  EXPECT_EQ(KOR_S_OK, KORCloseDirectory(&dir));
  EXPECT_EQ(KOR_S_OK, KOROpenDirectory(temp.path().c_str(), &dir));  // reusable once closed
  EXPECT_EQ(KOR_S_OK, KORCloseDirectory(&dir));
}

TEST(KORCreateDirectory, CreatesOnceAndDeleteFileRemovesFilesOnly) {
  TempDir temp;
  const std::string dir = temp.Join("new");
  const std::string file = temp.Join("file");
  EXPECT_EQ(KOR_S_OK, _KORCreateDirectory(dir.c_str()));
  EXPECT_EQ(KOR_E_FAIL, _KORCreateDirectory(dir.c_str()));
  EXPECT_EQ(KOR_E_FAIL, _KORDeleteFile(dir.c_str()));
  WriteFile(file, "x");
  EXPECT_EQ(KOR_S_OK, _KORDeleteFile(file.c_str()));
  EXPECT_EQ(KOR_E_FAIL, _KORDeleteFile(file.c_str()));
  EXPECT_TRUE(FileExists(dir));
  EXPECT_FALSE(FileExists(file));
}

}  // namespace
