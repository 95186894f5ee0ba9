#include <gtest/gtest.h>

#include "platform/common/afile.h"

namespace {

TEST(JoinPath, PutsExactlyOneSeparatorBetween) {
  EXPECT_EQ(joinPath(L"a/b", L"c"), L"a/b/c");
  EXPECT_EQ(joinPath(L"a/", L"c"), L"a/c");
  EXPECT_EQ(joinPath(L"a", L"/c"), L"a/c");
  EXPECT_EQ(joinPath(L"a//", L"//c/d"), L"a/c/d");
  EXPECT_EQ(joinPath(L"/", L"c"), L"/c");
  EXPECT_EQ(joinPath(L"/", L"/"), L"/");
  EXPECT_EQ(joinPath(L"a", L""), L"a/");
}

TEST(JoinPath, GivesTheNameAloneWithoutADirectory) {
  EXPECT_EQ(joinPath(L"", L"c"), L"c");
  EXPECT_EQ(joinPath(L"", L"/c"), L"/c");
  EXPECT_EQ(joinPath(L"", L""), L"");
}

struct Split {
  std::wstring directory;
  std::wstring name;
};

Split split(const std::wstring& path) {
  Split result{L"untouched", L"untouched"};
  splitPath(path, &result.directory, &result.name);
  return result;
}

TEST(SplitPath, SplitsAtTheLastSeparator) {
  EXPECT_EQ(split(L"/a/b/c.txt").directory, L"/a/b");
  EXPECT_EQ(split(L"/a/b/c.txt").name, L"c.txt");
  EXPECT_EQ(split(L"a/b/").directory, L"a/b");
  EXPECT_EQ(split(L"a/b/").name, L"");
}

TEST(SplitPath, NamesTheRoot) {
  EXPECT_EQ(split(L"/c").directory, L"/");
  EXPECT_EQ(split(L"/c").name, L"c");
  EXPECT_EQ(split(L"/").directory, L"/");
  EXPECT_EQ(split(L"/").name, L"");
}

TEST(SplitPath, GivesNoDirectoryWithoutASeparator) {
  EXPECT_EQ(split(L"c").directory, L"");
  EXPECT_EQ(split(L"c").name, L"c");
  EXPECT_EQ(split(L"").directory, L"");
  EXPECT_EQ(split(L"").name, L"");
}

TEST(SplitPath, TakesNullForWhatIsNotWanted) {
  std::wstring directory;
  std::wstring name;
  splitPath(L"a/b", &directory, nullptr);
  splitPath(L"a/b", nullptr, &name);
  splitPath(L"a/b", nullptr, nullptr);
  EXPECT_EQ(directory, L"a");
  EXPECT_EQ(name, L"b");
}

TEST(SplitPath, MayOverwriteItsOwnArgument) {
  std::wstring path = L"a/b";
  std::wstring name;
  splitPath(path, &path, &name);
  EXPECT_EQ(path, L"a");
  EXPECT_EQ(name, L"b");
}

TEST(Path, JoinsADirectoryAndAName) {
  const APath path(AString(L"/data/"), AString(L"SiteList.xml"));
  EXPECT_EQ(path.str().str(), L"/data/SiteList.xml");
  EXPECT_EQ(std::wstring(path.c_str()), L"/data/SiteList.xml");
}

}  // namespace
