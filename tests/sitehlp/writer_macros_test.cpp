#include <gmock/gmock.h>

#include <cstring>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "tests/sitehlp/writer_fixture.h"

// Expanded macro delimiters, and the writers of one record called on their own.
namespace {

using sitehlp::tag_Site;
using test::newSite;
using test::put;
using testing::ElementsAre;
using testing::HasSubstr;

// --- FormatEnvSymbols
// -----------------------------------------------------------------------------

class FormatEnvSymbols : public test::SitesHelperTest {
 protected:
  // Formats a buffer of `capacity` characters with a guard after it.
  std::wstring format(const std::wstring& text, unsigned int capacity) {
    std::vector<wchar_t> buffer(std::max<std::size_t>(capacity, text.size()) + 2, L'\0');
    std::copy(text.begin(), text.end(), buffer.begin());
    buffer.back() = L'?';
    EXPECT_EQ(helper.FormatEnvSymbols(buffer.data(), capacity), 0);
    EXPECT_EQ(buffer.back(), L'?');
    EXPECT_EQ(buffer[capacity - 1], L'\0');
    return buffer.data();
  }
  static std::wstring replaced(std::wstring text, const std::wstring& from,
                               const std::wstring& to) {
    for (std::size_t at = text.find(from); at != std::wstring::npos; at = text.find(from)) {
      text = text.substr(0, at) + to + text.substr(at + from.size());
    }
    return text;
  }
};

// Shows: expanded-macro
TEST_F(FormatEnvSymbols, TurnsExpandedDelimitersBack) {
  EXPECT_EQ(format(L"%%lt%%PATH%%gt%%/x", 260), L"<PATH>/x");
  EXPECT_EQ(format(L"%%lt%%A%%gt%%%%lt%%B%%gt%%", 260), L"<A><B>");
  EXPECT_EQ(format(L"%%gt%%%%lt%%", 260), L"><");
  EXPECT_EQ(format(L"<already>", 260), L"<already>");
}

TEST_F(FormatEnvSymbols, LeavesEverythingElseAlone) {
  for (const wchar_t* text : {L"", L"plain", L"%%LT%%", L"%%lt%", L"%lt%%", L"%%lt", L"%%%%",
                              L"%%Lt%%x%%Gt%%", L"\u65E5\u672C"}) {
    EXPECT_EQ(format(text, 260), text);
  }
}

TEST_F(FormatEnvSymbols, OverlappingDelimitersAreTakenFromTheStart) {
  EXPECT_EQ(format(L"%%lt%%lt%%", 260), L"<lt%%");
  EXPECT_EQ(format(L"%%%lt%%", 260), L"%<");
  EXPECT_EQ(format(L"%%gt%%lt%%", 260), L"%%gt<");
}

TEST_F(FormatEnvSymbols, CutsToTheCapacity) {
  EXPECT_EQ(format(L"0123456789", 11), L"0123456789");
  EXPECT_EQ(format(L"0123456789", 10), L"012345678");
  EXPECT_EQ(format(L"0123456789", 4), L"012");
  EXPECT_EQ(format(L"0123456789", 1), L"");
  EXPECT_EQ(format(L"%%lt%%12345", 11), L"<12345");
  EXPECT_EQ(messages(), std::vector<test::LogLine>());
}

TEST_F(FormatEnvSymbols, ReplacesInTheWholeTextBeforeItCuts) {
  // The replacement shortens the text, so that it fits.
  EXPECT_EQ(format(L"%%lt%%PATH%%gt%%/x", 9), L"<PATH>/x");
  EXPECT_EQ(format(L"%%lt%%PATH%%gt%%/x", 8), L"<PATH>/");
  // A delimiter that begins before the capacity and ends after it.
  EXPECT_EQ(format(L"0123%%lt%%", 6), L"0123<");
}

TEST_F(FormatEnvSymbols, NothingIsDoneWithoutCapacity) {
  wchar_t text[] = L"%%lt%%";
  EXPECT_EQ(helper.FormatEnvSymbols(text, 0), 0);
  EXPECT_STREQ(text, L"%%lt%%");
}

TEST_F(FormatEnvSymbols, NullAndEmptyBuffersAreLeftAlone) {
  EXPECT_EQ(helper.FormatEnvSymbols(nullptr, 260), 0);
  wchar_t empty[] = {L'\0', L'a', L'b'};
  EXPECT_EQ(helper.FormatEnvSymbols(empty, 3), 0);
  EXPECT_EQ(empty[1], L'a');
  EXPECT_EQ(empty[2], L'b');
}

TEST_F(FormatEnvSymbols, OpensItsScopeOnEveryWay) {
  agent.clearLog();
  helper.FormatEnvSymbols(nullptr, 260);
  format(L"x", 260);
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"Enter: Formatting environment symbols"),
                                       detail(L"Leave: Formatting environment symbols"),
                                       detail(L"Enter: Formatting environment symbols"),
                                       detail(L"Leave: Formatting environment symbols")));
}

