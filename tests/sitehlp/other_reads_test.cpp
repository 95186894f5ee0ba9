#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "tests/sitehlp/document_bytes.h"
#include "tests/sitehlp/sites_helper_fixture.h"

// MustReadSiteList, GetSiteListBuffer and ReadSiteFromSiteList.
namespace {

using sitehlp::CSitesHelper;
using sitehlp::tag_Site;
using test::LogLine;
using test::Probe;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string c_oneSite = test::documentWithSites(R"(<HttpSite Name="one"/>)");

// --- MustReadSiteList
// -----------------------------------------------------------------------------

class MustRead : public test::SitesHelperTest {
 protected:
  int mustRead(const std::wstring& file) {
    tag_Site* list = nullptr;
    agent.clearLog();
    const int code = helper.MustReadSiteList(file, &list);
    owner.reset(list);
    return code;
  }
  test::ListPtr owner;
};

// Shows: MustReadSiteList=-1
TEST_F(MustRead, EmptyPathIsRefusedEvenWithAnOwnFile) {
  Probe own(store(c_oneSite));
  agent.clearLog();
  tag_Site* list = test::untouched();
  EXPECT_EQ(own.MustReadSiteList(L"", &list), -1);
  EXPECT_EQ(list, test::untouched());
  EXPECT_THAT(agent.log(),
              ElementsAre(LogLine{LogLevel::InternalError, L"SiteHlp", L"path is empty"}));
}

// Shows: MustReadSiteList=0
TEST_F(MustRead, ReadsTheFile) {
  EXPECT_EQ(mustRead(store(c_oneSite)), 0);
  ASSERT_EQ(test::lengthOf(owner.get()), 1);
  EXPECT_STREQ(owner->http.szName, L"one");
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"Enter: Reading Sitelist"),
                                       detail(L"Enter: Reading site from SiteList"),
                                       detail(L"Leave: Reading site from SiteList"),
                                       detail(L"Leave: Reading Sitelist")));
}

// Shows: MustReadSiteList=-4, MustReadSiteList=-5, MustReadSiteList=-10
TEST_F(MustRead, FailuresAreLoggedWithTheirResult) {
  EXPECT_EQ(mustRead(path("missing.xml")), -4);
  EXPECT_THAT(messages(), ElementsAre(error(L"Failed hr=-4")));
  EXPECT_EQ(mustRead(store("no document")), -5);
  EXPECT_THAT(messages(), ElementsAre(error(L"Failed hr=-5")));
  EXPECT_EQ(mustRead(test::wide(agent.dataDirectory())), -10);
  EXPECT_THAT(messages(), ElementsAre(error(L"Failed hr=-10")));
}

TEST_F(MustRead, EmptyListIsLoggedAsAFailure) {
  EXPECT_EQ(mustRead(store(test::documentWithSites(""))), 0);
  EXPECT_EQ(owner, nullptr);
  EXPECT_THAT(messages(), ElementsAre(error(L"Failed hr=0")));
}

// Shows: MustReadSiteList=-1
TEST_F(MustRead, ListWithAnUnknownLastSiteIsHandedOutAndLogged) {
  EXPECT_EQ(mustRead(store(test::documentWithSites("<UNCSite/><Other/>"))), -1);
  EXPECT_EQ(test::lengthOf(owner.get()), 2);
  EXPECT_THAT(messages(), ElementsAre(error(L"Failed hr=-1")));
}

TEST_F(MustRead, MissingFileLeavesTheOutputAlone) {
  tag_Site* list = test::untouched();
  EXPECT_EQ(helper.MustReadSiteList(path("missing.xml"), &list), -4);
  EXPECT_EQ(list, test::untouched());
}

TEST_F(MustRead, NeitherUsesNorFillsTheCache) {
  tag_Site* cached = nullptr;
  ASSERT_EQ(helper.SmartReadSiteList(store(test::documentWithSites("<UNCSite/>")), &cached), 0);
  EXPECT_EQ(mustRead(store(c_oneSite, "other.xml")), 0);
  EXPECT_NE(owner.get(), cached);
  EXPECT_EQ(owner->eSiteKind, sitehlp::SITE_KIND_HTTP);
  EXPECT_EQ(CSitesHelper::m_pSiteList, cached);
  EXPECT_EQ(CSitesHelper::m_iChange, 1);
}

