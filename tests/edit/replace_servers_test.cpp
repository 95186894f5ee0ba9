#include "tests/edit/edit_fixture.h"
#include "tests/edit/edit_model.h"
#include "tests/edit/unsynced_file_system.h"

using namespace sitehlp;
using namespace test;

namespace {

// Returns a server with this identity that also names its list. An empty identity means an
// incomplete server.
std::string server(const std::string& identity, const std::string& list,
                   const std::string& more = "") {
  if (identity.empty()) return "<VestaSite Name=\"incomplete\" list=\"" + list + "\"/>";
  return "<VestaSite Name=\"" + identity + "\" Server=\"" + identity +
         ".example:80\" ServerName=\"" + identity + ":80\" ServerIP=\"10.0.0.1:80\" list=\"" +
         list + "\" " + more + "/>";
}

std::string servers(const std::vector<std::string>& identities, const std::string& list,
                    const std::string& more = "") {
  std::string text;
  for (const std::string& identity : identities) text += server(identity, list, more);
  return text;
}

class ReplaceServers : public testing::Test {
 protected:
  std::string replaced(const std::string& targetText, const std::string& sourceText) {
    OpenDocument target(dir, targetText);
    OpenDocument source(dir, sourceText);
    EXPECT_TRUE(target.opened);
    EXPECT_TRUE(source.opened);
    const std::string before = canonical(sourceText);
    helper.doReplacePyxSite(target.root, source.root);
    const std::string text = target.text();
    EXPECT_EQ(source.text(), before) << "the source stays as it was";
    return text;
  }

  TestAgent agent;
  TempDir dir;
  UnsyncedFileSystem files;
  CSitesHelper helper{true};
};

TEST_F(ReplaceServers, EveryPairOfListsIsReconciledAsTheModelSays) {
  // Every list of at most three servers out of two complete and one incomplete one.
  std::vector<std::vector<std::string>> lists = {{}};
  for (std::size_t begin = 0, n = 0; n < 3; ++n) {
    const std::size_t end = lists.size();
    for (; begin < end; ++begin) {
      for (const char* identity : {"A", "B", ""}) {
        lists.push_back(lists[begin]);
        lists.back().push_back(identity);
      }
    }
  }
  ASSERT_EQ(lists.size(), 40u);
  for (const auto& targets : lists) {
    for (const auto& sources : lists) {
      std::string kept;
      std::string added;
      for (const Server& one : modelServers(targets, sources)) {
        (one.fromSource ? added : kept) += server(one.identity, one.fromSource ? "s" : "t");
      }
      ASSERT_EQ(replaced(document("<First/>" + servers(targets, "t") + httpElement("last")),
                         document(httpElement("unused") + servers(sources, "s", "Order=\"3\""))),
                canonical(document("<First/>" + kept + httpElement("last") + added)))
          << testing::PrintToString(targets) << " and " << testing::PrintToString(sources);
    }
  }
}

TEST_F(ReplaceServers, OfTwoServersTheOneThatTheSourceLacksGoes) {
  EXPECT_EQ(replaced(document(server("A", "t") + server("B", "t", "Order=\"7\"")),
                     document(server("B", "s", "Order=\"1\" Version=\"9\""))),
            canonical(document(server("B", "t", "Order=\"7\""))))
      << "a server that both have is not refreshed";
}

TEST_F(ReplaceServers, ANewServerGoesToTheEndWithoutItsOrder) {
  EXPECT_EQ(replaced(document(server("A", "t") + httpElement("last")),
                     document(server("A", "s") + server("N", "s", "Type=\"master\" Order=\"1\""))),
            canonical(document(server("A", "t") + httpElement("last") +
                               server("N", "s", "Type=\"master\""))));
}

TEST_F(ReplaceServers, ANewServerComesWithTextAndFirstLevelChildren) {
  EXPECT_EQ(replaced(document(""),
                     document("<VestaSite Name=\"n\" Order=\"1\">text<RelativePath a=\"b\">p<Deep/>"
                              "</RelativePath><UseAuth>0</UseAuth></VestaSite>")),
            canonical(document("<VestaSite Name=\"n\">text<RelativePath a=\"b\">p</RelativePath>"
                               "<UseAuth>0</UseAuth></VestaSite>")));
}

TEST_F(ReplaceServers, OnlyManagementServersInTheSiteListAreTouched) {
  const std::string target =
      document("<KeystoneSite Name=\"k\"/><vestasite/><Wrap><VestaSite Name=\"deep\"/></Wrap>",
               "<VestaSite Name=\"under the root\"/>", "",
               "<SiteList><VestaSite Name=\"second list\"/></SiteList>");
  EXPECT_EQ(replaced(target, document(httpElement("a"))), canonical(target));
}

TEST_F(ReplaceServers, TheBundleIsReplacedByADeepCopyAtTheEnd) {
  EXPECT_EQ(replaced(document("", "<CaBundle><CaCertificate>old</CaCertificate></CaBundle><P/>"),
                     document("",
                              "<CaBundle x=\"y\">t<CaCertificate>1<Deep><Er z=\"1\"/></Deep>"
                              "</CaCertificate><!-- c --></CaBundle>")),
            canonical(document("", "<P/>", R"(GlobalVersion="G1" LocalVersion="L1" Type="Client")",
                               "<CaBundle x=\"y\">t<CaCertificate>1<Deep><Er z=\"1\"/></Deep>"
                               "</CaCertificate><!-- c --></CaBundle>")));
}

TEST_F(ReplaceServers, WithoutABundleInTheSourceTheTargetLosesItsOwn) {
  EXPECT_EQ(replaced(document("", "<CaBundle><CaCertificate>old</CaCertificate></CaBundle>"),
                     document("")),
            canonical(document("")));
}

TEST_F(ReplaceServers, OnlyTheFirstBundleOfEachCounts) {
  EXPECT_EQ(replaced(document("", "<CaBundle>1</CaBundle><CaBundle>2</CaBundle>"),
                     document("", "<CaBundle>3</CaBundle><CaBundle>4</CaBundle>")),
            canonical(document("", "<CaBundle>2</CaBundle>",
                               R"(GlobalVersion="G1" LocalVersion="L1" Type="Client")",
                               "<CaBundle>3</CaBundle>")));
}

TEST_F(ReplaceServers, WithoutASiteListInEitherNothingIsDone) {
  const std::string listless =
      "<ns:SiteLists xmlns:ns=\"wxSiteList\"><CaBundle>l</CaBundle></ns:SiteLists>";
  const std::string full = document(server("A", "x"), "<CaBundle>f</CaBundle>");
  EXPECT_EQ(replaced(full, listless), canonical(full));
  EXPECT_EQ(replaced(listless, full), canonical(listless));
}

}  // namespace
