#include <gmock/gmock.h>

#include <string>

#include "tests/sitehlp/document_bytes.h"
#include "tests/sitehlp/sites_helper_fixture.h"

namespace {

using test::Probe;
using testing::ElementsAre;
using testing::IsEmpty;

class Versions : public test::SitesHelperTest {
 protected:
  struct Answer {
    int code = 99;
    std::wstring global = L"g was";
    std::wstring local = L"l was";
    std::wstring type = L"t was";
    bool operator==(const Answer& other) const {
      return code == other.code && global == other.global && local == other.local &&
             type == other.type;
    }
    friend std::ostream& operator<<(std::ostream& out, const Answer& answer) {
      return out << answer.code << " '" << test::narrow(answer.global) << "' '"
                 << test::narrow(answer.local) << "' '" << test::narrow(answer.type) << "'";
    }
  };

  static Answer ask(Probe& object, const std::wstring& file) {
    Answer answer;
    answer.code = object.GetSitelistVersions(file, answer.global, answer.local, answer.type);
    return answer;
  }
  Answer askRoot(const std::string& attributes) {
    return ask(helper, store(test::documentWithRoot("<SiteList/>", attributes)));
  }
  // Returns the result and the value of `fipsMode` after the call.
  std::pair<int, std::wstring> fips(const std::wstring& file) {
    std::wstring mode = L"as it was";
    const int code = helper.GetSitelistFipsMode(file, mode);
    return {code, mode};
  }
  std::pair<int, std::wstring> fipsOfRoot(const std::string& attributes) {
    return fips(store(test::documentWithRoot("<SiteList/>", attributes)));
  }
};

using Fips = std::pair<int, std::wstring>;

const std::string c_tooManyAttributes = [] {
  std::string document = "<a";
  for (int i = 0; i < 20000; ++i) document += " a" + std::to_string(i) + "=\"\"";
  return document + "/>";
}();

// --- Versions
// -------------------------------------------------------------------------------------

// Shows: root-type, GetSitelistVersions=0
TEST_F(Versions, AreThoseOfTheRoot) {
  EXPECT_EQ(askRoot(R"(GlobalVersion="1.2" LocalVersion="20260116041503" Type="Server")"),
            (Answer{0, L"1.2", L"20260116041503", L"Server"}));
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(Versions, ArePassedThroughAsTheyStand) {
  EXPECT_EQ(askRoot("GlobalVersion=\" g &lt;&quot; \" LocalVersion=\"\u65E5\u672C\" "
                    "Type=\"any type\""),
            (Answer{0, L" g <\" ", L"\u65E5\u672C", L"any type"}));
}

// Shows: root-type
TEST_F(Versions, AbsentTypeIsClient) {
  EXPECT_EQ(askRoot(R"(GlobalVersion="1" LocalVersion="2")"), (Answer{0, L"1", L"2", L"Client"}));
  EXPECT_EQ(askRoot(R"(GlobalVersion="1" type="Server")").type, L"Client");
}

TEST_F(Versions, EmptyTypeIsEmpty) { EXPECT_EQ(askRoot(R"(Type="")").type, L""); }

TEST_F(Versions, AbsentVersionsAreEmpty) {
  EXPECT_EQ(askRoot(""), (Answer{0, L"", L"", L"Client"}));
  EXPECT_EQ(askRoot(R"(LocalVersion="2" Type="Server")"), (Answer{0, L"", L"2", L"Server"}));
  EXPECT_EQ(askRoot(R"(GlobalVersion="1" Type="Server")"), (Answer{0, L"1", L"", L"Server"}));
}

TEST_F(Versions, OnlyTheRootIsAsked) {
  EXPECT_EQ(ask(helper, store(R"(<a><b GlobalVersion="1" LocalVersion="2" Type="x"/></a>)")),
            (Answer{0, L"", L"", L"Client"}));
  EXPECT_EQ(ask(helper, store(R"(<anything GlobalVersion="1"/>)")),
            (Answer{0, L"1", L"", L"Client"}));
}

// Shows: GetSitelistVersions=-4
TEST_F(Versions, OfAMissingFileLeaveEverythingAlone) {
  EXPECT_EQ(ask(helper, path("missing.xml")), (Answer{-4, L"g was", L"l was", L"t was"}));
  EXPECT_EQ(ask(helper, L""), (Answer{-4, L"g was", L"l was", L"t was"}));
}

// Shows: GetSitelistVersions=-10
TEST_F(Versions, OfAFileThatCannotBeReadAreEmpty) {
  EXPECT_EQ(ask(helper, test::wide(agent.dataDirectory())), (Answer{-10, L"", L"", L"t was"}));
  EXPECT_EQ(ask(helper, store("<a b=\"\xFF\"/>")), (Answer{-10, L"", L"", L"t was"}));
}

// Shows: GetSitelistVersions=-1
TEST_F(Versions, OfAFileThatIsNoDocumentAreEmpty) {
  for (const char* bytes : {"this is not XML", "", " \n", "invalid", "<a", "<a></b>",
                            "<!DOCTYPE a><a GlobalVersion=\"1\"/>", "<a GlobalVersion=\"1\">"}) {
    EXPECT_EQ(ask(helper, store(bytes)), (Answer{-1, L"", L"", L"t was"})) << bytes;
  }
}

// Shows: GetSitelistVersions=-1, limit-read
TEST_F(Versions, OfADocumentOverALimitAreEmpty) {
  EXPECT_EQ(ask(helper, store(c_tooManyAttributes)), (Answer{-1, L"", L"", L"t was"}));
}

TEST_F(Versions, EmptyPathAsksTheOwnFile) {
  Probe own(store(test::documentWithRoot("", R"(GlobalVersion="own" Type="Server")"), "own.xml"));
  EXPECT_EQ(ask(own, L""), (Answer{0, L"own", L"", L"Server"}));
  const std::wstring other = store(test::documentWithRoot("", R"(GlobalVersion="other")"));
  EXPECT_EQ(ask(own, other), (Answer{0, L"other", L"", L"Client"}));
}

TEST_F(Versions, AreReadInEveryEncoding) {
  for (const test::Encoding& encoding : test::c_encodings) {
    EXPECT_EQ(ask(helper, store(test::encode(L"<a GlobalVersion=\"\u65E5\"/>", encoding, true))),
              (Answer{0, L"\u65E5", L"", L"Client"}));
  }
}

TEST_F(Versions, DoNotChangeTheInstance) {
  Probe own(store(test::documentWithRoot("", R"(GlobalVersion="own")"), "own.xml"));
  ask(own, store(test::documentWithRoot(R"(<Policies><Setting name="a">1</Setting></Policies>)",
                                        R"(GlobalVersion="1" LocalVersion="2" Type="Server")")));
  EXPECT_EQ(own.m_strGlobalVersion, L"own");
  EXPECT_EQ(own.m_strLocalVersion, L"");
  EXPECT_EQ(own.m_strSiteListType, L"Client");
  EXPECT_EQ(own.m_strCurrentFile, L"");
  EXPECT_THAT(own.m_policySettings, IsEmpty());
  EXPECT_EQ(sitehlp::CSitesHelper::m_pSiteList, nullptr);
}

TEST_F(Versions, OpenTheirScopeOnEveryWay) {
  const std::wstring file = store(test::documentWithRoot(""));
  agent.clearLog();
  ask(helper, path("missing.xml"));
  ask(helper, file);
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"Enter: Getting Sitelist versions"),
                                       detail(L"Leave: Getting Sitelist versions"),
                                       detail(L"Enter: Getting Sitelist versions"),
                                       detail(L"Leave: Getting Sitelist versions")));
}