TEST_F(FormatEnvSymbols, AgreesWithReplacingOneByOne) {
  std::mt19937 random(20261121);
  const std::vector<std::wstring> pieces = {L"%",      L"%%", L"lt", L"gt",    L"%%lt%%",
                                            L"%%gt%%", L"<",  L"x",  L"\u65E5"};
  for (int n = 0; n < 5000; ++n) {
    std::wstring text;
    for (std::size_t count = random() % 12; count > 0; --count) {
      text += pieces[random() % pieces.size()];
    }
    const std::wstring expected = replaced(replaced(text, L"%%lt%%", L"<"), L"%%gt%%", L">");
    const unsigned int capacity = 1 + static_cast<unsigned int>(random() % 60);
    if (text.empty()) continue;
    ASSERT_EQ(format(text, capacity), expected.substr(0, capacity - 1))
        << testing::PrintToString(text) << " in " << capacity;
  }
}

// --- In the records
// -------------------------------------------------------------------------------

class WriterMacros : public test::WriterTest {
 protected:
  // ">" may stand as it is or escaped.
  std::string sitesOf(const test::ListPtr& list) {
    return std::regex_replace(WriterTest::sitesOf(list), std::regex("&gt;"), ">");
  }
  // Fills a text field with a macro.
  template <std::size_t N>
  static void putMacro(wchar_t (&field)[N]) {
    put(field, L"%%lt%%M%%gt%%");
  }
  static bool formatted(const wchar_t* field) { return std::wstring(field) == L"<M>"; }
  static bool expanded(const wchar_t* field) { return std::wstring(field) == L"%%lt%%M%%gt%%"; }

  static tag_Site* httpWithMacros(const std::wstring& element) {
    tag_Site* site = newSite(sitehlp::SITE_KIND_HTTP);
    put(site->http.szElement, element);
    for (auto* field : {&site->szType, &site->http.szName, &site->http.szServer,
                        &site->http.szUserName, &site->http.szPassword, &site->http.szVersion}) {
      putMacro(*field);
    }
    putMacro(site->http.szRelativePath);
    putMacro(site->http.szServerName);
    putMacro(site->http.szServerIP);
    return site;
  }
};

// Shows: expanded-macro
TEST_F(WriterMacros, HttpRecordIsChangedWhereItIsFormatted) {
  for (const wchar_t* element : {L"HttpSite", L"VestaSite", L"KeystoneSite"}) {
    const test::ListPtr list(httpWithMacros(element));
    const auto& http = list->http;
    const bool named = std::wstring(element) != L"HttpSite";
    const std::string text = sitesOf(list);
    EXPECT_THAT(text, HasSubstr("Server=\"&lt;M>:0\""));
    EXPECT_THAT(text, HasSubstr("<RelativePath>&lt;M></RelativePath>"));
    EXPECT_TRUE(formatted(http.szServer));
    EXPECT_TRUE(formatted(http.szRelativePath));
    EXPECT_EQ(formatted(http.szServerName), named) << test::narrow(element);
    EXPECT_EQ(formatted(http.szServerIP), named) << test::narrow(element);
    EXPECT_EQ(formatted(http.szVersion), std::wstring(element) == L"VestaSite");
    EXPECT_TRUE(expanded(list->szType));
    EXPECT_TRUE(expanded(http.szName));
    EXPECT_TRUE(expanded(http.szUserName));
    EXPECT_TRUE(expanded(http.szPassword));
    EXPECT_THAT(text, HasSubstr("Name=\"%%lt%%M%%gt%%\""));
    EXPECT_THAT(text, HasSubstr("<UserName>%%lt%%M%%gt%%</UserName>"));
  }
}

