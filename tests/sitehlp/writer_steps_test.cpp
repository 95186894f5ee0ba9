#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/detached_agent.h"
#include "tests/sitehlp/hooked_file_system.h"
#include "tests/sitehlp/writer_fixture.h"
#include "tests/support/faulty_file_system.h"

// CreateSiteList apart from the text: records of unknown kind, the mesh copy, failures.
namespace {

using sitehlp::tag_Site;
using test::newSite;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::wstring c_command = L"Command to mesh service to load new sitelist.";
const std::wstring c_commandFailed = L"Load new sitelist command failed.";
const std::wstring c_copyFailed = L"Failed to write mesh service sitelist.";

class WriterSteps : public test::WriterTest {
 protected:
  static tag_Site* unknown() { return newSite(static_cast<sitehlp::SiteKind>(5)); }
  static tag_Site* local(const std::wstring& name) {
    tag_Site* site = newSite(sitehlp::SITE_KIND_LOCAL);
    test::put(site->local.szName, name);
    return site;
  }
  std::size_t place(const std::string& what) const {
    const std::size_t at = written().find(what);
    EXPECT_NE(at, std::string::npos) << what << " in " << written();
    return at;
  }
};

// --- Records of unknown kind
// ----------------------------------------------------------------------

// Shows: CreateSiteList=-1
TEST_F(WriterSteps, UnknownLastRecordGivesMinusOneThoughTheFileIsWritten) {
  EXPECT_EQ(write(test::chain({local(L"1"), unknown()})), -1);
  EXPECT_LT(place("Name=\"1\""), place("</SiteList>"));
  EXPECT_EQ(meshText(), outText());
  EXPECT_THAT(messages(), ElementsAre(info(c_command)));
}

TEST_F(WriterSteps, WithoutAMeshCopyOnlyTheListIsWritten) {
  host::setDetachedAgent(agent.settings);
  agent.clearLog();
  EXPECT_EQ(write(test::chain({local(L"1")})), 0);
  EXPECT_THAT(outText(), HasSubstr("Name=\"1\""));
  EXPECT_FALSE(test::exists(agent.dataDirectory() + "/mesh/SiteList.xml"));
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(WriterSteps, OnlyUnknownRecordsGiveAnEmptyList) {
  EXPECT_EQ(write(test::chain({unknown(), unknown()})), -1);
  EXPECT_EQ(written(), emptyList());
}

TEST_F(WriterSteps, UnknownRecordBetweenOthersIsLeftOut) {
  EXPECT_EQ(write(test::chain({local(L"1"), unknown(), local(L"2")})), 0);
  EXPECT_LT(place("<SiteList "), place("Name=\"1\""));
  EXPECT_LT(place("Name=\"1\""), place("Name=\"2\""));
  EXPECT_LT(place("Name=\"2\""), place("</SiteList>"));
}

TEST_F(WriterSteps, RecordBehindAnUnknownFirstOneStandsBehindTheSiteList) {
  EXPECT_EQ(write(test::chain({unknown(), local(L"1"), local(L"2")})), 0);
  EXPECT_LT(place("</SiteList>"), place("<LocalSite Type=\"repository\" Name=\"1\""));
  EXPECT_LT(place("Name=\"1\""), place("<LocalSite Type=\"repository\" Name=\"2\""));
  EXPECT_THAT(written(), HasSubstr("</LocalSite></ns:SiteLists>"));
  const Read back = readPath(outPath());
  EXPECT_EQ(back.code, 0);
  EXPECT_EQ(back.list, nullptr);
}

TEST_F(WriterSteps, EveryUnknownKindIsUnknown) {
  for (const int kind : {-1, 5, 6, 100, 2147483647, -2147483647 - 1}) {
    tag_Site* site = local(L"x");
    site->eSiteKind = kind;
    EXPECT_EQ(write(test::ListPtr(site)), -1) << kind;
    EXPECT_EQ(written(), emptyList());
  }
}

TEST_F(WriterSteps, KindDecidesNotTheElement) {
  tag_Site* site = newSite(sitehlp::SITE_KIND_FTP);
  test::put(site->http.szElement, L"VestaSite");
  EXPECT_THAT(siteOf(site), testing::StartsWith("<FTPSite Type=\"repository\" Name=\"VestaSite\""));
}

// --- The mesh service
// -----------------------------------------------------------------------------

TEST_F(WriterSteps, MeshServiceGetsTheSameBytes) {
  EXPECT_EQ(write(test::chain({local(L"1")}), {L"\u65E5"}), 0);
  EXPECT_EQ(meshText(), outText());
  EXPECT_THAT(messages(), ElementsAre(info(c_command)));
}

TEST_F(WriterSteps, MeshServiceIsToldWhenBothFilesAreThere) {
  const std::string seen = agent.dataDirectory() + "/seen";
  agent.settings.meshLoadCommand = {"/bin/sh",
                                    "-c",
                                    R"(cat "$1" "$2" > "$3")",
                                    "sh",
                                    test::narrow(outPath()),
                                    agent.dataDirectory() + "/mesh/SiteList.xml",
                                    seen};
  agent.apply();
  EXPECT_EQ(write(test::chain({local(L"1")})), 0);
  EXPECT_EQ(test::readFile(seen), outText() + outText());
}

TEST_F(WriterSteps, MeshCopyGoesWhereTheSettingsSay) {
  agent.settings.meshSiteListPath = agent.dataDirectory() + "/elsewhere/mesh.xml";
  std::filesystem::create_directory(agent.dataDirectory() + "/elsewhere");
  agent.apply();
  EXPECT_EQ(write(nullptr), 0);
  EXPECT_EQ(test::readFile(agent.settings.meshSiteListPath), outText());
  EXPECT_FALSE(test::exists(agent.dataDirectory() + "/mesh/SiteList.xml"));
}

TEST_F(WriterSteps, FailedLoadCommandIsLoggedAlone) {
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"/bin/sh", "-c", "exit 3"}, std::vector<std::string>{},
        std::vector<std::string>{"/no/such/program"}}) {
    agent.settings.meshLoadCommand = command;
    agent.apply();
    agent.clearLog();
    EXPECT_EQ(write(nullptr), 0);
    EXPECT_EQ(written(), emptyList());
    EXPECT_EQ(meshText(), outText());
    EXPECT_THAT(messages(), ElementsAre(info(c_command), error(c_commandFailed)));
  }
}

