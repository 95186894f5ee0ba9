#ifndef TESTS_SITEHLP_WRITER_FIXTURE_H
#define TESTS_SITEHLP_WRITER_FIXTURE_H

#include <regex>
#include <string>
#include <vector>

#include "tests/sitehlp/password_fixture.h"

namespace test {

class WriterTest : public PasswordTest {
 protected:
  std::wstring outPath() const { return path("out.xml"); }
  std::string outText() const { return readFile(narrow(outPath())); }
  std::string meshText() const { return readFile(agent.dataDirectory() + "/mesh/SiteList.xml"); }

  int write(const ListPtr& list, const std::vector<std::wstring>& certificates = {}) {
    return helper.CreateSiteList(list.get(), outPath(), L"G", L"L", L"T", certificates);
  }

  // Returns a document for a comparison: every password is clear, and every empty element has two
  // tags.
  static std::string comparable(const std::string& document) {
    static const std::regex c_emptyElement(R"(<([\w:]+)((?: [\w:]+="[^"]*")*) ?/>)");
    const std::string text = std::regex_replace(document, c_emptyElement, "<$1$2></$1>");
    static const std::string c_start = R"(Encrypted="1">)";
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = text.find(c_start); at != std::string::npos;
         at = text.find(c_start, from)) {
      const std::size_t begin = at + c_start.size();
      const std::size_t end = text.find('<', begin);
      result += text.substr(from, begin - from);
      result += narrow(unsealed(wide(text.substr(begin, end - begin))));
      from = end;
    }
    return result + text.substr(from);
  }
  std::string written() const { return comparable(outText()); }

  // Returns the content of the "SiteList" element after this list was written.
  std::string sitesOf(const ListPtr& list) {
    EXPECT_EQ(write(list), 0);
    const std::string text = written();
    static const std::string c_open = R"(<SiteList Default="1" Name="SomeGUID">)";
    const std::size_t begin = text.find(c_open);
    const std::size_t end = text.find("</SiteList>");
    EXPECT_NE(begin, std::string::npos) << text;
    EXPECT_NE(end, std::string::npos) << text;
    if (begin == std::string::npos || end == std::string::npos) return text;
    return text.substr(begin + c_open.size(), end - begin - c_open.size());
  }
  std::string siteOf(sitehlp::tag_Site* site) { return sitesOf(ListPtr(site)); }

  static const std::string& emptyList() {
    static const std::string text =
        c_declaration +
        R"(<ns:SiteLists xmlns:ns="wxSiteList" GlobalVersion="G" LocalVersion="L" Type="T">)"
        R"(<SiteList Default="1" Name="SomeGUID"></SiteList></ns:SiteLists>)";
    return text;
  }
};

}  // namespace test

#endif