// --- GetSiteListBuffer
// ----------------------------------------------------------------------------

class SiteListBuffer : public test::SitesHelperTest {
 protected:
  std::wstring bufferOf(const std::string& bytes) {
    std::wstring text = L"as it was";
    EXPECT_TRUE(Probe(store(bytes)).GetSiteListBuffer(text));
    return text;
  }
};

TEST_F(SiteListBuffer, IsTheTextOfTheOwnFile) {
  EXPECT_EQ(bufferOf(c_oneSite), test::wide(c_oneSite));
  EXPECT_EQ(bufferOf("no document"), L"no document");
  EXPECT_EQ(bufferOf(""), L"");
}

TEST_F(SiteListBuffer, LosesTheOpeningTagOfTheBundleAlone) {
  EXPECT_EQ(bufferOf("<a><CaBundle><CaCertificate>c</CaCertificate></CaBundle><b/></a>"),
            L"<a><CaCertificate>c</CaCertificate></CaBundle><b/></a>");
  EXPECT_EQ(bufferOf("<CaBundle>"), L"");
}

TEST_F(SiteListBuffer, LosesTheFirstOfSeveralTags) {
  EXPECT_EQ(bufferOf("<CaBundle>1<CaBundle>2"), L"1<CaBundle>2");
}

TEST_F(SiteListBuffer, KeepsTagsThatAreWrittenOtherwise) {
  for (const char* text :
       {"<CaBundle/>", "<CaBundle >", "<cabundle>", "</CaBundle>", "CaBundle>"}) {
    EXPECT_EQ(bufferOf(text), test::wide(text));
  }
}

TEST_F(SiteListBuffer, IsReadInEveryEncodingWithoutItsMark) {
  const std::wstring text = L"<a>\u65E5\u672C<CaBundle>\U0001F600</CaBundle></a>";
  for (const test::Encoding& encoding : test::c_encodings) {
    EXPECT_EQ(bufferOf(test::encode(text, encoding, true)),
              L"<a>\u65E5\u672C\U0001F600</CaBundle></a>");
  }
}

TEST_F(SiteListBuffer, WithoutAnOwnFileThereIsNone) {
  std::wstring text = L"as it was";
  EXPECT_FALSE(helper.GetSiteListBuffer(text));
  EXPECT_FALSE(Probe(path("missing.xml")).GetSiteListBuffer(text));
  EXPECT_EQ(text, L"as it was");
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(SiteListBuffer, OpensTheScopeOfAReadOnEveryWay) {
  Probe own(store(c_oneSite));
  agent.clearLog();
  std::wstring text;
  EXPECT_FALSE(helper.GetSiteListBuffer(text));
  EXPECT_TRUE(own.GetSiteListBuffer(text));
  EXPECT_THAT(agent.log(),
              ElementsAre(detail(L"Enter: Reading Sitelist"), detail(L"Leave: Reading Sitelist"),
                          detail(L"Enter: Reading Sitelist"), detail(L"Leave: Reading Sitelist")));
}

TEST_F(SiteListBuffer, FileThatCannotBeReadThrows) {
  Probe directory(test::wide(agent.dataDirectory()));
  std::wstring text = L"as it was";
  EXPECT_THROW(directory.GetSiteListBuffer(text), AdvXMLParser::ReadWriteException);
  Probe invalid(store("<a>\xFF</a>"));
  EXPECT_THROW(invalid.GetSiteListBuffer(text), AdvXMLParser::ReadWriteException);
  EXPECT_EQ(text, L"as it was");
}

TEST_F(SiteListBuffer, ReadsNoRecordsAndNoPolicies) {
  Probe own(store(test::documentWithRoot(R"(<Policies><Setting name="a">1</Setting></Policies>)")));
  std::wstring text;
  EXPECT_TRUE(own.GetSiteListBuffer(text));
  EXPECT_THAT(own.m_policySettings, IsEmpty());
  EXPECT_EQ(own.m_strCurrentFile, L"");
  EXPECT_EQ(CSitesHelper::m_pSiteList, nullptr);
}

// --- The decoder on its own
// -----------------------------------------------------------------------

class DecodeElement : public test::SitesHelperTest {
 protected:
  struct FreeRecord {
    void operator()(void* record) const { std::free(record); }
  };
  struct Decoded {
    int code;
    std::unique_ptr<void, FreeRecord> record;
  };
  Decoded decodeElement(const std::wstring& text) {
    const std::unique_ptr<AdvXMLParser::Document> document(
        AdvXMLParser::Parser().Parse(text.c_str(), text.size()));
    AdvXMLParser::Element element = document->GetRoot();
    void* record = test::untouched();
    const int code = helper.ReadSiteFromSiteList(&element, &record);
    EXPECT_NE(record, test::untouched());
    return {code, std::unique_ptr<void, FreeRecord>(record)};
  }
  template <typename Record>
  static bool isZero(const Record& record) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
    for (std::size_t i = 0; i < sizeof record; ++i) {
      if (bytes[i] != 0) return false;
    }
    return true;
  }
};

