#include <gmock/gmock.h>

#include "tests/import/documents.h"
#include "tests/import/key_file_system.h"
#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class KeyValidation : public testing::Test {
 protected:
  KeyValidation() { writeFile(file, document(serverElement("s", "5.1"))); }

  void key(const std::string& name, const std::string& bytes = "key") {
    writeFile(incoming.file(name), bytes);
  }
  bool validate() {
    agent.clearLog();
    return helper.ValidateSiteListForInstall(wide(file), true);
  }
  LogLine fault(const std::string& first, const std::string& second) const {
    return infoLine(wide(incoming.file(first) + " or " + incoming.file(second) + " is invalid"));
  }

  TestAgent agent;
  TempDir incoming;
  const std::string file = incoming.file("SiteList.xml");
  OpenHelper helper{true};
  const LogLine requestKeyFault = fault("reqseckey.bin", "req2048seckey.bin");
  const LogLine publicKeyFault = fault("srpubkey.bin", "sr2048pubkey.bin");
};

// Shows: server-keys
TEST_F(KeyValidation, BothPairsAreMissedInOrder) {
  EXPECT_FALSE(validate());
  EXPECT_THAT(libraryMessages(agent), ElementsAre(requestKeyFault, publicKeyFault));
}

TEST_F(KeyValidation, EitherNameOfAPairIsEnough) {
  for (const char* request : {"reqseckey.bin", "req2048seckey.bin"}) {
    for (const char* pub : {"srpubkey.bin", "sr2048pubkey.bin"}) {
      const std::string requestPath = incoming.file(request);
      const std::string pubPath = incoming.file(pub);
      writeFile(requestPath, "r");
      writeFile(pubPath, "p");
      EXPECT_TRUE(validate()) << request << " " << pub;
      EXPECT_THAT(libraryMessages(agent), IsEmpty());
      std::remove(requestPath.c_str());
      std::remove(pubPath.c_str());
    }
  }
}

TEST_F(KeyValidation, EachPairIsLookedForByItself) {
  key("reqseckey.bin");
  EXPECT_FALSE(validate());
  EXPECT_THAT(libraryMessages(agent), ElementsAre(publicKeyFault));
  std::remove(incoming.file("reqseckey.bin").c_str());
  key("sr2048pubkey.bin");
  EXPECT_FALSE(validate());
  EXPECT_THAT(libraryMessages(agent), ElementsAre(requestKeyFault));
}

TEST_F(KeyValidation, AnEmptyKeyFileCountsAsMissing) {
  key("reqseckey.bin", "");
  key("req2048seckey.bin", "");
  key("srpubkey.bin", "");
  EXPECT_FALSE(validate());
  EXPECT_THAT(libraryMessages(agent), ElementsAre(requestKeyFault, publicKeyFault));

  key("req2048seckey.bin", "r");
  key("sr2048pubkey.bin", "p");
  EXPECT_TRUE(validate()) << "an empty file of a pair does not spoil the other";
}

TEST_F(KeyValidation, AKeyFileThatCannotBeExaminedCountsAsMissing) {
  key("reqseckey.bin");
  key("srpubkey.bin");
  ASSERT_TRUE(validate());
  KeyFileSystem files;
  files.unanswerable = {incoming.file("srpubkey.bin")};
  EXPECT_FALSE(validate());
  EXPECT_THAT(libraryMessages(agent), ElementsAre(publicKeyFault));
  key("sr2048pubkey.bin");
  EXPECT_TRUE(validate());
}

// Shows: server-keys
TEST_F(KeyValidation, AServerWithoutVersionNeedsNoKeys) {
  writeFile(file, document(serverElement("s")));
  EXPECT_TRUE(validate());
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(KeyValidation, FaultsOfTheServerComeBeforeThoseOfItsKeys) {
  writeFile(file, document("<VestaSite Name=\"s\" Type=\"master\" Version=\"5\" Server=\"s:80\" "
                           "ServerName=\"S\" ServerIP=\"10.0.0.1\"/>"));
  EXPECT_FALSE(validate());
  EXPECT_THAT(libraryMessages(agent),
              ElementsAre(infoLine(L"path cannot be empty"), requestKeyFault, publicKeyFault));
}

TEST_F(KeyValidation, KeysAreLookedForBesideTheListReadLast) {
  const TempDir other;
  writeFile(other.file("list.xml"), document(httpElement("a")));
  writeFile(other.file("reqseckey.bin"), "r");
  writeFile(other.file("srpubkey.bin"), "p");

  SiteChain list;
  ASSERT_EQ(helper.ReadSiteList(wide(file), list.address(), true), 0);
  SiteChain last;
  ASSERT_EQ(helper.ReadSiteList(wide(other.file("list.xml")), last.address(), true), 0);
  EXPECT_EQ(helper.SourceSiteListCheck(list.head(), true), 0);

  ASSERT_FALSE(validate()) << "the file was read again";
  agent.clearLog();
  EXPECT_EQ(helper.SourceSiteListCheck(list.head(), true), c_errorValidation);
  EXPECT_THAT(libraryMessages(agent), ElementsAre(requestKeyFault, publicKeyFault));
}

}  // namespace
