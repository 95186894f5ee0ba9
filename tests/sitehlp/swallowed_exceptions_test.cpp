#include <gmock/gmock.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "sitehlp/write/sites_helper_util.h"
#include "tests/import/failing_allocation.h"
#include "tests/sitehlp/hooked_file_system.h"
#include "tests/sitehlp/writer_fixture.h"
#include "tests/support/allocation/searched_new.h"
#include "tests/support/child_process.h"

// If an operation catches an exception and returns a code, one error line names the exception.
namespace {

using sitehlp::tag_Site;
using test::HookedFileSystem;
using testing::ElementsAre;
using testing::IsEmpty;

class SwallowedException : public test::WriterTest {
 protected:
  // Returns the error lines that are not of component "SiteHlp".
  std::vector<std::wstring> causes() {
    std::vector<std::wstring> texts;
    for (const test::LogLine& line : agent.messages()) {
      if (line.level != LogLevel::Error || line.component == L"SiteHlp") continue;
      EXPECT_EQ(line.component, L"Host");
      texts.push_back(line.text);
    }
    agent.clearLog();
    return texts;
  }
  std::vector<std::wstring> causesOfRead(const std::wstring& file) {
    agent.clearLog();
    tag_Site* list = nullptr;
    EXPECT_EQ(helper.ReadSiteList(file, &list, true), -10);
    return causes();
  }
  template <typename Exception>
  static HookedFileSystem::Action throwAt(const std::string& name, const Exception& exception) {
    return [=](const std::string& path) {
      if (test::endsWith(path, name)) throw exception;
    };
  }
  std::wstring mesh() const { return test::wide(agent.dataDirectory() + "/mesh/SiteList.xml"); }
};

TEST_F(SwallowedException, OfAReadIsToldWithTheFile) {
  const std::wstring directory = test::wide(agent.dataDirectory());
  EXPECT_THAT(causesOfRead(directory),
              ElementsAre(L"Site list not read: " + directory + L": Is a directory"));
  const std::wstring invalid = store("<a>\xFF</a>", "invalid.xml");
  EXPECT_THAT(causesOfRead(invalid),
              ElementsAre(L"Site list not read: " + invalid + L" is not valid in its encoding"));
}

TEST_F(SwallowedException, OfAReadIsToldWhateverItIs) {
  const std::wstring file = store("<a/>", "list.xml");
  {
    HookedFileSystem hooked(throwAt("list.xml", std::bad_alloc()));
    EXPECT_THAT(causesOfRead(file),
                ElementsAre(L"Site list not read: " + file + L": not enough memory"));
  }
  {
    HookedFileSystem hooked(throwAt("list.xml", std::runtime_error("from below")));
    EXPECT_THAT(causesOfRead(file), ElementsAre(L"Site list not read: " + file + L": from below"));
  }
  {
    HookedFileSystem hooked(throwAt("list.xml", 1));
    EXPECT_THAT(causesOfRead(file),
                ElementsAre(L"Site list not read: " + file + L": unknown exception"));
  }
}

TEST_F(SwallowedException, OfEveryQueryIsTold) {
  const std::wstring directory = test::wide(agent.dataDirectory());
  std::wstring a;
  std::wstring b;
  std::wstring c;
  std::vector<std::wstring> certificates;
  causes();
  EXPECT_EQ(helper.GetSitelistVersions(directory, a, b, c), -10);
  EXPECT_EQ(causes().size(), 1u);
  EXPECT_EQ(helper.GetSitelistFipsMode(directory, a), -10);
  EXPECT_EQ(causes().size(), 1u);
  EXPECT_EQ(helper.GetCaCertificates(directory, certificates), -10);
  EXPECT_EQ(causes().size(), 1u);
}

TEST_F(SwallowedException, OfTheWriteIsTold) {
  const std::wstring target = path("no/directory/out.xml");
  causes();
  EXPECT_EQ(helper.CreateSiteList(nullptr, target, L"G", L"L", L"T", {}), -11);
  EXPECT_THAT(causes(),
              ElementsAre(L"Site list not written: " + target + L": No such file or directory"));
}

TEST_F(SwallowedException, OfTheMeshCopyIsTold) {
  std::filesystem::remove_all(agent.dataDirectory() + "/mesh");
  causes();
  EXPECT_EQ(write(nullptr), 0);
  const std::wstring cause = L"Mesh copy not written: " + mesh() + L": No such file or directory";
  EXPECT_THAT(agent.texts(LogLevel::Error),
              ElementsAre(L"Failed to write mesh service sitelist.", cause));
  EXPECT_THAT(causes(), ElementsAre(cause));
}

TEST_F(SwallowedException, WhileADocumentIsBuiltIsTold) {
  agent.apply();  // forgets the key
  const test::ListPtr list(test::newSite(sitehlp::SITE_KIND_HTTP));
  causes();
  {
    HookedFileSystem hooked(throwAt("password.key", std::bad_alloc()));
    EXPECT_EQ(write(list), 0);
  }
  EXPECT_THAT(causes(),
              ElementsAre(L"Site list not written: " + path("out.xml") + L": not enough memory"));
}

// The object that writes the mesh copy is created once in a process. This is the first list of its
// process, and there is no memory for that object.
CHILD_PROCESS(writeWithoutMemoryToTellTheMeshService) {
  const test::TestAgent agent;
  const std::string list = agent.dataDirectory() + "/out.xml";
  const test::FailingAllocation failing(test::blockSizeOfNew(sizeof(sitehlp::SitesHelperUtil)), 0);
  const int code =
      sitehlp::CSitesHelper(true).CreateSiteList(nullptr, test::wide(list), L"G", L"L", L"T", {});
  const auto errors = agent.texts(LogLevel::Error);
  channel.send(std::to_string(failing.failed()) + " refused, result " + std::to_string(code));
  channel.send(test::exists(list) ? "written" : "not written");
  channel.send(std::to_string(errors.size()) + " " +
               (errors.empty() ? "" : test::narrow(errors[0]).substr(0, 23)));
  return 0;
}

TEST_F(SwallowedException, SaysThatNothingIsWrittenOnlyWhereThatIsSo) {
  test::ChildProcess child("writeWithoutMemoryToTellTheMeshService", {});
  EXPECT_EQ(child.receive(), "1 refused, result 0");
  EXPECT_EQ(child.receive(), "not written");
  EXPECT_EQ(child.receive(), "1 Site list not written: ");
  EXPECT_EQ(child.wait(), 0);
}

TEST_F(SwallowedException, DoesNotComeWithAFileThatIsMerelyMissing) {
  causes();
  tag_Site* list = nullptr;
  EXPECT_EQ(helper.ReadSiteList(path("missing.xml"), &list, true), -4);
  EXPECT_EQ(write(nullptr), 0);
  EXPECT_THAT(causes(), IsEmpty());
}

}  // namespace
