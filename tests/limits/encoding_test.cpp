#include "tests/limits/limits_fixture.h"
#include "tests/sitehlp/document_bytes.h"
#include "tests/support/rerooted_file_system.h"

namespace {

using namespace sitehlp;
using namespace test;

const Encoding c_bytes = c_encodings[0];
const Encoding c_little16 = c_encodings[1];
const Encoding c_big16 = c_encodings[2];
const Encoding c_little32 = c_encodings[3];
const Encoding c_big32 = c_encodings[4];

// A document with this declaration, or without one.
std::wstring declaring(const std::wstring& encoding) {
  const std::wstring usual = L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  std::wstring text = wide(document(httpElement("site")));
  EXPECT_EQ(text.compare(0, usual.size(), usual), 0);
  text.erase(0, usual.size());
  if (encoding.empty()) return text;
  return L"<?xml version='1.0' encoding='" + encoding + L"'?>" + text;
}

struct Case {
  const char* name;
  const wchar_t* declared;
  Encoding encoding;
  bool mark;
};
std::ostream& operator<<(std::ostream& out, const Case& c) { return out << c.name; }
std::string nameOfCase(const testing::TestParamInfo<Case>& info) { return info.param.name; }

class DeclaredEncoding : public LimitsTest, public testing::WithParamInterface<Case> {
 protected:
  DeclaredEncoding() { writeFile(path, bytes); }

