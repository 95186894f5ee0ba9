#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/probe/probe_fixture.h"

// Which sites are tried, and what the command decides.
namespace test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class ProbeOrder : public ProbeTest {
 protected:
  Entry directory(const std::string& name, const std::string& order, bool isThere = true) {
    Entry made;
    made.element = "LocalSite";
    made.name = name;
    made.order = order;
    made.path = isThere ? file("") : file("none");
    return made;
  }
  static std::string changed(std::string text, const std::string& what, const std::string& by) {
    return text.replace(text.find(what), what.size(), by);
  }
};

TEST_F(ProbeOrder, SitesAreTriedInSearchOrderAndTheFirstThatIsOkIsUsed) {
  const JsonReport report =
      probe(list(text(directory("third", "3")) + text(directory("first", "1", false)) +
                 text(directory("second", "2"))));
  EXPECT_THAT(report.column("name"), ElementsAre("first", "second", "third"));
  EXPECT_THAT(report.column("state"), ElementsAre("failed", "ok", "ok"));
  EXPECT_EQ(report.facts.at("use"), "second");
  EXPECT_EQ(report.facts.at("usePlace"), "2");
  EXPECT_EQ(report.facts.at("decided"), "true");
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(sitelist({"probe", "--file", file("list.xml")}).out,
              HasSubstr("\nThe agent will use \"second\" (place 2).\n"));
}

TEST_F(ProbeOrder, TheResultsKeepTheOrderWithAnyNumberOfJobs) {
  std::string entries;
  std::vector<std::string> names;
  for (int i = 1; i <= 30; ++i) {
    names.push_back("n" + std::to_string(i));
    entries += text(directory(names.back(), std::to_string(i)));
  }
  const std::string path = list(entries);
  for (const char* jobs : {"1", "7", "64"}) {
    EXPECT_EQ(probe(path, {"--jobs", jobs}).column("name"), names) << jobs;
  }
}

TEST_F(ProbeOrder, AtMostAsManySitesAsJobsAreTriedAtTheSameTime) {
  std::atomic<int> open{0};
  std::atomic<int> most{0};
  const Peer peer([&](Connection& connection) {
    most = std::max(most.load(), ++open);
    connection.request();
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
    --open;
  });
  std::string entries;
  for (int i = 1; i <= 12; ++i) {
    Entry made;
    made.server = local(peer.port());
    made.order = std::to_string(i);
    entries += text(made);
  }
  probe(list(entries), {"--jobs", "2"});
  EXPECT_EQ(peer.connections(), 12);
  EXPECT_LE(most, 3);  // the peer may notice the end of a connection late
}

TEST_F(ProbeOrder, MirrorsAndDisabledSitesAreTriedOnlyWithAllOrByName) {
  Entry mirror = directory("mirror", "2");
  mirror.type = "mirror";
  Entry off = directory("off", "3");
  off.enabled = "0";
  const std::string path = list(text(directory("on", "1")) + text(mirror) + text(off));
  EXPECT_THAT(probe(path).column("name"), ElementsAre("on"));
  const JsonReport all = probe(path, {"--all"});
  EXPECT_THAT(all.column("name"), ElementsAre("on", "mirror", "off"));
  EXPECT_THAT(all.column("tried"), ElementsAre("true", "false", "false"));
  EXPECT_THAT(all.column("reason")[2], HasSubstr("it is disabled"));
  EXPECT_THAT(probe(path, {"off"}).column("name"), ElementsAre("off"));
}

TEST_F(ProbeOrder, ADisabledSiteThatIsOkIsNotUsed) {
  Entry off = directory("off", "1");
  off.enabled = "0";
  const JsonReport report = probe(list(text(off) + text(directory("on", "2", false))), {"--all"});
  EXPECT_EQ(report.facts.count("use"), 0U);
  EXPECT_EQ(output.status, 1);
}

TEST_F(ProbeOrder, NamedSitesMustAllBeOk) {
  const std::string path = list(text(directory("good", "1")) + text(directory("bad", "2", false)));
  EXPECT_EQ(probe(path).facts.at("use"), "good");
  EXPECT_EQ(output.status, 0);
  probe(path, {"good"});
  EXPECT_EQ(output.status, 0);
  const JsonReport both = probe(path, {"good", "bad"});
  EXPECT_THAT(both.column("state"), ElementsAre("ok", "failed"));
  EXPECT_EQ(output.status, 1);
}