// Shows: expanded-macro
TEST_F(WriterMacros, FtpRecordIsChangedWhereItIsFormatted) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_FTP);
  const test::ListPtr list(site);
  for (auto* field :
       {&site->ftp.szName, &site->ftp.szServer, &site->ftp.szUserName, &site->ftp.szPassword}) {
    putMacro(*field);
  }
  putMacro(site->ftp.szRelativePath);
  EXPECT_THAT(sitesOf(list), HasSubstr("Server=\"&lt;M>:0\""));
  EXPECT_TRUE(formatted(site->ftp.szServer));
  EXPECT_TRUE(formatted(site->ftp.szRelativePath));
  EXPECT_TRUE(expanded(site->ftp.szName));
  EXPECT_TRUE(expanded(site->ftp.szUserName));
  EXPECT_TRUE(expanded(site->ftp.szPassword));
}

// Shows: expanded-macro
TEST_F(WriterMacros, UncRecordIsChangedWhereItIsFormatted) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_UNC);
  const test::ListPtr list(site);
  for (auto* field : {&site->unc.szName, &site->unc.szServer, &site->unc.szDomainName,
                      &site->unc.szUserName, &site->unc.szPassword, &site->unc.szShareName}) {
    putMacro(*field);
  }
  putMacro(site->unc.szRelativePath);
  EXPECT_THAT(sitesOf(list), HasSubstr("<ShareName>%%lt%%M%%gt%%</ShareName>"));
  EXPECT_TRUE(formatted(site->unc.szServer));
  EXPECT_TRUE(formatted(site->unc.szRelativePath));
  EXPECT_TRUE(formatted(site->unc.szDomainName));
  EXPECT_TRUE(expanded(site->unc.szName));
  EXPECT_TRUE(expanded(site->unc.szUserName));
  EXPECT_TRUE(expanded(site->unc.szPassword));
  EXPECT_TRUE(expanded(site->unc.szShareName));
}

// Shows: expanded-macro
TEST_F(WriterMacros, LocalRecordIsChangedWhereItIsFormatted) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_LOCAL);
  const test::ListPtr list(site);
  for (auto* field : {&site->local.szName, &site->local.szDomainName, &site->local.szUserName,
                      &site->local.szPassword}) {
    putMacro(*field);
  }
  putMacro(site->local.szRelativePath);
  EXPECT_THAT(sitesOf(list), HasSubstr("<DomainName>&lt;M></DomainName>"));
  EXPECT_TRUE(formatted(site->local.szRelativePath));
  EXPECT_TRUE(formatted(site->local.szDomainName));
  EXPECT_TRUE(expanded(site->local.szName));
  EXPECT_TRUE(expanded(site->local.szUserName));
  EXPECT_TRUE(expanded(site->local.szPassword));
}

TEST_F(WriterMacros, FieldWithoutATerminatorIsCutToItsSize) {
  tag_Site* http = newSite(sitehlp::SITE_KIND_HTTP);
  tag_Site* ftp = newSite(sitehlp::SITE_KIND_FTP);
  tag_Site* unc = newSite(sitehlp::SITE_KIND_UNC);
  tag_Site* local = newSite(sitehlp::SITE_KIND_LOCAL);
  tag_Site* proxy = newSite(sitehlp::SITE_KIND_PROXY);
  const test::ListPtr list = test::chain({http, ftp, unc, local, proxy});
  put(http->http.szElement, L"VestaSite");
  const auto eachField = [&](auto visit) {
    visit(http->http.szServer), visit(http->http.szServerName), visit(http->http.szServerIP);
    visit(http->http.szRelativePath), visit(http->http.szVersion);
    visit(ftp->ftp.szServer), visit(ftp->ftp.szRelativePath);
    visit(unc->unc.szServer), visit(unc->unc.szRelativePath), visit(unc->unc.szDomainName);
    visit(local->local.szRelativePath), visit(local->local.szDomainName);
    visit(proxy->proxy.szHttpProxyServer), visit(proxy->proxy.szFtpProxyServer);
  };
  char letter = 'a';
  eachField(
      [&](auto& field) { std::wmemset(field, static_cast<wchar_t>(letter++), std::size(field)); });
  const std::string text = sitesOf(list);
  letter = 'a';
  eachField([&](auto& field) {
    const std::string cut(std::size(field) - 1, letter);
    EXPECT_EQ(test::narrow(field), cut);
    EXPECT_NE(text.find(cut), std::string::npos) << letter;
    EXPECT_EQ(text.find(cut + letter), std::string::npos) << letter;
    ++letter;
  });
  EXPECT_EQ(letter, 'a' + 14);
}

