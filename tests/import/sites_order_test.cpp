#include <cctype>
#include <utility>

#include "tests/import/import_fixture.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

tag_Site vendorHttp(int order) {
  tag_Site site = httpSite(L"vendor http");
  setText(site.http.szServer, wide(VENDOR_HTTP_HOST));
  site.http.uServerPort = 80;
  site.iOrder = order;
  return site;
}

tag_Site vendorFtp(int order) {
  tag_Site site = ftpSite(L"vendor ftp");
  setText(site.ftp.szServer, wide(VENDOR_FTP_HOST));
  site.ftp.uServerPort = 21;
  site.iOrder = order;
  return site;
}

class SitesOrder : public testing::Test {
 protected:
  // Returns the orders of the list afterwards. Nothing else in the list may change.
  std::vector<int> adjusted(const SiteChain& list) {
    SiteChain before;
    for (const tag_Site* site : recordsOf(list.head())) before.add(*site);
    agent.clearLog();
    helper.AdjustSitesOrder(list.head());
    std::vector<int> orders;
    tag_Site* old = before.head();
    for (const tag_Site* site = list.head(); site; site = site->pNext, old = old->pNext) {
      orders.push_back(site->iOrder);
      old->iOrder = site->iOrder;
      EXPECT_TRUE(sameContent(*site, *old));
    }
    return orders;
  }
  bool exchangeLogged() const {
    const auto messages = libraryMessages(agent);
    if (messages.empty()) return false;
    EXPECT_THAT(messages, ElementsAre(infoLine(L"Exchanged orders for WexHttp and WexFtp.")));
    return true;
  }
  // Returns whether the record qualifies for the exchange. Pairs it with a vendor record of the
  // other kind, with FTP first.
  bool qualifies(const tag_Site& site) {
    const bool isFtp = site.eSiteKind == SITE_KIND_FTP;
    const SiteChain list{isFtp ? vendorHttp(2) : site, isFtp ? site : vendorFtp(1)};
    const auto orders = adjusted(list);
    const bool exchanged = orders == std::vector<int>{1, 2};
    EXPECT_TRUE(exchanged || orders == (std::vector<int>{2, 1}));
    EXPECT_EQ(exchangeLogged(), exchanged);
    return exchanged;
  }

  TestAgent agent;
  OpenHelper helper{true};
};

TEST_F(SitesOrder, HttpComesBeforeFtpForEveryPairOfOrders) {
  const int values[] = {-3, -1, 0, 1, 2, 5, 65535};
  for (const int http : values) {
    for (const int ftp : values) {
      const bool exchange = http != 0 && ftp != 0 && ftp < http;
      const int newHttp = exchange ? ftp : http;
      const int newFtp = exchange ? http : ftp;
      const SiteChain httpFirst{httpSite(L"a"), vendorHttp(http), vendorFtp(ftp)};
      EXPECT_THAT(adjusted(httpFirst), ElementsAre(7, newHttp, newFtp)) << http << " " << ftp;
      EXPECT_EQ(exchangeLogged(), exchange);
      const SiteChain ftpFirst{vendorFtp(ftp), httpSite(L"a"), vendorHttp(http)};
      EXPECT_THAT(adjusted(ftpFirst), ElementsAre(newFtp, 7, newHttp)) << http << " " << ftp;
      EXPECT_EQ(exchangeLogged(), exchange);
    }
  }
}

TEST_F(SitesOrder, TracesItsScope) {
  helper.AdjustSitesOrder(nullptr);
  EXPECT_TRUE(tracedScope(agent, L"Adjusting sitelist order"));
  EXPECT_THAT(agent.messages(), IsEmpty());
}

TEST_F(SitesOrder, OneOfThePairAloneIsLeftAlone) {
  const SiteChain http{vendorHttp(4), httpSite(L"a")};
  EXPECT_THAT(adjusted(http), ElementsAre(4, 7));
  const SiteChain ftp{vendorFtp(1), httpSite(L"a")};
  EXPECT_THAT(adjusted(ftp), ElementsAre(1, 7));
  EXPECT_FALSE(exchangeLogged());
}

TEST_F(SitesOrder, OnlyTheFirstOfEachCounts) {
  const SiteChain list{vendorHttp(2), vendorFtp(1), vendorHttp(9), vendorFtp(-9)};
  EXPECT_THAT(adjusted(list), ElementsAre(1, 2, 9, -9));
  const SiteChain zeroFirst{vendorHttp(0), vendorHttp(2), vendorFtp(1)};
  EXPECT_THAT(adjusted(zeroFirst), ElementsAre(0, 2, 1));
  EXPECT_FALSE(exchangeLogged());
}

TEST_F(SitesOrder, OnesThatDoNotQualifyAreSkippedOver) {
  tag_Site disabled = vendorHttp(9);
  disabled.bEnabled = 0;
  const SiteChain list{disabled, vendorHttp(2), vendorFtp(1)};
  EXPECT_THAT(adjusted(list), ElementsAre(9, 1, 2));
}

