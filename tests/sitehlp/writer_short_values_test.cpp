#include <gmock/gmock.h>

#include <string>

#include "tests/sitehlp/writer_fixture.h"

// The writer writes a value of one character.
namespace {

using sitehlp::tag_Site;
using test::newSite;
using test::put;
using testing::HasSubstr;

class WriterShortValues : public test::WriterTest {};

TEST_F(WriterShortValues, OfAnAgentThatIsARepositoryAreWritten) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_HTTP);
  put(site->http.szElement, L"KeystoneSite");
  put(site->http.szServerName, L"n");
  site->http.uServerNamePort = 1;
  put(site->http.szServerIP, L"i");
  site->http.uServerIPPort = 2;
  EXPECT_THAT(siteOf(site), HasSubstr(R"( ServerName="n:1" ServerIP="i:2")"));
}

TEST_F(WriterShortValues, OfAManagementServersVersionAreWritten) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_HTTP);
  put(site->http.szElement, L"VestaSite");
  put(site->http.szVersion, L"5");
  EXPECT_THAT(siteOf(site), HasSubstr(R"( Version="5")"));
}

TEST_F(WriterShortValues, OfElementAndTypeAreWritten) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_HTTP);
  put(site->http.szElement, L"E");
  put(site->szType, L"t");
  EXPECT_THAT(siteOf(site), HasSubstr(R"(<E Type="t")"));
}

}  // namespace
