#ifndef TESTS_IMPORT_IMPORT_FIXTURE_H
#define TESTS_IMPORT_IMPORT_FIXTURE_H

#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/import/documents.h"
#include "tests/import/log_lines.h"
#include "tests/import/records.h"
#include "tests/support/test_agent.h"

namespace test {

// An agent with its own list, and a directory with an incoming list.
class ImportFixture : public testing::Test {
 protected:
  ImportFixture() {
    writeFile(own, document(httpElement("old"), "", R"(GlobalVersion="oldG" LocalVersion="oldL")"));
    helper = std::make_unique<OpenHelper>(wide(own));
    agent.clearLog();
  }

  void incomingList(const std::string& bytes) { writeFile(src, bytes); }
  void incomingKeys(const std::string& prefix = "") {
    for (const char* name :
         {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin", "req2048seckey.bin"}) {
      writeFile(incoming.file(name), prefix + name);
    }
  }

  int install() {
    agent.clearLog();
    return helper->InstallSiteList(wide(src), wide(keyDir.path()));
  }
  int import() {
    agent.clearLog();
    return helper->ImportSiteList(wide(src), wide(keyDir.path()));
  }
  // Returns the names in the agent's own file, as a new helper reads them.
  std::vector<std::wstring> installedNames() {
    SiteChain list;
    OpenHelper reader(true);
    EXPECT_EQ(reader.ReadSiteList(wide(own), list.address(), true), 0);
    return namesOf(list.head());
  }
  std::map<std::string, std::string> onDisk() { return snapshot(agent.dataDirectory() + "/etc"); }

  // Returns the log of an import up to the key files.
  std::vector<LogLine> beginning(const std::wstring& localVersion = L"L1") const {
    return {detailLine(L"Import sitelist from " + wide(src) + L" to " + wide(own)),
            detailLine(L"Original local version of " + wide(src) + L" is " + localVersion)};
  }
  static std::vector<LogLine> joined(std::vector<LogLine> lines, const std::vector<LogLine>& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
  }
  const LogLine meshLine = infoLine(L"Command to mesh service to load new sitelist.");

  TestAgent agent;
  TempDir incoming;
  TempDir keyDir;
  const std::string own = agent.etc("SiteList.xml");
  const std::string src = incoming.file("SiteList.xml");
  std::unique_ptr<OpenHelper> helper;
};

}  // namespace test

#endif