TEST_F(SitesOrder, TheHostIsComparedWithoutRegardToCase) {
  std::string upper = VENDOR_HTTP_HOST;
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  tag_Site http = vendorHttp(2);
  setText(http.http.szServer, wide(upper));
  EXPECT_TRUE(qualifies(http));
  upper = VENDOR_FTP_HOST;
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  tag_Site ftp = vendorFtp(1);
  setText(ftp.ftp.szServer, wide(upper));
  EXPECT_TRUE(qualifies(ftp));
}

TEST_F(SitesOrder, AnotherHostOrPortDoesNotQualify) {
  tag_Site http = vendorHttp(2);
  setText(http.http.szServer, wide(VENDOR_HTTP_HOST) + L".other");
  EXPECT_FALSE(qualifies(http));
  http = vendorHttp(2);
  http.http.uServerPort = 8080;
  EXPECT_FALSE(qualifies(http));
  tag_Site ftp = vendorFtp(1);
  setText(ftp.ftp.szServer, wide(VENDOR_HTTP_HOST));
  EXPECT_FALSE(qualifies(ftp));
  ftp = vendorFtp(1);
  ftp.ftp.uServerPort = 80;
  EXPECT_FALSE(qualifies(ftp));
}

TEST_F(SitesOrder, DisabledLocalAndFallbackSitesDoNotQualify) {
  for (tag_Site site : {vendorHttp(2), vendorFtp(1)}) {
    EXPECT_TRUE(qualifies(site));
    EXPECT_TRUE(qualifies(typed(site, L""))) << "any other type does";
    EXPECT_FALSE(qualifies(typed(site, L"fallback")));
    EXPECT_FALSE(qualifies(typed(site, L"FallBack")));
    site.bEnabled = 0;
    EXPECT_FALSE(qualifies(site));
    site.bEnabled = 2;
    EXPECT_FALSE(qualifies(site)) << "enabled is exactly 1";
    site.bEnabled = 1;
    site.bLocal = 1;
    EXPECT_FALSE(qualifies(site));
  }
}

TEST_F(SitesOrder, TheKindDecidesNotTheElement) {
  tag_Site keystone = vendorHttp(2);
  setText(keystone.http.szElement, L"KeystoneSite");
  EXPECT_TRUE(qualifies(keystone));
  const SiteChain twoHttp{vendorHttp(2), vendorHttp(1)};
  EXPECT_THAT(adjusted(twoHttp), ElementsAre(2, 1));
}

class ImportedOrder : public ImportFixture {
 protected:
  // Imports a list with both vendor repositories and returns their orders as written.
  std::pair<int, int> imported(const std::string& httpAttributes,
                               const std::string& ftpAttributes) {
    writeFile(keyDir.file("srpubkey.bin"), "key");
    incomingList(document("<HttpSite Name=\"h\" Enabled=\"1\" Server=\"" VENDOR_HTTP_HOST ":80\" " +
                          httpAttributes +
                          "/><FTPSite Name=\"f\" Enabled=\"1\" Server=\"" VENDOR_FTP_HOST ":21\" " +
                          ftpAttributes + "/>"));
    EXPECT_EQ(import(), 0);
    SiteChain list;
    EXPECT_EQ(helper->ReadSiteList(wide(own), list.address(), true), 0);
    if (!list.head() || !list.head()->pNext) return {-99, -99};
    return {list.head()->iOrder, list.head()->pNext->iOrder};
  }
};

TEST_F(ImportedOrder, TheWrittenListHasHttpBeforeFtp) {
  EXPECT_EQ(imported("Order=\"2\"", "Order=\"1\""), std::make_pair(1, 2));
  EXPECT_THAT(libraryMessages(agent),
              ElementsAreArray(joined(
                  joined({infoLine(L"Exchanged orders for WexHttp and WexFtp.")}, beginning()),
                  {meshLine})));
}

TEST_F(ImportedOrder, WithoutAnHttpOrderNothingIsExchanged) {
  EXPECT_EQ(imported("", "Order=\"1\""), std::make_pair(0, 1));
  EXPECT_THAT(libraryMessages(agent), ElementsAreArray(joined(beginning(), {meshLine})));
}

TEST_F(ImportedOrder, TheExchangeComesFirstEvenWhereTheImportFails) {
  const SiteChain sites{vendorHttp(2), vendorFtp(1)};
  agent.clearLog();
  EXPECT_EQ(helper->InternalImportSiteList(wide(src), sites.head(), L""), c_errorFileMissing);
  EXPECT_THAT(libraryMessages(agent),
              ElementsAre(infoLine(L"Exchanged orders for WexHttp and WexFtp."),
                          errorLine(L"Get version failed hr=-4")));
  EXPECT_EQ(sites.head()->iOrder, 1);
}

}  // namespace
