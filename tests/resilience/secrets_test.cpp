#include "tests/resilience/secrets.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>

#include "sitehlp/sites_helper.h"
#include "tests/import/documents.h"
#include "tests/import/records.h"
#include "tests/resilience/workshop.h"

namespace {

using namespace sitehlp;
using namespace test;
using testing::IsEmpty;

TEST(APassword, IsFoundInNoFileAndNoLogLineWhateverFails) {
  const SecretFigures figures = lookForTheCanary();
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_GT(figures.runs, 1000u);
  EXPECT_GT(figures.lines, 5000u);
  EXPECT_GT(figures.files, 10000u);
}

TEST(AProtectedPassword, IsRefusedWithAnyBitFlippedAndTheOtherRecordsLoad) {
  const TestAgent agent;
  CSitesHelper helper(true);
  std::wstring sealed;
  ASSERT_NE(helper.EncryptPassword(wide(c_canary), sealed), 0);
  const std::string good = narrow(sealed);
  const auto site = [](const std::string& name, const std::string& password) {
    return element("FTPSite", name, "Server=\"f:21\"",
                   "<Password Encrypted=\"1\">" + password + "</Password>");
  };
  const std::string path = agent.etc("SiteList.xml");
  unsigned long refused = 0;
  for (std::size_t i = 0; i < good.size(); ++i) {
    for (int bit = 0; bit < 7; ++bit) {
      std::string bad = good;
      bad[i] = static_cast<char>(bad[i] ^ (1 << bit));
      // A control character or markup changes the document itself and not only the password.
      if (static_cast<unsigned char>(bad[i]) < 0x20 || bad[i] == '<' || bad[i] == '&') continue;
      writeFile(path, document(site("a", good) + site("b", bad) + site("c", good)));
      SiteChain list;
      ASSERT_EQ(helper.ReadSiteList(wide(path), list.address(), true), 0) << i << " " << bit;
      const auto records = recordsOf(list.head());
      ASSERT_EQ(records.size(), 3u);
      EXPECT_EQ(narrow(records[0]->ftp.szPassword), c_canary);
      EXPECT_EQ(narrow(records[1]->ftp.szPassword), "") << i << " " << bit;
      EXPECT_EQ(narrow(records[2]->ftp.szPassword), c_canary);
      ++refused;
    }
  }
  EXPECT_GT(refused, 300u);
}

// Returns whether the file is a key file or a server list that is stored unchanged.
bool isSecret(const Workshop& workshop, const Operation& operation, const std::string& path) {
  const std::string extension = std::filesystem::path(path).extension();
  return extension == ".key" || extension == ".bin" ||
         (operation.name == std::string("server-list") && path == workshop.serverList());
}

TEST(FileModes, OfKeyFilesAreForTheOwnerAloneAfterEachWrite) {
  Workshop workshop;
  const Operation& import = writingOperation("import");
  for (const mode_t mode : {0644, 0666, 0400, 0777}) {
    workshop.reset(import);
    std::size_t keys = 0;
    for (const auto& [path, unused] : workshop.state()) {
      if (std::filesystem::path(path).extension() == ".bin") ::chmod(path.c_str(), mode);
    }
    const WorkshopFileSystem files(workshop);
    EXPECT_EQ(import.run(workshop), 0);
    for (const auto& [path, now] : workshop.modes()) {
      const std::filesystem::path file(path);
      if (file.extension() != ".bin" || file.parent_path() != workshop.etcDirectory()) continue;
      EXPECT_EQ(now, 0600u) << path;
      ++keys;
    }
    EXPECT_EQ(keys, 4u);
  }
}

TEST(FileModes, AreNeverWiderBehindAnOperationThanBefore) {
  Workshop workshop;
  for (const mode_t mode : {0400, 0600, 0640, 0444, 0604}) {
    for (const Operation& operation : writingOperations()) {
      workshop.reset(operation);
      for (const auto& [path, content] : workshop.state()) ::chmod(path.c_str(), mode);
      const auto before = workshop.modes();
      const WorkshopFileSystem files(workshop);
      operation.run(workshop);
      for (const auto& [path, now] : workshop.modes()) {
        const auto known = before.find(path);
        const mode_t allowed = known != before.end()                 ? known->second
                               : std::filesystem::is_directory(path) ? 0755
                                                                     : 0640;
        // The owner of a secret may always read and write it, whatever the old mode was.
        EXPECT_EQ(now & ~(isSecret(workshop, operation, path) ? allowed | 0600 : allowed), 0u)
            << operation.name << " widens " << path << " to " << now;
      }
    }
  }
}

TEST(AKeyFile, ThatOthersMayReadIsClosedAndThatIsSaid) {
  TestAgent agent;
  std::wstring sealed;
  CSitesHelper helper(true);
  ASSERT_NE(helper.EncryptPassword(L"x", sealed), 0);
  const std::string key = agent.dataDirectory() + "/keystore/password.key";
  for (const mode_t mode : {0644, 0640, 0666, 0604, 0660}) {
    ::chmod(key.c_str(), mode);
    agent.clearLog();
    std::wstring clear;
    ASSERT_NE(helper.EncryptPassword(L"x", sealed), 0);
    EXPECT_EQ(std::filesystem::status(key).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    EXPECT_THAT(agent.texts(LogLevel::Info),
                testing::ElementsAre(testing::HasSubstr(L"was open to other users")));
  }
}

TEST(ALinkToAnotherPlace, ThatAppearsWhileAWriterWritesSendsNothingThere) {
  const SwapFigures figures = swapLinks(300);
  EXPECT_THAT(figures.faults.lines(), IsEmpty());
  EXPECT_GE(figures.swaps, 300u);
  EXPECT_GT(figures.writes, 0u);
}

}  // namespace
