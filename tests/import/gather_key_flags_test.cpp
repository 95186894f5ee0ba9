#include <gtest/gtest.h>

#include <array>

#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;

namespace {

class GatherKeyFlags : public testing::Test {
 protected:
  // Looks for the keys beside an incoming list whose server has this version, and in no other
  // directory. The flags are those of srPub, reqSec, sr2048Pub and req2048Sec.
  bool gather(const std::wstring& version) {
    tag_Site server = serverSite(L"s");
    setText(server.http.szVersion, version);
    const SiteChain sites{server};
    ABuffer srPub, reqSec, sr2048Pub, req2048Sec;
    return helper.readKeyFiles(wide(incoming.file("list.xml")), sites.head(), std::wstring(), srPub,
                               reqSec, sr2048Pub, req2048Sec, flags[0], flags[1], flags[2],
                               flags[3]);
  }

  const TestAgent agent;
  const TempDir incoming;
  OpenHelper helper{true};
  std::array<bool, 4> flags{};
};

TEST_F(GatherKeyFlags, AVersionOfOneCharacterIsOne) {
  for (const char* name : {"sr2048pubkey.bin", "req2048seckey.bin"}) {
    writeFile(incoming.file(name), name);
  }
  EXPECT_TRUE(gather(L"5"));
  EXPECT_EQ(flags, (std::array<bool, 4>{false, false, true, true}));
}

TEST_F(GatherKeyFlags, AnyFlagThatTheCallerHasSetIsEnough) {
  EXPECT_FALSE(gather(L"5"));
  for (std::size_t set = 0; set < flags.size(); ++set) {
    flags = {};
    flags[set] = true;
    const std::array<bool, 4> before = flags;
    EXPECT_TRUE(gather(L"5")) << set;
    EXPECT_EQ(flags, before);
  }
}

}  // namespace
