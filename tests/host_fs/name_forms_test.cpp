// Pairs of names that some file systems take for one: names that differ only in case, and the
// composed and the decomposed form of a letter. Most Linux file systems take them for two.
#include <iostream>

#include "platform/common/afile.h"
#include "tests/host_fs/file_fixture.h"

namespace {

class NameForms : public test::FileTest {
 protected:
  AString full(const char* name) const { return AString(path(name).c_str()); }

  static std::string contentOf(const AString& file) {
    ABuffer bytes;
    if (!AFile::readExisting(file, bytes)) return "missing";
    return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  }

  static ABuffer bufferOf(const char* text) {
    return ABuffer(reinterpret_cast<const unsigned char*>(text),
                   std::char_traits<char>::length(text));
  }

  // They are one file if and only if a write to one replaces the other.
  void check(const char* firstName, const char* secondName) {
    const AString first = full(firstName);
    const AString second = full(secondName);
    ASSERT_TRUE(AFile::write(first, bufferOf("first")));
    const bool isOne = AFiler::isSameFile(first, second);
    ASSERT_TRUE(AFile::write(second, bufferOf("second")));
    EXPECT_EQ(AFiler::isSameFile(second, first), isOne);
    EXPECT_EQ(names().size(), isOne ? 1U : 2U);
    EXPECT_EQ(contentOf(first), isOne ? "second" : "first");
    EXPECT_EQ(contentOf(second), "second");
    std::cout << "here these names lead to " << (isOne ? "one file" : "two files") << '\n';
  }
};

TEST_F(NameForms, ThatDifferInCaseAreOneFileOrTwo) { check("SiteList.xml", "sitelist.xml"); }

TEST_F(NameForms, ComposedAndDecomposedAreOneFileOrTwo) {
  check("d\u00E9p\u00F4t", "de\u0301po\u0302t");
}

}  // namespace
