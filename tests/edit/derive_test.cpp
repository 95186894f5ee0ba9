#include <filesystem>

#include "tests/edit/edit_fixture.h"
#include "tests/edit/lock_watch.h"
#include "tests/import/key_file_system.h"

using namespace sitehlp;
using namespace test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class DeriveServerList : public testing::Test {
 protected:
  void client(const std::string& bytes) { writeFile(from.file("SiteList.xml"), bytes); }
  bool derive() {
    agent.clearLog();
    return CSitesHelper::createServerSiteListFromSiteList(wide(from.path()).c_str(),
                                                          wide(to.path()).c_str());
  }
  // Returns the server list that is derived from a list with these sites.
  std::string derived(const std::string& sites) {
    client(document(sites));
    EXPECT_TRUE(derive());
    return result();
  }
  std::string result() const { return canonical(readFile(to.file("ServerSiteList.xml"))); }
  // The list in `target` is refused because its name and that of the source lead to one file.
  void expectToldOfTheLink(const TempDir& target) {
    EXPECT_THAT(
        agent.texts(LogLevel::Error),
        ElementsAre(L"Server site list not written: " + wide(target.file("ServerSiteList.xml")) +
                    L" and " + wide(from.file("SiteList.xml")) +
                    L" may be the same file; next: remove the symbolic link between them"));
    agent.clearLog();
  }
  static std::string local(const std::string& element, const std::string& value) {
    return "<" + element + " Name=\"n\" Local=\"" + value + "\"><A>a</A></" + element + ">";
  }

  TestAgent agent;
  TempDir from;
  TempDir to;
};

// Shows: attribute-local
TEST_F(DeriveServerList, RepositoriesMarkedLocalAreLeftOut) {
  EXPECT_EQ(derived(local("FTPSite", "1") + serverElement("s") + local("HttpSite", "1") +
                    local("UNCSite", "1") + local("LocalSite", "1")),
            canonical(document(serverElement("s"))));
  for (const char* kind : {"FTPSite", "HttpSite", "UNCSite", "LocalSite"}) {
    EXPECT_EQ(derived(local(kind, "1") + local(kind, "0")), canonical(document(local(kind, "0"))));
  }
}

TEST_F(DeriveServerList, EveryOneOfAKindIsLeftOutWhereverItStands) {
  EXPECT_EQ(derived(local("HttpSite", "1") + local("HttpSite", "1") + httpElement("a") +
                    local("HttpSite", "1") + local("UNCSite", "1") + httpElement("b") +
                    local("UNCSite", "1") + local("HttpSite", "1")),
            canonical(document(httpElement("a") + httpElement("b"))));
}

TEST_F(DeriveServerList, OnlyTheTextOneMarksARepositoryAsLocal) {
  std::string sites = "<HttpSite Name=\"none\"/><FTPSite local=\"1\"/>";
  for (const char* value : {"0", "", "true", "01", " 1", "1 ", "2", "-1", "+1", "1.0"}) {
    for (const char* kind : {"FTPSite", "HttpSite", "UNCSite", "LocalSite"}) {
      sites += local(kind, value);
    }
  }
  EXPECT_EQ(derived(sites), canonical(document(sites)));
}

TEST_F(DeriveServerList, OtherElementsStayEvenWhereTheyAreMarkedLocal) {
  const std::string sites = local("VestaSite", "1") + local("KeystoneSite", "1") +
                            local("ProxyConfigList", "1") + local("Unheard", "1") +
                            local("httpsite", "1") + "<Wrap>" + local("HttpSite", "1") + "</Wrap>";
  EXPECT_EQ(derived(sites), canonical(document(sites)));
}

TEST_F(DeriveServerList, TheRestOfTheDocumentStaysExactlyAsItWas) {
  const auto text = [](const std::string& sites) {
    return "<!-- before --><ns:SiteLists xmlns:ns=\"wxSiteList\" GlobalVersion=\"G\" "
           "LocalVersion=\"L\" Type=\"Client\" FipsMode=\"1\" x=\"&lt;\">\n <CaBundle>"
           "<CaCertificate>1</CaCertificate></CaBundle><Policies><Setting name=\"p\">v</Setting>"
           "</Policies><HttpSite Local=\"1\"/><?pi data?>\n  <SiteList Default=\"1\">" +
           sites +
           "</SiteList><SiteList><HttpSite Local=\"1\"/></SiteList></ns:SiteLists><!-- after -->";
  };
  const std::string rest =
      "<!-- c -->text<HttpSite Name=\"a\" Unknown=\"u\"><Password Encrypted=\"1\">sealed</Password>"
      "<![CDATA[<raw>]]></HttpSite>\n";
  client(text(local("FTPSite", "1") + rest + local("HttpSite", "1")));
  EXPECT_TRUE(derive());
  EXPECT_EQ(result(), canonical(text(rest)));
}

TEST_F(DeriveServerList, TheSourceIsNeverChanged) {
  client(document(local("HttpSite", "1")));
  const auto before = snapshot(from.path());
  EXPECT_TRUE(derive());
  EXPECT_EQ(snapshot(from.path()), before);
}

TEST_F(DeriveServerList, WithoutATargetDirectoryTheResultLiesBesideTheSource) {
  client(document(local("HttpSite", "1") + httpElement("a")));
  EXPECT_TRUE(CSitesHelper::createServerSiteListFromSiteList(wide(from.path()).c_str(), nullptr));
  EXPECT_EQ(canonical(readFile(from.file("ServerSiteList.xml"))),
            canonical(document(httpElement("a"))));
  EXPECT_THAT(snapshot(to.path()), IsEmpty());
}

