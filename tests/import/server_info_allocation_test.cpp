#include <gtest/gtest.h>

#include "tests/import/documents.h"
#include "tests/import/failing_allocation.h"
#include "tests/import/records.h"
#include "tests/import/site_cache.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;

namespace {

class ServerInfoWithoutMemory : public testing::Test {
 protected:
  ServerInfoWithoutMemory() { clearSiteCache(); }
  ~ServerInfoWithoutMemory() override { clearSiteCache(); }

  TestAgent agent;
};

// Shows: GetPYXServerInfo=-3
TEST_F(ServerInfoWithoutMemory, SomeServersAreNotGivenOutForAll) {
  const std::string file = agent.etc("SiteList.xml");
  writeFile(file, document(serverElement("s1") + serverElement("s2")));
  OpenHelper helper{wide(file)};
  tag_Site* cached = nullptr;
  ASSERT_EQ(helper.SmartReadSiteList(std::wstring(), &cached), 0);

  for (const int before : {0, 1}) {
    std::wstring names = L"-";
    std::wstring servers = L"-";
    std::wstring serverIPs = L"-";
    std::wstring netbiosNames = L"-";
    std::wstring versions = L"-";
    int port = -7;
    const FailingAllocation failing(sizeof(tag_Site), before);
    EXPECT_EQ(helper.GetPYXServerInfo(names, servers, serverIPs, netbiosNames, port, versions, true,
                                      false),
              c_errorNoMemory);
    EXPECT_EQ(failing.failed(), 1);
    EXPECT_EQ(names, L"-");
    EXPECT_EQ(servers, L"-");
    EXPECT_EQ(serverIPs, L"-");
    EXPECT_EQ(netbiosNames, L"-");
    EXPECT_EQ(versions, L"-");
    EXPECT_EQ(port, -7);
  }
}

}  // namespace
