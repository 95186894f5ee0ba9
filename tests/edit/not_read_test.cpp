#include <filesystem>

#include "tests/edit/edit_fixture.h"

// If a list cannot be read for an edit, one error line of component "Host" gives the reason.
namespace {

using namespace test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Unreadable {
  std::string bytes;
  std::wstring reason;
};

const std::vector<Unreadable>& unreadable() {
  static const std::string begun = "<ns:SiteLists xmlns:ns=\"wxSiteList\">";
  static const std::string deep = [] {
    std::string text = begun;
    for (int i = 0; i < 300; ++i) text += "<a>";
    for (int i = 0; i < 300; ++i) text += "</a>";
    return text + "</ns:SiteLists>";
  }();
  static const std::vector<Unreadable> all = {
      {begun + "<SiteList>", L"no element found"},
      {begun + "\xFF</ns:SiteLists>", L" is not valid in its encoding"},
      {deep, L"document over the limit: depth"},
  };
  return all;
}

class NotRead : public EditFixture {
 protected:
  std::vector<std::wstring> linesOfHost() const {
    std::vector<std::wstring> texts;
    for (const LogLine& line : agent.messages()) {
      if (line.component == L"Host" && line.level == LogLevel::Error) texts.push_back(line.text);
    }
    return texts;
  }
  bool derive() {
    agent.clearLog();
    return sitehlp::CSitesHelper::createServerSiteListFromSiteList(
        wide(agent.dataDirectory() + "/etc").c_str(), wide(incoming.path()).c_str());
  }
  static auto lineFor(const std::string& path, const std::wstring& reason) {
    return ElementsAre(AllOf(StartsWith(L"Site list not read: " + wide(path)), HasSubstr(reason)));
  }
};

TEST_F(NotRead, IsToldOfTheListThatIsEdited) {
  source(document(""));
  for (const Unreadable& list : unreadable()) {
    target(list.bytes);
    EXPECT_FALSE(modify(true, true));
    EXPECT_THAT(linesOfHost(), lineFor(own, list.reason));
    EXPECT_THAT(libraryMessages(agent), IsEmpty());
    EXPECT_FALSE(derive());
    EXPECT_THAT(linesOfHost(), lineFor(own, list.reason));
    EXPECT_THAT(libraryMessages(agent), IsEmpty());
  }
}

// The read of the source reports invalid bytes. The parser reports all other faults.
TEST_F(NotRead, IsToldOfTheSourceOfAnEdit) {
  target(document(""));
  for (const Unreadable& list : unreadable()) {
    source(list.bytes);
    EXPECT_FALSE(modify(true, true));
    EXPECT_THAT(linesOfHost(), ElementsAre(AllOf(HasSubstr(wide(src)), HasSubstr(list.reason))));
    EXPECT_THAT(libraryMessages(agent), IsEmpty());
  }
}

TEST_F(NotRead, IsToldOfADirectory) {
  std::filesystem::create_directory(own);
  EXPECT_FALSE(derive());
  EXPECT_THAT(linesOfHost(),
              ElementsAre(L"Site list not read: " + wide(own) + L": Is a directory"));
}

TEST_F(NotRead, IsNotToldOfAFileThatIsMerelyMissing) {
  EXPECT_FALSE(modify(true, true));
  EXPECT_THAT(linesOfHost(), IsEmpty());
  EXPECT_FALSE(derive());
  EXPECT_THAT(linesOfHost(), IsEmpty());
}

}  // namespace