// --- The global version
// ---------------------------------------------------------------------------

// Shows: GetGlobalSitelistVersion=0
TEST_F(Versions, GlobalVersionIsThatOfTheOwnFile) {
  const std::wstring file = store(test::documentWithRoot("", R"(GlobalVersion="7")"));
  Probe own(file);
  store(test::documentWithRoot("", R"(GlobalVersion="8" Type="Server")"));
  std::wstring version;
  EXPECT_EQ(own.GetGlobalSitelistVersion(version), 0);
  EXPECT_EQ(version, L"8");
  EXPECT_EQ(own.m_strGlobalVersion, L"7");
  EXPECT_EQ(own.m_strSiteListType, L"Client");
}

// Shows: GetGlobalSitelistVersion=-1, GetGlobalSitelistVersion=-4, GetGlobalSitelistVersion=-10
TEST_F(Versions, GlobalVersionGivesTheResultsOfTheVersions) {
  std::wstring version = L"as it was";
  EXPECT_EQ(helper.GetGlobalSitelistVersion(version), -4);
  EXPECT_EQ(version, L"as it was");
  EXPECT_EQ(Probe(path("missing.xml")).GetGlobalSitelistVersion(version), -4);
  EXPECT_EQ(version, L"as it was");
  EXPECT_EQ(Probe(store("no document")).GetGlobalSitelistVersion(version), -1);
  EXPECT_EQ(version, L"");
  version = L"as it was";
  EXPECT_EQ(Probe(test::wide(agent.dataDirectory())).GetGlobalSitelistVersion(version), -10);
  EXPECT_EQ(version, L"");
}