  const std::string bytes =
      encode(declaring(GetParam().declared), GetParam().encoding, GetParam().mark);
  const std::string path = agent.dataDirectory() + "/declared.xml";
};

class FalselyDeclared : public DeclaredEncoding {};

// Shows: read-declaration, declared-with-mark, declared-utf-8, declared-utf-16, declared-utf-32
TEST_P(FalselyDeclared, IsNotWellFormed) {
  EXPECT_EQ(readCode(path), c_errorParse);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(versionsCode(path), c_errorGeneral);
  EXPECT_EQ(certificatesCode(path), c_errorParse);
}

TEST_P(FalselyDeclared, IsNotTakenOver) {
  EXPECT_EQ(CSitesHelper(wide(own)).ImportSiteList(wide(path), L""), c_errorParse);
  EXPECT_FALSE(CSitesHelper(wide(own)).modifySiteList(wide(path).c_str(), true, true, AString()));
  expectNothingWritten();
  korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char> buffer(
      static_cast<unsigned int>(bytes.size()),
      reinterpret_cast<const unsigned char*>(bytes.data()));
  EXPECT_EQ(CSitesHelper(wide(own)).AdjustPwd(buffer), c_errorParse);
  EXPECT_FALSE(exists(agent.dataDirectory() + "/ServerSiteList.xml"));
}

INSTANTIATE_TEST_SUITE_P(Cases, FalselyDeclared,
                         testing::Values(Case{"AMarkOfUtf8AndIso8859", L"iso-8859-1", c_bytes,
                                              true},
                                         Case{"BytesAndUtf16", L"UTF-16", c_bytes, false},
                                         Case{"BytesAndUtf16Little", L"utf-16le", c_bytes, false},
                                         Case{"AMarkOfUtf8AndUtf16", L"UTF-16", c_bytes, true},
                                         Case{"BytesAndUcs2", L"ISO-10646-UCS-2", c_bytes, false},
                                         Case{"BytesAndUtf32", L"UTF-32", c_bytes, false},
                                         Case{"BytesAndUcs4", L"ISO-10646-UCS-4", c_bytes, false},
                                         Case{"Utf16LittleAndUtf8", L"UTF-8", c_little16, true},
                                         Case{"Utf16BigAndUtf8", L"utf-8", c_big16, true},
                                         Case{"LittleAndBig", L"UTF-16BE", c_little16, true},
                                         Case{"BigAndLittle", L"UTF-16LE", c_big16, true},
                                         Case{"Utf16AndUtf32", L"UTF-32", c_little16, true},
                                         Case{"Utf16AndUcs4", L"ISO-10646-UCS-4", c_big16, true},
                                         Case{"Utf32AndUtf16", L"UTF-16", c_little32, true},
                                         Case{"Utf32AndUtf8", L"UTF-8", c_big32, true},
                                         Case{"Utf32AndUcs2", L"ISO-10646-UCS-2", c_big32, true},
                                         Case{"Little32AndBig", L"UTF-32BE", c_little32, true},
                                         Case{"Big32AndLittle", L"UTF-32LE", c_big32, true}),
                         nameOfCase);

class RightlyDeclared : public DeclaredEncoding {};

// Shows: read-declaration, declared-with-mark, declared-utf-8, declared-utf-16, declared-utf-32
TEST_P(RightlyDeclared, IsRead) {
  EXPECT_EQ(readCode(path), c_success);
  EXPECT_EQ(count, 1U);
  EXPECT_EQ(versionsCode(path), c_success);
  EXPECT_EQ(certificatesCode(path), c_success);
}

TEST_P(RightlyDeclared, IsTakenOver) {
  EXPECT_EQ(CSitesHelper(wide(own)).ImportSiteList(wide(path), L""), c_success);
  EXPECT_EQ(readCode(own), c_success);
  EXPECT_EQ(count, 1U);
}

// The declared encoding applies to bytes and not to wide text.
TEST_P(RightlyDeclared, IsTakenAsText) {
  const RerootedFileSystem scratch("/Library/Korvel/orb/scratch",
                                   agent.dataDirectory() + "/scratch");
  const std::string written = agent.dataDirectory() + "/scratch/etc/SiteList.xml";
  writeFile(written, c_oldList);
  std::wstring text;
  ASSERT_TRUE(CSitesHelper(wide(path)).GetSiteListBuffer(text));
  EXPECT_EQ(CSitesHelper(wide(own)).CreateSiteListFromBuffer(text), c_success);
  EXPECT_NE(readFile(written), c_oldList);
}

INSTANTIATE_TEST_SUITE_P(Cases, RightlyDeclared,
                         testing::Values(Case{"Bytes", L"UTF-8", c_bytes, false},
                                         Case{"BytesInSmallLetters", L"utf-8", c_bytes, false},
                                         Case{"BytesWithAMark", L"Utf-8", c_bytes, true},
                                         Case{"BytesWithoutAWord", L"", c_bytes, false},
                                         Case{"BytesWithAMarkAlone", L"", c_bytes, true},
                                         Case{"Ascii", L"iso-8859-1", c_bytes, false},
                                         Case{"Little", L"UTF-16", c_little16, true},
                                         Case{"LittleByName", L"UTF-16LE", c_little16, true},
                                         Case{"LittleWithAMarkAlone", L"", c_little16, true},
                                         Case{"LittleWithoutAMark", L"utf-16", c_little16, false},
                                         Case{"Big", L"UTF-16", c_big16, true},
                                         Case{"BigWithAMarkAlone", L"", c_big16, true},
                                         Case{"BytesOfNoKnownName", L"no-such-name", c_bytes,
                                              false},
                                         Case{"BigByName", L"UTF-16BE", c_big16, true},
                                         Case{"LittleUcs2", L"ISO-10646-UCS-2", c_little16, true},
                                         Case{"BigUcs2", L"iso-10646-ucs-2", c_big16, false},
                                         Case{"Little32", L"UTF-32", c_little32, true},
                                         Case{"Little32ByName", L"UTF-32LE", c_little32, false},
                                         Case{"Little32Ucs4", L"ISO-10646-UCS-4", c_little32, true},
                                         Case{"Big32", L"utf-32", c_big32, false},
                                         Case{"Big32ByName", L"UTF-32BE", c_big32, true},
                                         Case{"Big32Ucs4", L"ISO-10646-UCS-4", c_big32, true}),
                         nameOfCase);

}  // namespace