TEST_F(ProbeOrder, TheUsedSiteIsNotKnownIfAnEarlierOneWasNotTried) {
  const JsonReport report =
      probe(list(text(directory("first", "1")) + text(directory("second", "2"))), {"second"});
  EXPECT_EQ(report.facts.at("decided"), "false");
  EXPECT_EQ(report.facts.at("unknownSite"), "first");
  EXPECT_EQ(report.facts.count("use"), 0U);
}

TEST_F(ProbeOrder, AnUnknownSiteIsNotFound) {
  const Output said = sitelist({"probe", "--file", list(text(directory("Depot", "1"))), "Depto"});
  EXPECT_EQ(said.status, 7);
  EXPECT_THAT(said.err, HasSubstr("no site matches \"Depto\"; did you mean Depot?"));
}

TEST_F(ProbeOrder, TheCompletionOffersTheSitesOfTheList) {
  const std::string path = list(text(directory("Depot", "1")) + text(directory("Spare", "2")));
  const Output said = bare({"__complete", "--", "probe", "--file", path, "Depot", ""});
  EXPECT_EQ(said.out, "Depot\nSpare\n:nothing\n");
}

TEST_F(ProbeOrder, LimitsAreChecked) {
  const std::string path = list(text(directory("Depot", "1")));
  for (const char* option : {"--timeout", "--jobs"}) {
    for (const char* value : {"0", "x", "-1", "1.5", "99999999"}) {
      const Output said = sitelist({"probe", "--file", path, std::string(option) + "=" + value});
      EXPECT_EQ(said.status, 2) << option << value;
      EXPECT_THAT(said.err, StartsWith(std::string("sitelist: ") + option + ": \"" + value));
    }
  }
}

TEST_F(ProbeOrder, ADirectoryThatCannotBeReadSaysWhy) {
  JsonReport::Record site = probeSite(directory("none", "1", false));
  EXPECT_EQ(site["error"], "the directory cannot be read: No such file or directory");
  EXPECT_NE(site["readAs"], "");
  Entry made = directory("file", "1");
  made.path = write("plain", "");
  site = probeSite(made);
  EXPECT_EQ(site["error"], "the directory cannot be read: Not a directory");
}

TEST_F(ProbeOrder, WhatOnlyTheAgentKnowsIsNotTried) {
  Entry macro = directory("macro", "1");
  macro.path = "&lt;DATA&gt;/x";
  EXPECT_THAT(probeSite(macro)["error"], HasSubstr("a macro"));
  macro.path = "relative/x";
  EXPECT_THAT(probeSite(macro)["error"], HasSubstr("not absolute"));
  Entry host;
  host.server = "bad host/@:80";
  JsonReport::Record site = probeSite(host);
  EXPECT_EQ(site["state"], "not-tried");
  EXPECT_THAT(site["error"], HasSubstr("is not a host name"));
  host.server = "a.example:0";
  EXPECT_THAT(probeSite(host)["error"], HasSubstr("not a number from 1 to 65535"));
}

// Another process can take the write lock while the probe waits for a peer.
TEST_F(ProbeOrder, NoLockIsHeldWhileTheNetworkIsUsed) {
  std::atomic<int> result{-1};
  const Peer peer([&](Connection& connection) {
    connection.request();
    const int lock = ::open(file("agent/locks/SiteListLock.lock").c_str(), O_RDWR | O_CLOEXEC);
    result = lock < 0 ? -2 : ::flock(lock, LOCK_EX | LOCK_NB);
    if (lock >= 0) ::close(lock);
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
  });
  Entry made;
  made.server = local(peer.port());
  setOwnList(document(text(made)));
  const Output said = sitelist({"probe"});
  EXPECT_EQ(said.status, 0) << said.out << said.err;
  EXPECT_EQ(result, 0);
}

TEST_F(ProbeOrder, ChangesNothing) {
  setOwnList(document(text(directory("Depot", "1"))));
  sitelist({"show"});
  const auto before = agentFiles();
  EXPECT_EQ(sitelist({"probe"}).status, 0);
  EXPECT_EQ(agentFiles(), before);
}

TEST_F(ProbeOrder, AListWithoutSitesHasNoneToUse) {
  probe(list(""));
  EXPECT_EQ(output.status, 1);
  EXPECT_THAT(sitelist({"probe", "--file", file("list.xml")}).out,
              HasSubstr("The agent has no site that it can use."));
}

}  // namespace
}  // namespace test