// Shows: ReadSiteFromSiteList=0
TEST_F(DecodeElement, KnownElementGivesARecord) {
  const Decoded http = decodeElement(L"<KeystoneSite Name=\"k\"/>");
  EXPECT_EQ(http.code, 0);
  ASSERT_NE(http.record, nullptr);
  EXPECT_STREQ(static_cast<sitehlp::tag_HttpSite*>(http.record.get())->szName, L"k");
  EXPECT_STREQ(static_cast<sitehlp::tag_HttpSite*>(http.record.get())->szElement, L"KeystoneSite");
  const Decoded proxy = decodeElement(L"<ProxyConfig Name=\"p\"/>");
  EXPECT_EQ(proxy.code, 0);
  ASSERT_NE(proxy.record, nullptr);
  EXPECT_STREQ(static_cast<sitehlp::tag_ProxySite*>(proxy.record.get())->szName, L"p");
}

// Shows: missing-values, nothing-required
TEST_F(DecodeElement, RecordIsZeroWhereTheElementSaysNothing) {
  const Decoded unc = decodeElement(L"<UNCSite/>");
  ASSERT_NE(unc.record, nullptr);
  EXPECT_TRUE(isZero(*static_cast<sitehlp::tag_UncSite*>(unc.record.get())));
  const Decoded local = decodeElement(L"<LocalSite/>");
  ASSERT_NE(local.record, nullptr);
  EXPECT_TRUE(isZero(*static_cast<sitehlp::tag_LocalSite*>(local.record.get())));
  const Decoded proxy = decodeElement(L"<ProxyConfig/>");
  ASSERT_NE(proxy.record, nullptr);
  EXPECT_TRUE(isZero(*static_cast<sitehlp::tag_ProxySite*>(proxy.record.get())));
}

// Shows: ReadSiteFromSiteList=-1
TEST_F(DecodeElement, UnknownElementGivesANullRecord) {
  for (const wchar_t* text : {L"<Other/>", L"<ProxyConfigList><ProxyConfig/></ProxyConfigList>",
                              L"<httpsite/>", L"<HTTPSite/>", L"<FtpSite/>", L"<UncSite/>",
                              L"<Pyx_MasterSite/>", L"<FtpHttp/>", L"<ns:HttpSite/>"}) {
    const Decoded decoded = decodeElement(text);
    EXPECT_EQ(decoded.code, -1) << test::narrow(text);
    EXPECT_EQ(decoded.record, nullptr) << test::narrow(text);
  }
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(DecodeElement, OpensItsScope) {
  decodeElement(L"<HttpSite/>");
  decodeElement(L"<Other/>");
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"Enter: Reading site from SiteList"),
                                       detail(L"Leave: Reading site from SiteList"),
                                       detail(L"Enter: Reading site from SiteList"),
                                       detail(L"Leave: Reading site from SiteList")));
}

}  // namespace
