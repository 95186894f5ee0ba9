#include "tests/edit/edit_fixture.h"
#include "tests/support/child_process.h"

using namespace sitehlp;
using namespace test;

namespace {

std::string server(const std::string& name) {
  return "<VestaSite Type=\"master\" Name=\"" + name + "\" Server=\"" + name +
         ".example:80\" ServerName=\"" + name + ":80\" ServerIP=\"10.0.0.1:80\"/>";
}

// Reads the agent's list repeatedly. Sends the first fault of a read, or "ok".
CHILD_PROCESS(readerOfEitherServer) {
  host::AgentSettings settings;
  settings.dataDirectory = args[0];
  settings.logLevel = LogLevel::Off;
  host::setAgent(settings);
  channel.send("ready");
  channel.receive();
  CSitesHelper helper(false);
  std::string answer = "ok";
  for (int i = 0; i < 150 && answer == "ok"; ++i) {
    ListOwner list;
    const int code = helper.ReadSiteList(L"", list.out(), true);
    std::wstring names;
    for (const tag_Site& site : list) names += std::wstring(site.http.szName) + L" ";
    if (code != 0) answer = "error " + std::to_string(code);
    if (names != L"repository first " && names != L"repository second ") {
      answer = "neither list: " + narrow(names);
    }
  }
  channel.send(answer);
  return 0;
}

class EditBesideOthers : public EditFixture {
 protected:
  EditBesideOthers() {
    agent.settings.logLevel = LogLevel::Off;
    agent.apply();
    target(document(httpElement("repository") + server("first")));
  }
};

TEST_F(EditBesideOthers, AReaderFindsTheListBeforeOrAfterAnEdit) {
  ChildProcess child("readerOfEitherServer", {agent.dataDirectory()});
  ASSERT_EQ(child.receive(), "ready");
  child.send("go");
  for (int i = 0; i < 30; ++i) {
    source(document(server(i % 2 == 0 ? "second" : "first")));
    ASSERT_TRUE(modify(true, true));
  }
  EXPECT_EQ(child.receive(), "ok");
  EXPECT_EQ(child.wait(), 0);
}

}  // namespace
