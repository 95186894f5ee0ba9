#include "platform/common/anxml.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <new>
#include <pugixml.hpp>
#include <regex>

#include "platform/xml/advxmlparser.h"
#include "tests/host_xml/documents.h"
#include "tests/support/faulty_file_system.h"

namespace {

using test::wide;

const char* const c_list =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!-- header -->\n"
    "<?keep this?>\n"
    "<ns:SiteLists xmlns:ns=\"wxSiteList\" Type=\"Client\" unknown=\" &lt;x>&#09;\">\n"
    "  <Unknown><deep><deeper a=\"1\"/></deep></Unknown>\n"
    "  <SiteList Default=\"1\">\n"
    "    <HttpSite Server=\"one:80\" Local=\"0\">text<RelativePath>p</RelativePath></HttpSite>\n"
    "    <HttpSite Server=\"two:80\" Local=\"1\"><![CDATA[ <raw> ]]>&amp;</HttpSite><!-- c -->\n"
    "    <FTPSite Server=\"three:21\" Order=\"7\"/>\n"
    "  </SiteList>\n"
    "  <CaBundle><CaCertificate>AAAA&#13;\nBBBB</CaCertificate></CaBundle>\n"
    "</ns:SiteLists>\n"
    "<!-- footer -->\n";

class AnXmlFile : public testing::Test {
 protected:
  AnXmlFile() { write(c_list); }

  void write(const std::string& bytes) { test::writeFile(m_directory.file("list"), bytes); }

  AString path(const char* name = "list") const { return AString(wide(m_directory.file(name))); }

  bool open(AnXml& xml) const {
    return xml.useExistingFile(path(), L"ns:SiteLists", L"xmlns:ns", L"wxSiteList");
  }

  // Writes the document to a file and returns the content of the file.
  std::string saved(const AnXml& xml) const {
    EXPECT_TRUE(xml.writeFile(path("saved"), false, false));
    return test::readFile(m_directory.file("saved"));
  }