TEST_F(Versions, GlobalVersionOpensTheScopeOfTheVersions) {
  agent.clearLog();
  std::wstring version;
  helper.GetGlobalSitelistVersion(version);
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"Enter: Getting Sitelist versions"),
                                       detail(L"Leave: Getting Sitelist versions")));
}

// --- FIPS mode
// ------------------------------------------------------------------------------------

// Shows: GetSitelistFipsMode=0
TEST_F(Versions, FipsModeIsWhatTheRootSays) {
  EXPECT_EQ(fipsOfRoot(R"(FipsMode="1")"), (Fips{0, L"1"}));
  EXPECT_EQ(fipsOfRoot(R"(FipsMode=" any text ")"), (Fips{0, L" any text "}));
  EXPECT_EQ(fipsOfRoot(R"(FipsMode="")"), (Fips{0, L""}));
}

// Shows: GetSitelistFipsMode=-1
TEST_F(Versions, AbsentFipsModeFailsAndLeavesTheOutputAlone) {
  EXPECT_EQ(fipsOfRoot(R"(GlobalVersion="1" fipsmode="1")"), (Fips{-1, L"as it was"}));
  EXPECT_EQ(fips(store(R"(<a><b FipsMode="1"/></a>)")), (Fips{-1, L"as it was"}));
}

// Shows: GetSitelistFipsMode=-1, GetSitelistFipsMode=-4, GetSitelistFipsMode=-10
TEST_F(Versions, FipsModeFailuresLeaveTheOutputAlone) {
  EXPECT_EQ(fips(path("missing.xml")), (Fips{-4, L"as it was"}));
  EXPECT_EQ(fips(L""), (Fips{-4, L"as it was"}));
  EXPECT_EQ(fips(test::wide(agent.dataDirectory())), (Fips{-10, L"as it was"}));
  EXPECT_EQ(fips(store("<a FipsMode=\"\xFF\"/>")), (Fips{-10, L"as it was"}));
  EXPECT_EQ(fips(store("no document")), (Fips{-1, L"as it was"}));
  EXPECT_EQ(fips(store("")), (Fips{-1, L"as it was"}));
  EXPECT_EQ(fips(store("<a FipsMode=\"1\">")), (Fips{-1, L"as it was"}));
  EXPECT_EQ(fips(store(c_tooManyAttributes)), (Fips{-1, L"as it was"}));
}

TEST_F(Versions, FipsModeOfTheEmptyPathIsThatOfTheOwnFile) {
  Probe own(store(test::documentWithRoot("", R"(FipsMode="on")")));
  std::wstring mode;
  EXPECT_EQ(own.GetSitelistFipsMode(L"", mode), 0);
  EXPECT_EQ(mode, L"on");
}

TEST_F(Versions, FipsModeOpensItsScopeOnEveryWay) {
  const std::wstring file = store(test::documentWithRoot("", R"(FipsMode="on")"));
  agent.clearLog();
  fips(path("missing.xml"));
  fips(file);
  EXPECT_THAT(agent.log(), ElementsAre(detail(L"Enter: Getting Sitelist fips mode"),
                                       detail(L"Leave: Getting Sitelist fips mode"),
                                       detail(L"Enter: Getting Sitelist fips mode"),
                                       detail(L"Leave: Getting Sitelist fips mode")));
}

}  // namespace
