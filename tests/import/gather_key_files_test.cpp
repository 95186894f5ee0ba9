#include <gmock/gmock.h>

#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

tag_Site versioned(tag_Site site) {
  setText(site.http.szVersion, L"5.1");
  return site;
}

// The outputs of readKeyFiles.
struct Gathered {
  bool result = false;
  ABuffer srPub, reqSec, sr2048Pub, req2048Sec;
  bool hasSrPub = false;
  bool hasReqSec = false;
  bool hasSr2048Pub = false;
  bool hasReq2048Sec = false;

  // The flags, as "p", "r", "P" and "R" for the set ones.
  std::string flags() const {
    return std::string(hasSrPub ? "p" : "") + (hasReqSec ? "r" : "") + (hasSr2048Pub ? "P" : "") +
           (hasReq2048Sec ? "R" : "");
  }
};

std::string textOf(const ABuffer& buffer) {
  return std::string(buffer.data(), buffer.data() + buffer.size());
}

class GatherKeyFiles : public testing::Test {
 protected:
  void beside(const std::string& name, const std::string& bytes) {
    writeFile(incoming.file(name), bytes);
  }
  void gather(const SiteChain& sites, const std::string& keyDirectory, Gathered& got) {
    agent.clearLog();
    got.result =
        helper.readKeyFiles(wide(incoming.file("list.xml")), sites.head(), wide(keyDirectory),
                            got.srPub, got.reqSec, got.sr2048Pub, got.req2048Sec, got.hasSrPub,
                            got.hasReqSec, got.hasSr2048Pub, got.hasReq2048Sec);
  }
  Gathered gather(const SiteChain& sites, const std::string& keyDirectory) {
    Gathered got;
    gather(sites, keyDirectory, got);
    return got;
  }
  std::vector<LogLine> invalid(const std::string& name) const {
    return {errorLine(wide(incoming.file(name)) + L" is invalid"),
            infoLine(L"There could be another set of key files to be used.")};
  }

  TestAgent agent;
  TempDir incoming;
  TempDir keyDir;
  OpenHelper helper{true};
  const SiteChain newServer{httpSite(L"a"), versioned(serverSite(L"s"))};
  const SiteChain oldServer{httpSite(L"a"), serverSite(L"s")};
};

TEST_F(GatherKeyFiles, AnOldServersPublicKeyComesFromTheKeyDirectory) {
  writeFile(keyDir.file("srpubkey.bin"), "public");
  writeFile(keyDir.file("reqseckey.bin"), "never taken");
  beside("sr2048pubkey.bin", "never taken");
  beside("req2048seckey.bin", "never taken");
  const Gathered got = gather(oldServer, keyDir.path());
  EXPECT_TRUE(got.result);
  EXPECT_EQ(got.flags(), "p");
  EXPECT_EQ(textOf(got.srPub), "public");
  EXPECT_TRUE(got.reqSec.empty());
}

TEST_F(GatherKeyFiles, WithoutKeyDirectoryAnOldServerNeedsNoKeys) {
  beside("srpubkey.bin", "not taken");
  Gathered got;
  got.hasSrPub = got.hasReqSec = true;
  gather(oldServer, "", got);
  EXPECT_TRUE(got.result);
  EXPECT_EQ(got.flags(), "");
}

TEST_F(GatherKeyFiles, AnOldServerLeavesTheFlagsOfTheNewSetAlone) {
  writeFile(keyDir.file("srpubkey.bin"), "public");
  for (const std::string& directory : {std::string(), keyDir.path()}) {
    Gathered got;
    got.hasReqSec = got.hasSr2048Pub = got.hasReq2048Sec = true;
    gather(oldServer, directory, got);
    EXPECT_TRUE(got.result);
    EXPECT_EQ(got.flags(), directory.empty() ? "PR" : "pPR");
  }
}