  test::TempDir m_directory;
};

TEST_F(AnXmlFile, IsWrittenAsItWasReadWithoutAnEdit) {
  AnXml xml;
  ASSERT_TRUE(open(xml));
  EXPECT_EQ(saved(xml), c_list);
}

TEST_F(AnXmlFile, SharesItsTreeWithANewDocument) {
  std::unique_ptr<AdvXMLParser::Document> document;
  {
    AnXml xml;
    ASSERT_TRUE(open(xml));
    document.reset(xml.newDocument());
    AnXmlNode(&xml).setValue(L"Type", AString(L"Changed"));
  }
  // The tree exists as long as one of the two.
  EXPECT_EQ(document->GetRoot().GetAttribute(L"Type").GetValue(), L"Changed");
}

TEST_F(AnXmlFile, HasNoDocumentToShareBeforeItHasOne) { EXPECT_EQ(AnXml().newDocument(), nullptr); }

TEST_F(AnXmlFile, IsReadInAnyEncodingAndWrittenAsUtf8) {
  for (const auto encoding : {AdvXMLParser::UTF_16LE, AdvXMLParser::UTF_16BE,
                              AdvXMLParser::UTF_32LE, AdvXMLParser::UTF_32BE}) {
    const std::wstring list =
        std::regex_replace(wide(c_list), std::wregex(L" encoding=\"UTF-8\""), L"");
    AdvXMLParser::WriteBufferToFile(path().str(), list, encoding, nullptr, nullptr);
    AnXml xml;
    ASSERT_TRUE(open(xml));
    EXPECT_EQ(saved(xml), c_list);
  }
}

TEST_F(AnXmlFile, IsRefusedWithAnotherRoot) {
  AnXml xml;
  EXPECT_FALSE(xml.useExistingFile(path(), L"SiteLists", L"xmlns:ns", L"wxSiteList"));
  EXPECT_FALSE(xml.useExistingFile(path(), L"ns:sitelists", L"xmlns:ns", L"wxSiteList"));
  EXPECT_FALSE(xml.useExistingFile(path(), L"ns:SiteLists", L"xmlns:ns", L"wxsitelist"));
  EXPECT_FALSE(xml.useExistingFile(path(), L"ns:SiteLists", L"xmlns:ns", L""));
  EXPECT_FALSE(xml.useExistingFile(path(), L"ns:SiteLists", L"xmlns:ns", nullptr));
  EXPECT_FALSE(xml.useExistingFile(path(), L"ns:SiteLists", L"xmlns", L"wxSiteList"));
  EXPECT_TRUE(AnXmlNode(&xml).isNull());
  EXPECT_TRUE(xml.useExistingFile(path(), L"ns:SiteLists", nullptr, nullptr));
  EXPECT_TRUE(xml.useExistingFile(path(), nullptr, nullptr, nullptr));
}

TEST_F(AnXmlFile, IsRefusedWhenItIsNoDocument) {
  AnXml xml;
  const std::string declared = "<ns:SiteLists xmlns:ns=\"wxSiteList\"";
  for (const std::string& bytes : {std::string(), std::string("invalid"), declared, declared + ">",
                                   "<!DOCTYPE a>" + declared + "/>", declared + " a=\"\xFF\"/>",
                                   declared + "/>" + std::string(1, '\0'),
                                   declared + ">" + test::repeated("<a>", 300) +
                                       test::repeated("</a>", 300) + "</ns:SiteLists>"}) {
    write(bytes);
    EXPECT_FALSE(open(xml)) << bytes.substr(0, 100);
  }
  EXPECT_FALSE(xml.useExistingFile(path("missing"), nullptr, nullptr, nullptr));
  EXPECT_FALSE(xml.useExistingFile(AString(wide(m_directory.path())), nullptr, nullptr, nullptr));
  write(declared + "/>");
  EXPECT_TRUE(open(xml));
}

TEST_F(AnXmlFile, IsReadWithAByteOrderMarkAndWrittenWithout) {
  write("\xEF\xBB\xBF" + std::string(c_list));
  AnXml xml;
  ASSERT_TRUE(open(xml));
  EXPECT_EQ(saved(xml), c_list);
}

TEST_F(AnXmlFile, IsRefusedWhenItIsNotValidInItsEncoding) {
  AnXml xml;
  const std::string start = "<ns:SiteLists xmlns:ns=\"wxSiteList\" a=\"";
  const std::string invalid[] = {
      "\x80",         "\xC0\xBC",         "\xE0\x80\xBC",        "\xE2\x82",
      "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80"};
  for (const char* mark : {"", "\xEF\xBB\xBF"}) {
    for (const std::string& bytes : invalid) {
      write(mark + start + bytes + "\"/>");
      EXPECT_FALSE(open(xml)) << testing::PrintToString(bytes);
    }
    write(mark + start + "\xC3\xA4\xE6\xBC\xA2\xF0\x9F\x98\x80\"/>");
    EXPECT_TRUE(open(xml));
  }
  std::string half("<\0a\0/\0>\0\x01\xD8", 10);
  write(half);
  EXPECT_FALSE(xml.useExistingFile(path(), nullptr, nullptr, nullptr));
  half.resize(8);
  write(half);
  EXPECT_TRUE(xml.useExistingFile(path(), nullptr, nullptr, nullptr));
}

TEST_F(AnXmlFile, StaysOpenWhenAnotherCannotBeOpened) {
  AnXml xml;
  ASSERT_TRUE(open(xml));
  const AnXmlNode root(&xml);
  write("invalid");
  EXPECT_FALSE(open(xml));
  EXPECT_EQ(root.getName().str(), L"ns:SiteLists");
  EXPECT_EQ(saved(xml), c_list);
}

TEST_F(AnXmlFile, IsReplacedByTheOneOpenedLater) {
  AnXml xml;
  ASSERT_TRUE(open(xml));
  write("<ns:SiteLists xmlns:ns=\"wxSiteList\"/>");
  ASSERT_TRUE(open(xml));
  EXPECT_EQ(saved(xml), test::c_declaration + "<ns:SiteLists xmlns:ns=\"wxSiteList\"/>");
}

TEST_F(AnXmlFile, IsNotWrittenWithoutADocumentOrWithReservedFlags) {
  AnXml xml;
  EXPECT_FALSE(xml.writeFile(path("saved"), false, false));
  ASSERT_TRUE(open(xml));
  EXPECT_FALSE(xml.writeFile(path("saved"), true, false));
  EXPECT_FALSE(xml.writeFile(path("saved"), false, true));
  EXPECT_FALSE(test::exists(m_directory.file("saved")));
}

TEST_F(AnXmlFile, StaysAsItWasWhenWritingFails) {
  AnXml xml;
  ASSERT_TRUE(open(xml));
  AnXmlNode(&xml).setValue(L"Type", L"Server");
  const auto before = test::snapshot(m_directory.path());
  for (const test::FileCall call :
       {test::FileCall::Open, test::FileCall::Write, test::FileCall::Rename}) {
    test::FaultyFileSystem faults;
    faults.failEvery(call, EIO);
    EXPECT_FALSE(xml.writeFile(path(), false, false)) << call;
    EXPECT_EQ(test::snapshot(m_directory.path()), before) << call;
  }
  EXPECT_TRUE(xml.writeFile(path(), false, false));
  EXPECT_NE(test::snapshot(m_directory.path()), before);
}

TEST_F(AnXmlFile, KeepsItsModeAndIsNotForEverybodyWhenNew) {
  AnXml xml;
  ASSERT_TRUE(open(xml));
  ::chmod(m_directory.file("list").c_str(), 0604);
  EXPECT_TRUE(xml.writeFile(path(), false, false));
  struct stat info;
  ASSERT_EQ(::stat(m_directory.file("list").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0604u);
  const mode_t before = ::umask(0);
  EXPECT_TRUE(xml.writeFile(path("new"), false, false));
  ::umask(before);
  ASSERT_EQ(::stat(m_directory.file("new").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
}

TEST_F(AnXmlFile, ChangesOnlyWhereItIsEdited) {
  AnXml xml;
  ASSERT_TRUE(open(xml));
  AnXmlNode site;
  AnXmlNode list;
  ASSERT_TRUE(AnXmlNode(&xml).getExistingChild(list, L"SiteList", 0, 0, 0, 0));
  ASSERT_TRUE(list.tryGetChild(site, L"HttpSite", L"Local", L"1", 0, 0));
  site.remove();
  ASSERT_TRUE(list.tryGetChild(site, L"FTPSite", 0, 0, 0, 0));
  site.setValue(L"Order", L"8");
  std::string expected = c_list;
  const std::string removed =
      "<HttpSite Server=\"two:80\" Local=\"1\"><![CDATA[ <raw> ]]>&amp;</HttpSite>";
  expected.erase(expected.find(removed), removed.size());
  expected.replace(expected.find("Order=\"7\""), 9, "Order=\"8\"");
  EXPECT_EQ(saved(xml), expected);
}

// The number of allocations of the tree that succeed. All later ones fail.
std::size_t g_allocationsLeft;

void* failingAllocate(std::size_t size) {
  if (g_allocationsLeft == 0) return nullptr;
  --g_allocationsLeft;
  return std::malloc(size);
}

TEST_F(AnXmlFile, IsNeverCopiedInPartWhenMemoryRunsOut) {
  const std::string big(40000, 'x');
  std::string certificates;
  for (int i = 0; i < 20; ++i)
    certificates += "<CaCertificate a='" + big + "'>" + big + "</CaCertificate>";
  write("<ns:SiteLists xmlns:ns='wxSiteList'><CaBundle>" + certificates +
        "</CaBundle></ns:SiteLists>");
  AnXml xml;
  ASSERT_TRUE(open(xml));
  AnXmlNode root(&xml);
  AnXmlNode bundle;
  ASSERT_TRUE(root.tryGetChild(bundle, L"CaBundle", 0, 0, 0, 0));
  const auto allocate = pugi::get_memory_allocation_function();
  const auto deallocate = pugi::get_memory_deallocation_function();
  pugi::set_memory_management_functions(failingAllocate, std::free);
  std::size_t failures = 0;
  bool done = false;
  for (std::size_t count = 0; count < 1000 && !done; ++count) {
    g_allocationsLeft = count;
    try {
      root.copyAsChild(bundle);
      done = true;
    } catch (const std::bad_alloc&) {
      ++failures;
    }
  }
  pugi::set_memory_management_functions(allocate, deallocate);
  EXPECT_TRUE(done);
  EXPECT_GT(failures, 10u);
}

}  // namespace
