#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/sitehlp/writer_fixture.h"

// The scope traces of a write, with their levels.
namespace {

using sitehlp::tag_Site;
using test::newSite;
using testing::ElementsAreArray;

class WriterScopes : public test::WriterTest {
 protected:
  // Expects that a write of this record traces its scope `own` with the scopes `inside` in it.
  void expectScopes(tag_Site* site, const std::wstring& own,
                    const std::vector<std::wstring>& inside) {
    const test::ListPtr list(site);
    agent.clearLog();
    EXPECT_EQ(write(list), 0);
    std::vector<test::LogLine> expected = {detail(L"Enter: Creating Sitelist"),
                                           detail(L"Enter: " + own)};
    for (const std::wstring& text : inside) {
      expected.push_back(detail(L"Enter: " + text));
      expected.push_back(detail(L"Leave: " + text));
    }
    expected.push_back(detail(L"Leave: " + own));
    expected.push_back(detail(L"Leave: Creating Sitelist"));
    EXPECT_THAT(scopes(), ElementsAreArray(expected));
  }

  const std::wstring format = L"Formatting environment symbols";
};

TEST_F(WriterScopes, OfAnHttpSite) {
  expectScopes(newSite(sitehlp::SITE_KIND_HTTP), L"Adding HTTP site", {format, format});
}

TEST_F(WriterScopes, OfAnFtpSite) {
  expectScopes(newSite(sitehlp::SITE_KIND_FTP), L"Adding FTP site", {format, format});
}

TEST_F(WriterScopes, OfAUncSite) {
  expectScopes(newSite(sitehlp::SITE_KIND_UNC), L"Adding UNC site", {format, format, format});
}

TEST_F(WriterScopes, OfALocalSite) {
  expectScopes(newSite(sitehlp::SITE_KIND_LOCAL), L"Adding local site", {format, format});
}

TEST_F(WriterScopes, OfAManagementServer) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_HTTP);
  test::put(site->http.szElement, L"VestaSite");
  expectScopes(site, L"Adding HTTP site", {format, format, format, format});
}

TEST_F(WriterScopes, OfAProxy) {
  expectScopes(newSite(sitehlp::SITE_KIND_PROXY), L"Adding Proxy site", {format});
  tag_Site* site = newSite(sitehlp::SITE_KIND_PROXY);
  test::put(site->proxy.szHttpProxyServer, L"h");
  test::put(site->proxy.szFtpProxyServer, L"f");
  expectScopes(site, L"Adding Proxy site", {format, format, format});
}

}  // namespace