TEST_F(GatherKeyFiles, AnOldServersKeyDirectoryMustHoldThePublicKey) {
  EXPECT_FALSE(gather(oldServer, keyDir.path()).result);
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
  writeFile(keyDir.file("srpubkey.bin"), "");
  EXPECT_FALSE(gather(oldServer, keyDir.path()).result);
  EXPECT_THAT(libraryMessages(agent),
              ElementsAre(errorLine(wide(keyDir.file("srpubkey.bin")) + L" is invalid"),
                          infoLine(L"There could be another set of key files to be used.")));
}

TEST_F(GatherKeyFiles, OnlyAManagementServerWithAVersionCallsForTheKeysBesideTheList) {
  beside("srpubkey.bin", "p");
  beside("reqseckey.bin", "r");
  tag_Site keystone = versioned(httpSite(L"k"));
  setText(keystone.http.szElement, L"KeystoneSite");
  tag_Site proxy = proxySite(L"p");
  setText(proxy.proxy.szElement, L"VestaSite");
  for (const tag_Site& site : {keystone, versioned(httpSite(L"h")), proxy, ftpSite(L"f")}) {
    const SiteChain sites{site};
    EXPECT_EQ(gather(sites, "").flags(), "") << narrow(nameOf(site));
  }
  EXPECT_EQ(gather(SiteChain(), "").flags(), "");

  tag_Site lower = versioned(serverSite(L"lower"));
  setText(lower.http.szElement, L"vestasite");
  for (const tag_Site& site : {versioned(serverSite(L"s")), lower}) {
    const SiteChain sites{serverSite(L"old"), site, serverSite(L"older")};
    EXPECT_EQ(gather(sites, "").flags(), "pr") << narrow(nameOf(site));
  }
}

TEST_F(GatherKeyFiles, ASetCountsOnlyWhenBothItsFilesAreThere) {
  const std::vector<std::string> names = {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin",
                                          "req2048seckey.bin"};
  // For each file: missing, empty, there.
  for (int states = 0; states < 81; ++states) {
    int rest = states;
    std::vector<int> state;
    for (const std::string& name : names) {
      state.push_back(rest % 3);
      rest /= 3;
      std::remove(incoming.file(name).c_str());
      if (state.back() > 0) beside(name, state.back() == 2 ? "content of " + name : "");
    }
    const bool older = state[0] == 2 && state[1] == 2;
    const bool newer = state[2] == 2 && state[3] == 2;
    const Gathered got = gather(newServer, keyDir.path());
    EXPECT_EQ(got.result, older || newer) << states;
    EXPECT_EQ(got.flags(), std::string(older ? "pr" : "") + (newer ? "PR" : "")) << states;
    if (older) {
      EXPECT_EQ(textOf(got.srPub), "content of srpubkey.bin");
      EXPECT_EQ(textOf(got.reqSec), "content of reqseckey.bin");
    }
    if (newer) {
      EXPECT_EQ(textOf(got.sr2048Pub), "content of sr2048pubkey.bin");
      EXPECT_EQ(textOf(got.req2048Sec), "content of req2048seckey.bin");
    }
    // The 2048-bit pair is read first. A request key is read only after its public key.
    std::vector<LogLine> lines;
    for (const std::size_t pub : {2u, 0u}) {
      if (state[pub] == 1) {
        for (const LogLine& line : invalid(names[pub])) lines.push_back(line);
      } else if (state[pub] == 2 && state[pub + 1] == 1) {
        for (const LogLine& line : invalid(names[pub + 1])) lines.push_back(line);
      }
    }
    EXPECT_EQ(libraryMessages(agent), lines) << states;
  }
}

TEST_F(GatherKeyFiles, ANewServersKeysAreNotTakenFromTheKeyDirectory) {
  writeFile(keyDir.file("srpubkey.bin"), "p");
  writeFile(keyDir.file("reqseckey.bin"), "r");
  EXPECT_FALSE(gather(newServer, keyDir.path()).result);
}

}  // namespace