TEST_F(DeriveServerList, AFormerResultIsReplaced) {
  writeFile(to.file("ServerSiteList.xml"), "former");
  EXPECT_EQ(derived(httpElement("a")), canonical(document(httpElement("a"))));
}

TEST_F(DeriveServerList, TracesItsScopeAtInformationLevelAndLogsNothingElse) {
  client(document(httpElement("a")));
  EXPECT_TRUE(derive());
  EXPECT_TRUE(tracedScope(agent, L"Creating ServerSiteList.xml", L"StSHlp", LogLevel::Info));
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
}

TEST_F(DeriveServerList, TheLockIsHeldWhileTheSourceIsReadAndWhileTheResultIsWritten) {
  client(document(httpElement("a")));
  LockWatch files({"SiteList.xml", "ServerSiteList.xml"});
  EXPECT_TRUE(derive());
  std::vector<std::string> seen = files.seen;
  EXPECT_THAT(seen, Contains("read SiteList.xml: reading"));
  EXPECT_EQ(seen.back(), "write ServerSiteList.xml: writing");
}

TEST_F(DeriveServerList, AMissingSiteListSectionIsLoggedWithThePath) {
  for (const char* text :
       {"<ns:SiteLists xmlns:ns=\"wxSiteList\"/>",
        "<ns:SiteLists xmlns:ns=\"wxSiteList\"><X><SiteList/></X><sitelist/></ns:SiteLists>"}) {
    client(text);
    EXPECT_FALSE(derive());
    EXPECT_THAT(libraryMessages(agent),
                ElementsAre(LogLine{LogLevel::Error, L"StSHlp",
                                    L"Site list '" + wide(from.file("SiteList.xml")) +
                                        L" missing section SiteList"}));
  }
  EXPECT_THAT(snapshot(to.path()), IsEmpty());
}

TEST_F(DeriveServerList, ASourceThatCannotBeOpenedFailsWithoutAMessage) {
  EXPECT_FALSE(derive());
  EXPECT_THAT(libraryMessages(agent), IsEmpty());
  for (const char* text : {"", "text", "<ns:SiteLists xmlns:ns=\"wxSiteList\"><SiteList>",
                           "<SiteLists xmlns:ns=\"wxSiteList\"><SiteList/></SiteLists>",
                           "<ns:SiteLists><SiteList/></ns:SiteLists>",
                           "<ns:SiteLists xmlns:ns=\"other\"><SiteList/></ns:SiteLists>"}) {
    client(text);
    EXPECT_FALSE(derive()) << text;
    EXPECT_THAT(libraryMessages(agent), IsEmpty());
  }
  std::filesystem::remove(from.file("SiteList.xml"));
  std::filesystem::create_directory(from.file("SiteList.xml"));
  EXPECT_FALSE(derive());
  EXPECT_THAT(snapshot(to.path()), IsEmpty());
}

TEST_F(DeriveServerList, AFailedWriteLeavesTheFormerResult) {
  client(document(httpElement("a")));
  writeFile(to.file("ServerSiteList.xml"), "former");
  {
    KeyFileSystem files;
    files.irreplaceable = {"ServerSiteList.xml"};
    EXPECT_FALSE(derive());
  }
  EXPECT_EQ(readFile(to.file("ServerSiteList.xml")), "former");
  EXPECT_FALSE(CSitesHelper::createServerSiteListFromSiteList(wide(from.path()).c_str(),
                                                              wide(to.file("not/there")).c_str()));
}

TEST_F(DeriveServerList, RefusesATargetThatLeadsToItsSource) {
  const std::string list = document(local("HttpSite", "1") + serverElement("s"));
  client(list);
  std::filesystem::create_symlink("SiteList.xml", from.file("ServerSiteList.xml"));
  EXPECT_FALSE(CSitesHelper::createServerSiteListFromSiteList(wide(from.path()).c_str(), nullptr));
  expectToldOfTheLink(from);
  EXPECT_EQ(readFile(from.file("SiteList.xml")), list);
  // The same for a chain of links into another directory.
  std::filesystem::create_symlink(from.file("ServerSiteList.xml"), to.file("ServerSiteList.xml"));
  EXPECT_FALSE(derive());
  expectToldOfTheLink(to);
  EXPECT_EQ(readFile(from.file("SiteList.xml")), list);
}

TEST_F(DeriveServerList, RefusesASourceThatLeadsToItsTarget) {
  const std::string list = document(local("HttpSite", "1") + serverElement("s"));
  writeFile(from.file("ServerSiteList.xml"), list);
  std::filesystem::create_symlink("ServerSiteList.xml", from.file("SiteList.xml"));
  EXPECT_FALSE(CSitesHelper::createServerSiteListFromSiteList(wide(from.path()).c_str(), nullptr));
  expectToldOfTheLink(from);
  EXPECT_EQ(readFile(from.file("ServerSiteList.xml")), list);
}

TEST_F(DeriveServerList, TakesTheTargetThatIsASecondNameOfItsSourceForAnotherFile) {
  const std::string list = document(local("HttpSite", "1") + serverElement("s"));
  client(list);
  std::filesystem::create_hard_link(from.file("SiteList.xml"), to.file("ServerSiteList.xml"));
  EXPECT_TRUE(derive());
  EXPECT_EQ(readFile(from.file("SiteList.xml")), list);
  EXPECT_EQ(result(), canonical(document(serverElement("s"))));
}

}  // namespace
