#include <filesystem>
#include <functional>

#include "tests/edit/edit_fixture.h"
#include "tests/edit/lock_watch.h"
#include "tests/import/key_file_system.h"
#include "tests/support/forwarding_file_system.h"
#include "tests/support/synced_paths.h"

using namespace sitehlp;
using namespace test;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Pair;

namespace {

const std::string c_versioned = R"(Version="5.1")";

std::string server(const std::string& name, const std::string& more = "") {
  return "<VestaSite Type=\"master\" Name=\"" + name + "\" Server=\"" + name +
         ".example:80\" ServerName=\"" + name + ":80\" ServerIP=\"10.0.0.1:80\" " + more + "/>";
}

// Does something once, when the file of that name is opened for the first time.
class WhenOpened : public ForwardingFileSystem {
 public:
  WhenOpened(std::string name, std::function<void()> action)
      : m_name(std::move(name)), m_action(std::move(action)) {}

  int open(int directory, const std::string& path, int flags, mode_t mode) override {
    if (m_action && path.substr(path.rfind('/') + 1) == m_name) {
      const std::function<void()> action = std::move(m_action);
      m_action = nullptr;
      action();
    }
    return ForwardingFileSystem::open(directory, path, flags, mode);
  }

 private:
  std::string m_name;
  std::function<void()> m_action;
};

class Modify : public EditFixture {
 protected:
  void incomingKeys() {
    for (const char* name :
         {"srpubkey.bin", "reqseckey.bin", "sr2048pubkey.bin", "req2048seckey.bin"}) {
      writeFile(incoming.file(name), name);
    }
  }
  // Writes two lists that both kinds of edit change.
  void usualLists() {
    target(document(vendorHttp(R"(Name="t" Order="1")") + server("old"), "<CaBundle>t</CaBundle>"));
    source(document(vendorHttp(R"(Name="s" Order="2")") + server("new"), "<CaBundle>s</CaBundle>"));
  }
  // Expects failure with these lines and nothing changed on disk.
  void expectRefusal(const std::vector<LogLine>& lines = {}) {
    const auto before = onDisk();
    for (const bool flag : {false, true}) {
      EXPECT_FALSE(modify(flag, flag));
      EXPECT_THAT(libraryMessages(agent), ElementsAreArray(lines));
      EXPECT_EQ(onDisk(), before);
    }
  }
};

TEST_F(Modify, TracesItsScopeAndLogsNothingOfItsOwn) {
  usualLists();
  EXPECT_TRUE(modify(true, true));
  EXPECT_TRUE(tracedScope(agent, L"modifying site list", L"StSHlp"));
  EXPECT_THAT(libraryTraces(agent, L"StSHlp"), ElementsAre(L"modifying site list"));
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(Modify, TracesTheReadOfTheSourceAsAnyRead) {
  usualLists();
  EXPECT_TRUE(modify(true, true));
  EXPECT_TRUE(tracedScope(agent, L"Reading Sitelist"));
  EXPECT_THAT(libraryTraces(agent), Contains(L"Reading Sitelist").Times(1));
}

TEST_F(Modify, EachFlagAsksForItsOwnEdit) {
  const std::string attributes = R"(GlobalVersion="G1" LocalVersion="L1" Type="Client")";
  usualLists();
  EXPECT_TRUE(modify(true, false));
  EXPECT_EQ(result(), canonical(document(server("old") + vendorHttp(R"(Name="s" Order="1")"),
                                         "<CaBundle>t</CaBundle>")));
  usualLists();
  EXPECT_TRUE(modify(false, true));
  EXPECT_EQ(result(), canonical(document(vendorHttp(R"(Name="t" Order="1")") + server("new"), "",
                                         attributes, "<CaBundle>s</CaBundle>")));
  usualLists();
  EXPECT_TRUE(modify(true, true));
  EXPECT_EQ(result(), canonical(document(vendorHttp(R"(Name="s" Order="1")") + server("new"), "",
                                         attributes, "<CaBundle>s</CaBundle>")));
}

TEST_F(Modify, WithoutAFlagTheListIsRewrittenAndTheKeysAreCopied) {
  const std::string text = document(httpElement("a"));
  target(text);
  source(document(server("s", c_versioned)));
  incomingKeys();
  KeyFileSystem files;
  EXPECT_TRUE(modify(false, false));
  EXPECT_EQ(result(), canonical(text));
  EXPECT_THAT(files.changes, ElementsAre("srpubkey.bin", "sr2048pubkey.bin", "reqseckey.bin",
                                         "req2048seckey.bin", "SiteList.xml"));
  EXPECT_EQ(readFile(agent.etc("req2048seckey.bin")), "req2048seckey.bin");
}

TEST_F(Modify, TheKeyFilesShareOneSyncOfTheirDirectory) {
  std::string sites = server("s", c_versioned);
  for (int i = 1; i < 12; ++i) sites += httpElement("site" + std::to_string(i));
  target(document(httpElement("a")));
  source(document(sites));
  for (const char* key : {"srpubkey.bin", "reqseckey.bin"}) writeFile(incoming.file(key), key);
  for (const char* keys : {"new", "the same"}) {
    const RecordingFileSystem files;
    EXPECT_TRUE(modify(true, true));
    EXPECT_THAT(
        syncedPaths(files, agent.dataDirectory()),
        ElementsAre("etc/srpubkey.bin", "etc/reqseckey.bin", "etc", "etc/SiteList.xml", "etc"))
        << keys;
  }
}

TEST_F(Modify, WhatTheRecordsDoNotModelSurvives) {
  const std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- before -->\n"
      "<ns:SiteLists xmlns:ns=\"wxSiteList\" xmlns:x=\"urn:x\" GlobalVersion=\"G\" FipsMode=\"1\" "
      "x:unknown=\"&lt;&quot;\">\n  <?pi data?>\n  <Policies>\n    <Setting "
      "name=\"p\">v</Setting>\n"
      "  </Policies>\n  <x:Extra><![CDATA[<raw & text>]]></x:Extra>\n  <SiteList Default=\"1\">\n"
      "    <!-- sites -->\n    <HttpSite Name=\"a\" Unknown=\"u\">\n      <Password "
      "Encrypted=\"1\">sealed</Password><Deep><Deeper d=\"\xc3\xa4\"/></Deep>\n    </HttpSite>\n"
      "    mixed &amp; text\n  </SiteList>\n</ns:SiteLists>\n<!-- after -->";
  target(text);
  source(document(httpElement("b")));
  EXPECT_TRUE(modify(true, true));
  EXPECT_EQ(result(), canonical(text));
}

TEST_F(Modify, TheSourceStaysAsItWas) {
  usualLists();
  const auto before = snapshot(incoming.path());
  EXPECT_TRUE(modify(true, true));
  EXPECT_EQ(snapshot(incoming.path()), before);
}

TEST_F(Modify, TheKeyDirectoryServesASourceWithoutVersionedServer) {
  target(document(httpElement("a")));
  source(document(httpElement("b")));
  writeFile(keyDir.file("srpubkey.bin"), "public");
  EXPECT_TRUE(modify(true, true, keyDir.path()));
  EXPECT_EQ(readFile(agent.etc("srpubkey.bin")), "public");
}

TEST_F(Modify, AVersionedServerAnywhereInTheSourceBringsItsKeyFiles) {
  const std::string others[] = {server("plain"), httpElement("b"), server("last")};
  for (std::size_t place = 0; place <= std::size(others); ++place) {
    target(document(httpElement("a")));
    std::string sites;
    for (std::size_t i = 0; i < std::size(others); ++i) {
      if (i == place) sites += server("versioned", c_versioned);
      sites += others[i];
    }
    if (place == std::size(others)) sites += server("versioned", c_versioned);
    source(document(sites));
    incomingKeys();
    writeFile(keyDir.file("srpubkey.bin"), "of the key directory");
    EXPECT_TRUE(modify(false, false, keyDir.path())) << place;
    EXPECT_EQ(readFile(agent.etc("srpubkey.bin")), "srpubkey.bin") << place;
    EXPECT_EQ(readFile(agent.etc("req2048seckey.bin")), "req2048seckey.bin") << place;
  }
}

TEST_F(Modify, ASourceWithoutSitesIsGoodEnough) {
  target(document(server("old")));
  source(document(""));
  EXPECT_TRUE(modify(true, true));
  EXPECT_EQ(result(), canonical(document("")));
  EXPECT_THAT(libraryMessages(agent), ElementsAre(errorLine(L"Failed hr=0")));
}

TEST_F(Modify, TheMeshServiceIsNotTold) {
  usualLists();
  EXPECT_TRUE(modify(true, true));
  EXPECT_THAT(snapshot(agent.dataDirectory() + "/mesh"), IsEmpty());
}

TEST_F(Modify, AnotherHelperReadsTheEdit) {
  usualLists();
  EXPECT_TRUE(modify(false, true));
  std::vector<std::wstring> certificates;
  CSitesHelper helper{wide(own)};
  ListOwner list;
  ASSERT_EQ(helper.ReadSiteList(L"", list.out(), true), 0);
  ASSERT_EQ(std::distance(list.begin(), list.end()), 2);
  const tag_Site& edited = *std::next(list.begin());
  EXPECT_EQ(std::wstring(edited.http.szName), L"new");
  EXPECT_EQ(edited.iOrder, 0);
}

TEST_F(Modify, TheLockIsHeldWhileTheListIsReadAndWhileItIsWritten) {
  usualLists();
  LockWatch files({"SiteList.xml", "incoming.xml"});
  EXPECT_TRUE(modify(true, true));
  // The constructor reads the versions first. The source is read once, as a document and as
  // records.
  EXPECT_THAT(files.seen, ElementsAre("read SiteList.xml: reading", "read SiteList.xml: reading",
                                      "read incoming.xml: none", "write SiteList.xml: writing"));
}

TEST_F(Modify, AChangeMadeByAnotherWriterMeanwhileIsOverwritten) {
  usualLists();
  bool written = false;
  WhenOpened files("incoming.xml", [&] {
    CSitesHelper other{wide(own)};
    written = other.CreateSiteList(nullptr, L"", L"theirs", L"theirs", L"", {}) == 0;
  });
  EXPECT_TRUE(modify(true, false));
  EXPECT_TRUE(written) << "nothing keeps the other writer waiting";
  EXPECT_EQ(result(), canonical(document(server("old") + vendorHttp(R"(Name="s" Order="1")"),
                                         "<CaBundle>t</CaBundle>")));
}

TEST_F(Modify, FailsWithoutAnInstalledList) {
  source(document(httpElement("a")));
  expectRefusal();
  EXPECT_TRUE(tracedScope(agent, L"modifying site list", L"StSHlp"));
}

TEST_F(Modify, FailsWhereTheInstalledListIsNoSiteList) {
  source(document(httpElement("a")));
  for (const char* text :
       {"", "text", "<ns:SiteLists xmlns:ns=\"wxSiteList\"><SiteList>",
        "<SiteLists xmlns:ns=\"wxSiteList\"><SiteList/></SiteLists>",
        "<ns:SiteLists xmlns:ns=\"other\"><SiteList/></ns:SiteLists>",
        "<ns:SiteLists xmlns:ns=\"wxSiteList\"/>",
        "<ns:SiteLists xmlns:ns=\"wxSiteList\"><X><SiteList/></X></ns:SiteLists>"}) {
    target(text);
    expectRefusal();
  }
}

TEST_F(Modify, FailsWithoutASource) {
  target(document(httpElement("a")));
  expectRefusal();
  std::filesystem::create_directory(src);
  expectRefusal();
}

TEST_F(Modify, FailsWhereTheSourceIsNoSiteList) {
  target(document(httpElement("a")));
  for (const char* text : {"", "text", "<ns:SiteLists xmlns:ns=\"wxSiteList\"><SiteList>",
                           "<SiteLists xmlns:ns=\"wxSiteList\"><SiteList/></SiteLists>",
                           "<ns:SiteLists xmlns:ns=\"other\"><SiteList/></ns:SiteLists>",
                           "<ns:SiteLists xmlns:ns=\"wxSiteList\"/>"}) {
    source(text);
    expectRefusal();
  }
}

TEST_F(Modify, FailsWhereTheSourceCannotBeReadAsRecords) {
  target(document(server("old")));
  source(document(server("new", c_versioned) + "<Unheard/>"));
  incomingKeys();
  expectRefusal({errorLine(L"Failed hr=-1")});
}

TEST_F(Modify, FailsWithoutTheKeysOfTheSource) {
  target(document(server("old")));
  source(document(server("new", c_versioned)));
  expectRefusal();
  writeFile(incoming.file("srpubkey.bin"), "");
  expectRefusal({errorLine(wide(incoming.file("srpubkey.bin")) + L" is invalid"),
                 infoLine(L"There could be another set of key files to be used.")});
}

TEST_F(Modify, FailsWhereAKeyIsReadOnly) {
  target(document(server("old")));
  source(document(server("new", c_versioned)));
  incomingKeys();
  writeFile(agent.etc("srpubkey.bin"), "old");
  KeyFileSystem files;
  files.readOnly = {agent.etc("srpubkey.bin")};
  expectRefusal({errorLine(L"Can't write " + wide(agent.etc("srpubkey.bin")))});
}

TEST_F(Modify, AKeyThatCannotBeWrittenLeavesTheListAndTheKeysBeforeIt) {
  target(document(server("old")));
  const std::string before = readFile(own);
  source(document(server("new", c_versioned)));
  incomingKeys();
  KeyFileSystem files;
  files.irreplaceable = {"reqseckey.bin"};
  EXPECT_FALSE(modify(true, true));
  EXPECT_THAT(onDisk(), ElementsAre(Pair("SiteList.xml", before),
                                    Pair("sr2048pubkey.bin", "sr2048pubkey.bin"),
                                    Pair("srpubkey.bin", "srpubkey.bin")));
}

TEST_F(Modify, AListThatCannotBeWrittenStaysAndTheKeysAreThere) {
  target(document(server("old")));
  const std::string before = readFile(own);
  source(document(server("new", c_versioned)));
  incomingKeys();
  KeyFileSystem files;
  files.irreplaceable = {"SiteList.xml"};
  EXPECT_FALSE(modify(true, true));
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
  EXPECT_EQ(onDisk().size(), 5u);
  EXPECT_EQ(readFile(own), before);
}

}  // namespace
