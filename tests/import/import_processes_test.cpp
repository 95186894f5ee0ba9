#include <gmock/gmock.h>

#include <cstdlib>

#include "tests/import/documents.h"
#include "tests/import/records.h"
#include "tests/import/site_cache.h"
#include "tests/support/child_process.h"
#include "tests/support/test_agent.h"

using namespace sitehlp;
using namespace test;

namespace {

void serve(const std::string& dataDirectory) {
  host::AgentSettings settings;
  settings.dataDirectory = dataDirectory;
  settings.meshLoadCommand = {"/bin/sh", "-c", "exit 0"};
  settings.logLevel = LogLevel::Off;
  host::setAgent(settings);
}

std::string joinedNames(const tag_Site* head) {
  std::string text;
  for (const std::wstring& name : namesOf(head)) text += (text.empty() ? "" : " ") + narrow(name);
  return text;
}

std::string smartRead() {
  CSitesHelper helper(false);
  tag_Site* list = nullptr;
  const int code = helper.SmartReadSiteList(L"", &list);
  return code == 0 ? joinedNames(list) : "error " + std::to_string(code);
}

// Runs commands until the parent ends: "read" sends the names of a smart read, "notice" marks the
// cached list as changed.
CHILD_PROCESS(smartReader) {
  serve(args[0]);
  for (;;) {
    const std::string order = channel.receive();
    if (order == "read") {
      channel.send(smartRead());
    } else if (order == "notice") {
      CSitesHelper(true).needToUpdateInMemSiteList();
      channel.send("noticed");
    } else {
      clearSiteCache();
      return 0;
    }
  }
}

// Reads the agent's list repeatedly. Sends the first fault of a read, or "ok".
CHILD_PROCESS(readerOfEitherList) {
  serve(args[0]);
  channel.send("ready");
  channel.receive();
  CSitesHelper helper(false);
  std::string answer = "ok";
  for (int i = 0; i < 150 && answer == "ok"; ++i) {
    SiteChain list;
    const int code = helper.ReadSiteList(L"", list.address(), true);
    const std::string names = joinedNames(list.head());
    if (code != 0) answer = "error " + std::to_string(code);
    if (names != args[1] && names != args[2]) answer = "neither list: " + names;
  }
  channel.send(answer);
  return 0;
}

// Imports one list over and over.
CHILD_PROCESS(importer) {
  serve(args[0]);
  channel.send("ready");
  channel.receive();
  CSitesHelper helper(false);
  std::string answer = "ok";
  for (int i = 0; i < 30; ++i) {
    const int code = helper.ImportSiteList(wide(args[1]), L"");
    if (code != 0) answer = "error " + std::to_string(code);
  }
  channel.send(answer);
  return 0;
}

class ImportBesideOthers : public testing::Test {
 protected:
  ImportBesideOthers() {
    agent.settings.logLevel = LogLevel::Off;
    agent.apply();
    clearSiteCache();
    writeFile(oldList, document(httpElement("old1") + httpElement("old2")));
    writeFile(newList, document(httpElement("new1") + httpElement("new2") + httpElement("new3")));
    import(oldList);
  }
  ~ImportBesideOthers() override { clearSiteCache(); }

  void import(const std::string& file) {
    ASSERT_EQ(CSitesHelper(false).ImportSiteList(wide(file), L""), 0);
  }
  static std::string ask(ChildProcess& child, const std::string& order) {
    child.send(order);
    return child.receive();
  }

  TestAgent agent;
  TempDir incoming;
  const std::string oldList = incoming.file("old.xml");
  const std::string newList = incoming.file("new.xml");
  const std::string oldNames = "old1 old2";
  const std::string newNames = "new1 new2 new3";
};

TEST_F(ImportBesideOthers, EachProcessServesItsCacheUntilItsSecondChangeNotice) {
  ChildProcess child("smartReader", {agent.dataDirectory()});
  EXPECT_EQ(ask(child, "read"), oldNames);
  EXPECT_EQ(smartRead(), oldNames);

  import(newList);
  EXPECT_EQ(ask(child, "read"), oldNames);
  EXPECT_EQ(smartRead(), oldNames);

  EXPECT_EQ(ask(child, "notice"), "noticed");
  EXPECT_EQ(ask(child, "read"), oldNames) << "one notice is not enough";
  EXPECT_EQ(ask(child, "notice"), "noticed");
  EXPECT_EQ(ask(child, "read"), newNames);
  EXPECT_EQ(smartRead(), oldNames) << "a notice counts in its own process";

  CSitesHelper(true).needToUpdateInMemSiteList();
  CSitesHelper(true).needToUpdateInMemSiteList();
  EXPECT_EQ(smartRead(), newNames);

  import(oldList);
  EXPECT_EQ(ask(child, "notice"), "noticed");
  EXPECT_EQ(ask(child, "read"), newNames) << "the reload began a new count";
  EXPECT_EQ(ask(child, "notice"), "noticed");
  EXPECT_EQ(ask(child, "read"), oldNames);
  child.send("end");
  EXPECT_EQ(child.wait(), 0);
}

TEST_F(ImportBesideOthers, AProcessThatStartsAfterTheImportReadsTheNewList) {
  import(newList);
  ChildProcess child("smartReader", {agent.dataDirectory()});
  EXPECT_EQ(ask(child, "read"), newNames);
}

TEST_F(ImportBesideOthers, AReaderFindsTheOldOrTheNewListWhole) {
  ChildProcess child("readerOfEitherList", {agent.dataDirectory(), oldNames, newNames});
  ASSERT_EQ(child.receive(), "ready");
  child.send("go");
  for (int i = 0; i < 20; ++i) {
    import(newList);
    import(oldList);
  }
  EXPECT_EQ(child.receive(), "ok");
  EXPECT_EQ(child.wait(), 0);
}

TEST_F(ImportBesideOthers, TwoImportersLeaveOneOfTheirListsWhole) {
  ChildProcess one("importer", {agent.dataDirectory(), oldList});
  ChildProcess two("importer", {agent.dataDirectory(), newList});
  ASSERT_EQ(one.receive(), "ready");
  ASSERT_EQ(two.receive(), "ready");
  one.send("go");
  two.send("go");
  EXPECT_EQ(one.receive(), "ok");
  EXPECT_EQ(two.receive(), "ok");
  EXPECT_EQ(one.wait(), 0);
  EXPECT_EQ(two.wait(), 0);
  const std::string names = smartRead();
  EXPECT_TRUE(names == oldNames || names == newNames) << names;
}

}  // namespace
