#include "tests/import/import_fixture.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The examples of the format document.
class FormatExamples : public ImportFixture {
 protected:
  FormatExamples() { writeFile(keyDir.file("srpubkey.bin"), "key"); }

  // The XML that follows this sentence.
  static std::string example(const std::string& sentence) {
    const std::string page = readFile(TEST_SOURCE_DIR "/docs/site-list-format.md");
    const std::string start = sentence + "\n\n```xml\n";
    const std::size_t at = page.find(start);
    EXPECT_NE(at, std::string::npos) << sentence;
    if (at == std::string::npos) return "";
    const std::size_t begin = at + start.size();
    return page.substr(begin, page.find("```", begin) - begin);
  }
  int importing(const std::string& bytes) {
    incomingList(bytes);
    return import();
  }
  SiteChain installed() {
    SiteChain list;
    EXPECT_EQ(OpenHelper(true).ReadSiteList(wide(own), list.address(), true), 0);
    return list;
  }
};

// Shows: smallest-list
TEST_F(FormatExamples, TheSmallListIsImportedByAnUnmanagedAgent) {
  const std::string list = example("A small list for an unmanaged agent, without warnings:");
  EXPECT_EQ(importing(list), 0);
  EXPECT_THAT(installedNames(), ElementsAre(L"Main"));
  EXPECT_EQ(installed().head()->http.uServerPort, 8080u);
  const std::size_t begin = list.find("    <HttpSite");
  const std::size_t end = list.find("  </SiteList>");
  EXPECT_EQ(importing(list.substr(0, begin) + list.substr(end)), c_errorValidation);
}

// Shows: complete-server, server-keys
TEST_F(FormatExamples, TheCompleteServerIsImportedByAManagedAgentWithItsKeys) {
  const std::string server = example("A complete management server for a managed agent:");
  agent.settings.managed = true;
  agent.apply();
  EXPECT_EQ(importing(document(server)), c_errorValidation) << "it has a version";
  incomingKeys();
  EXPECT_EQ(importing(document(server)), 0);
  EXPECT_THAT(installedNames(), ElementsAre(L"HQ"));
}

// Shows: proxy-example
TEST_F(FormatExamples, TheProxyIsForAllHostsExceptTwo) {
  ASSERT_EQ(importing(document(example("A proxy for all hosts except two:") + httpElement("a"))),
            0);
  const SiteChain list = installed();
  ASSERT_NE(list.head(), nullptr);
  ASSERT_EQ(list.head()->eSiteKind, SITE_KIND_PROXY);
  const tag_ProxySite& proxy = list.head()->proxy;
  EXPECT_STREQ(proxy.szHttpProxyServer, L"proxy.example");
  EXPECT_EQ(proxy.iHttpProxyPort, 3128);
  EXPECT_EQ(proxy.bBypassLocalAddress, 1);
  EXPECT_STREQ(proxy.szExclusionList, L"intranet.example;wiki.example");
}

// Shows: complete-example
TEST_F(FormatExamples, TheCompleteListHasEveryKindOfElement) {
  const std::string text = readFile(TEST_SOURCE_DIR "/examples/incoming/SiteList.xml");
  for (const char* element :
       {"CaBundle", "CaCertificate", "Policies", "Setting", "SiteList", "HttpSite", "VestaSite",
        "KeystoneSite", "FTPSite", "UNCSite", "LocalSite", "ProxyConfigList", "ProxyConfig",
        "ExclusionList", "ExclusionHost"}) {
    EXPECT_TRUE(text.find("<" + std::string(element) + ">") != std::string::npos ||
                text.find("<" + std::string(element) + " ") != std::string::npos)
        << element;
  }
}

}  // namespace
