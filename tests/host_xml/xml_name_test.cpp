#include "host/xml/xml_name.h"

#include <gtest/gtest.h>

#include "tests/host_xml/documents.h"

namespace {

using namespace AdvXMLParser;
using host::XmlName;
using test::parse;

std::string nameOf(const std::wstring& name) { return XmlName(name).c_str(); }

TEST(XmlName, KeepsPlainNames) {
  EXPECT_EQ(nameOf(L"ns:SiteLists"), "ns:SiteLists");
  EXPECT_EQ(nameOf(L"a-1.b_2"), "a-1.b_2");
}

TEST(XmlName, KeepsLongNames) {
  EXPECT_EQ(nameOf(std::wstring(63, L'a')), std::string(63, 'a'));
  EXPECT_EQ(nameOf(std::wstring(64, L'a')), std::string(64, 'a'));
  EXPECT_EQ(nameOf(std::wstring(1000, L'a')), std::string(1000, 'a'));
}

TEST(XmlName, KeepsNamesInOtherScripts) {
  EXPECT_EQ(nameOf(L"Größe"),
            "Gr\xC3\xB6\xC3\x9F"
            "e");
  EXPECT_EQ(nameOf(L"東京"), "\xE6\x9D\xB1\xE4\xBA\xAC");
}

TEST(XmlName, ReplacesWhatANameCannotHave) {
  EXPECT_EQ(nameOf(L"a b<"), "a_b_");
  EXPECT_EQ(nameOf(L"1a"), "_a");
  EXPECT_EQ(nameOf(L"-"), "_");
  EXPECT_EQ(nameOf(L""), "_");
  EXPECT_EQ(nameOf(L"a\x20AC"), "a___");  // the euro sign is not a letter
}

TEST(XmlName, LeavesEveryNewDocumentReadable) {
  for (const wchar_t* name : {L"a b='c'", L"a/", L"<", L"\x1", L"é ", L"\xD800", L"a\x20AC"}) {
    Document document(name);
    Element child = document.GetRoot().AddElementInto(name);
    child.AppendElement(name);
    child.CreateAttribute(name).SetValue(L"v");
    const std::wstring text = document.GenerateXML(false);
    EXPECT_NE(parse(text), nullptr) << XmlName(name).c_str();
  }
}

}  // namespace