// --- One writer on its own
// ------------------------------------------------------------------------

class OneWriter : public test::SitesHelperTest {
 protected:
  using Writer = int (sitehlp::CSitesHelper::*)(tag_Site*, int);
  static constexpr Writer c_writers[] = {
      &sitehlp::CSitesHelper::AddHTTPSite, &sitehlp::CSitesHelper::AddFTPSite,
      &sitehlp::CSitesHelper::AddUNCSite, &sitehlp::CSitesHelper::AddLocalSite,
      &sitehlp::CSitesHelper::AddProxySite};
  static constexpr const wchar_t* c_names[] = {L"HttpSite", L"FTPSite", L"UNCSite", L"LocalSite",
                                               L"ProxyConfigList"};
  static std::vector<std::wstring> childrenOf(const AdvXMLParser::Element& element) {
    std::vector<std::wstring> names;
    for (const AdvXMLParser::Element child : element.Elements()) names.push_back(child.GetName());
    return names;
  }
};

TEST_F(OneWriter, PositionZeroPutsTheElementIntoTheAnchorAndMakesItTheAnchor) {
  for (std::size_t i = 0; i < 5; ++i) {
    AdvXMLParser::Document document(L"root");
    AdvXMLParser::Element anchor = document.GetRoot().AddElementInto(L"anchor");
    helper.m_pSiteListElement = &anchor;
    const test::ListPtr site(newSite(static_cast<sitehlp::SiteKind>(i)));
    EXPECT_EQ((helper.*c_writers[i])(site.get(), 0), 0);
    EXPECT_THAT(childrenOf(document.GetRoot()), ElementsAre(L"anchor"));
    EXPECT_THAT(childrenOf(document.GetRoot().GetElement(L"anchor")), ElementsAre(c_names[i]));
    EXPECT_EQ(helper.m_pSiteListElement->GetName(), c_names[i]);
    helper.m_pSiteListElement = nullptr;
  }
}

TEST_F(OneWriter, OtherPositionsPutTheElementBehindTheAnchor) {
  for (std::size_t i = 0; i < 5; ++i) {
    for (const int position : {1, 2, 17, -1}) {
      AdvXMLParser::Document document(L"root");
      AdvXMLParser::Element anchor = document.GetRoot().AddElementInto(L"anchor");
      helper.m_pSiteListElement = &anchor;
      const test::ListPtr site(newSite(static_cast<sitehlp::SiteKind>(i)));
      EXPECT_EQ((helper.*c_writers[i])(site.get(), position), 0);
      EXPECT_THAT(childrenOf(document.GetRoot()), ElementsAre(L"anchor", c_names[i]));
      EXPECT_EQ(helper.m_pSiteListElement->GetName(), c_names[i]);
      helper.m_pSiteListElement = nullptr;
    }
  }
}

TEST_F(OneWriter, WithoutAnAnchorWritesNothingAndLeavesTheRecordAlone) {
  for (std::size_t i = 0; i < 5; ++i) {
    for (const int position : {0, 1}) {
      test::Probe fresh(true);
      const test::ListPtr site(newSite(static_cast<sitehlp::SiteKind>(i)));
      test::put(site->proxy.szExclusionList, L"a;b");
      const tag_Site before = *site;
      EXPECT_EQ((fresh.*c_writers[i])(site.get(), position), 0);
      EXPECT_EQ(std::memcmp(site.get(), &before, sizeof before), 0);
      EXPECT_EQ(fresh.m_pSiteListElement, nullptr);
    }
  }
}

}  // namespace