TEST_F(WriterSteps, FailedMeshCopyIsLoggedAndNothingIsLoaded) {
  std::filesystem::remove_all(agent.dataDirectory() + "/mesh");
  const std::string told = agent.dataDirectory() + "/told";
  agent.settings.meshLoadCommand = {"/bin/sh", "-c", R"(: > "$1")", "sh", told};
  agent.apply();
  EXPECT_EQ(write(nullptr), 0);
  EXPECT_EQ(written(), emptyList());
  EXPECT_THAT(messages(), ElementsAre(error(c_copyFailed)));
  EXPECT_FALSE(test::exists(told));
}

// --- Failures
// -------------------------------------------------------------------------------------

// Shows: CreateSiteList=-11
TEST_F(WriterSteps, FailedWriteGivesMinusElevenAndTheMeshServiceIsToldAllTheSame) {
  const std::string told = agent.dataDirectory() + "/told";
  agent.settings.meshLoadCommand = {"/bin/sh", "-c", R"(: > "$1")", "sh", told};
  agent.apply();
  EXPECT_EQ(helper.CreateSiteList(test::chain({local(L"1")}).get(), path("no/directory/out.xml"),
                                  L"G", L"L", L"T", {}),
            -11);
  EXPECT_THAT(meshText(), HasSubstr("Name=\"1\""));
  EXPECT_TRUE(test::exists(told));
  EXPECT_THAT(messages(), ElementsAre(info(c_command)));
}

