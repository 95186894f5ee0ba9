#include <gtest/gtest.h>

#include <vector>

#include "sitehlp/list_contents.h"
#include "tests/sitehlp/password_fixture.h"

namespace {

class ContentsRead : public test::PasswordTest {
 protected:
  void readSites(const std::string& elements) {
    const std::wstring file = store(test::documentWithSites(elements));
    agent.clearLog();
    sitehlp::ListContents contents;
    EXPECT_EQ(sitehlp::CSitesHelper::ReadListContents(
                  file, contents, [this](sitehlp::tag_Site* site) { sites.emplace_back(site); }),
              0);
  }

  std::vector<test::ListPtr> sites;
};

TEST_F(ContentsRead, HasTheScopeOfAReadAtDetailLevel) {
  readSites("<HttpSite/>");
  ASSERT_GE(scopes().size(), 2U);
  EXPECT_EQ(scopes().front(), detail(L"Enter: Reading Sitelist"));
  EXPECT_EQ(scopes().back(), detail(L"Leave: Reading Sitelist"));
}

TEST_F(ContentsRead, GivesThePasswordsInClear) {
  readSites("<HttpSite><Password Encrypted=\"1\">" + sealedUtf8(L"secret") +
            "</Password></HttpSite>");
  ASSERT_EQ(sites.size(), 1U);
  EXPECT_STREQ(sites[0]->http.szPassword, L"secret");
}

}  // namespace
