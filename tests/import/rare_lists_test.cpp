#include <gmock/gmock.h>

#include <filesystem>

#include "host/xml/limits.h"
#include "tests/import/documents.h"
#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class RareLists : public testing::Test {
 protected:
  TestAgent agent;
  TempDir incoming;
  OpenHelper helper{true};
};

TEST_F(RareLists, AServerListOverTheLimitIsNotStored) {
  agent.settings.cryptoKeySize = korvel_com::ZQ::crypto::KEY_SIZE_2048;
  agent.apply();
  const std::vector<unsigned char> bytes(host::c_maxDocumentBytes + 1, '<');
  korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char> buffer(
      static_cast<unsigned int>(bytes.size()), bytes.data());
  EXPECT_EQ(helper.AdjustPwd(buffer), AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED);
  EXPECT_FALSE(exists(agent.dataDirectory() + "/ServerSiteList.xml"));
}

TEST_F(RareLists, ADirectoryInPlaceOfAKeyFileCountsAsMissing) {
  const std::string file = incoming.file("SiteList.xml");
  writeFile(file, document(serverElement("s", "5.1")));
  writeFile(incoming.file("srpubkey.bin"), "p");
  std::filesystem::create_directory(incoming.file("reqseckey.bin"));
  EXPECT_FALSE(helper.ValidateSiteListForInstall(wide(file), true));
  const std::wstring both =
      wide(incoming.file("reqseckey.bin")) + L" or " + wide(incoming.file("req2048seckey.bin"));
  EXPECT_THAT(libraryMessages(agent), ElementsAre(infoLine(both + L" is invalid")));
  writeFile(incoming.file("req2048seckey.bin"), "r");
  EXPECT_TRUE(helper.ValidateSiteListForInstall(wide(file), true));
}

TEST_F(RareLists, AKeyThatTheCallerHasAlreadyIsEnoughForAVersionedServer) {
  tag_Site server = serverSite(L"s");
  setText(server.http.szVersion, L"5.1");
  const SiteChain sites{server};
  for (int has = 0; has < 5; ++has) {
    ABuffer srPub, reqSec, sr2048Pub, req2048Sec;
    bool flags[] = {has == 1, has == 2, has == 3, has == 4};
    EXPECT_EQ(
        helper.readKeyFiles(wide(incoming.file("list.xml")), sites.head(), std::wstring(), srPub,
                            reqSec, sr2048Pub, req2048Sec, flags[0], flags[1], flags[2], flags[3]),
        has != 0)
        << has;
    EXPECT_THAT(flags, ElementsAre(has == 1, has == 2, has == 3, has == 4));
  }
}

TEST_F(RareLists, TheTailFollowsWhicheverServerSiteItPointedTo) {
  for (int pointed = 0; pointed < 5; ++pointed) {
    SiteChain result{serverSite(L"s1"), httpSite(L"a"), serverSite(L"s2"), httpSite(L"b"),
                     serverSite(L"s3")};
    SiteChain chain{serverSite(L"new1"), serverSite(L"new2")};
    tag_Site* const last = chain.last();
    tag_Site* tail = result.head();
    for (int i = 0; i < pointed; ++i) tail = tail->pNext;
    tag_Site* const before = tail;
    EXPECT_EQ(helper.UpdateVestaSite(chain.head(), &tail, result.address()), 0);
    chain.release();
    EXPECT_THAT(namesOf(result.head()), ElementsAre(L"a", L"b", L"new1", L"new2"));
    EXPECT_EQ(tail, pointed % 2 == 0 ? last : before) << pointed;
  }
}

}  // namespace