TEST_F(WriterSteps, FailedWriteGoesBeforeTheResultOfTheRecords) {
  EXPECT_EQ(helper.CreateSiteList(test::ListPtr(unknown()).get(), path("no/directory/out.xml"),
                                  L"G", L"L", L"T", {}),
            -11);
}

// Shows: CreateSiteList=-11
TEST_F(WriterSteps, WithoutAnyPathTheWriteFails) {
  EXPECT_EQ(helper.CreateSiteList(nullptr, L"", L"G", L"L", L"T", {}), -11);
  EXPECT_EQ(comparable(meshText()), emptyList());
}

TEST_F(WriterSteps, DirectoryInPlaceOfTheFileStays) {
  std::filesystem::create_directory(test::narrow(outPath()));
  EXPECT_EQ(write(nullptr), -11);
  EXPECT_TRUE(std::filesystem::is_directory(test::narrow(outPath())));
  EXPECT_EQ(comparable(meshText()), emptyList());
}

TEST_F(WriterSteps, EveryFailedCallLeavesTheOldFileOrTheNewOne) {
  store("the old list", "out.xml");
  agent.settings.meshLoadCommand = {};
  agent.apply();
  const test::ListPtr list = test::chain({local(L"1"), local(L"2")});
  bool failed = true;
  bool sawOld = false;
  for (std::size_t call = 0; failed; ++call) {
    ASSERT_LT(call, 1000u);
    store("the old list", "out.xml");
    int code = 0;
    {
      test::FaultyFileSystem faulty;
      faulty.failCall(call, EIO);
      code = write(list);
      failed = !faulty.failed().empty();
    }
    const std::string text = outText();
    if (code == -11) {
      // The sync of the directory fails after the rename, so the old or the new file may be there.
      EXPECT_TRUE(text == "the old list" || test::endsWith(text, "</ns:SiteLists>")) << call;
    } else {
      EXPECT_EQ(code, 0) << call;
      EXPECT_TRUE(test::endsWith(text, "</ns:SiteLists>")) << call;
    }
    sawOld = sawOld || text == "the old list";
  }
  EXPECT_TRUE(sawOld);
}

// --- The order of the steps
// -----------------------------------------------------------------------

TEST_F(WriterSteps, FileIsWrittenBeforeTheMeshCopyBeforeTheCommand) {
  std::vector<std::string> files;
  const test::ListPtr list = test::chain({local(L"1")});
  {
    test::HookedFileSystem hooked(nullptr, [&](const std::string& to) {
      files.push_back(to.substr(to.rfind('/') + 1));
      EXPECT_THAT(messages(), IsEmpty());
    });
    EXPECT_EQ(write(list), 0);
  }
  EXPECT_THAT(files, ElementsAre("out.xml", "SiteList.xml"));
  EXPECT_THAT(messages(), ElementsAre(info(c_command)));
}

TEST_F(WriterSteps, ScopeOfTheWholeHoldsEverything) {
  agent.clearLog();
  EXPECT_EQ(helper.CreateSiteList(nullptr, outPath(), L"G", L"L", L"T", {}), 0);
  const auto& log = agent.log();
  ASSERT_GE(log.size(), 3u);
  EXPECT_EQ(log.front(), detail(L"Enter: Creating Sitelist"));
  EXPECT_EQ(log.back(), detail(L"Leave: Creating Sitelist"));
  EXPECT_EQ(scopes().size(), 2u);
}

TEST_F(WriterSteps, AnInstanceWritesAgainAndAgain) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(write(test::chain({local(L"1"), newSite(sitehlp::SITE_KIND_PROXY)})), 0);
    EXPECT_EQ(test::lengthOf(readPath(outPath()).list.get()), 2);
  }
}

}  // namespace
