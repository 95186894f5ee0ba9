#include <gmock/gmock.h>
#include <signal.h>

#include <condition_variable>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/lock/interprocess_lock.h"
#include "tests/sitehlp/hooked_file_system.h"
#include "tests/sitehlp/sites_helper_fixture.h"
#include "tests/support/child_process.h"
#include "tests/support/faulty_file_system.h"

// Several processes use the same files, only through the library.
namespace {

using korvel_com::orb::lock::InterProcessWriteLock;
using sitehlp::CSitesHelper;
using sitehlp::tag_Site;
using test::ChildProcess;
using test::LockState;
using test::Probe;

void serve(const std::string& dataDirectory) {
  host::AgentSettings settings;
  settings.dataDirectory = dataDirectory;
  settings.logLevel = LogLevel::Off;
  host::setAgent(settings);
}

test::ListPtr sitesNamed(const std::wstring& name, int count) {
  std::vector<tag_Site*> sites;
  for (int i = 0; i < count; ++i) {
    sites.push_back(test::newSite(sitehlp::SITE_KIND_LOCAL));
    test::put(sites.back()->local.szName, name);
  }
  return test::chain(sites);
}

int writeNamed(const std::string& dataDirectory, const std::wstring& name, int count) {
  Probe object(true);
  return object.CreateSiteList(sitesNamed(name, count).get(),
                               test::wide(dataDirectory + "/list.xml"), name, name, name, {});
}

// Returns a hook that stops when the list is opened or replaced, reports this, and continues after
// a message.
std::function<void(const std::string&)> stopAtTheList(test::Channel& channel, bool& stopped) {
  return [&](const std::string& path) {
    if (stopped || !test::endsWith(path, "list.xml")) return;
    stopped = true;
    channel.send("inside");
    channel.receive();
  };
}

CHILD_PROCESS(coreWriteSlowly) {
  serve(args[0]);
  bool stopped = false;
  test::HookedFileSystem hooked(nullptr, stopAtTheList(channel, stopped));
  return writeNamed(args[0], L"new", 3) == 0 ? 0 : 1;
}

CHILD_PROCESS(coreReadSlowly) {
  serve(args[0]);
  bool stopped = false;
  test::HookedFileSystem hooked(stopAtTheList(channel, stopped));
  tag_Site* list = nullptr;
  const int code = Probe(true).ReadSiteList(test::wide(args[0] + "/list.xml"), &list, true);
  const test::ListPtr owner(list);
  return code == 0 && list && std::wstring(list->local.szName) == L"old" ? 0 : 1;
}

CHILD_PROCESS(coreSmartReadSlowly) {
  serve(args[0]);
  bool stopped = false;
  test::HookedFileSystem hooked(stopAtTheList(channel, stopped));
  tag_Site* list = nullptr;
  return Probe(true).SmartReadSiteList(test::wide(args[0] + "/list.xml"), &list) == 0 ? 0 : 1;
}

// Writes lists whose sites all have the same name, and checks this for every list that it reads.
CHILD_PROCESS(coreWriteAndRead) {
  serve(args[0]);
  const std::wstring file = test::wide(args[0] + "/list.xml");
  channel.send("ready");
  channel.receive();
  for (int round = 0; round < 30; ++round) {
    const int count = 1 + round % 7 * 20;
    const std::wstring name = test::wide(args[1]) + L"-" + std::to_wstring(count);
    if (writeNamed(args[0], name, count) != 0) return 1;
    tag_Site* list = nullptr;
    if (Probe(true).ReadSiteList(file, &list, true) != 0) return 2;
    const test::ListPtr owner(list);
    const std::wstring first = list->local.szName;
    int found = 0;
    for (; list; list = list->pNext, ++found) {
      if (list->local.szName != first) return 3;
    }
    if (found != std::stoi(first.substr(first.find(L'-') + 1))) return 4;
    std::wstring global;
    std::wstring local;
    std::wstring type;
    if (Probe(true).GetSitelistVersions(file, global, local, type) != 0) return 5;
    if (global != local || global != type) return 6;
  }
  return 0;
}

class Contention : public test::SitesHelperTest {
 protected:
  Contention() {
    agent.settings.meshLoadCommand.clear();
    agent.apply();
    EXPECT_EQ(writeNamed(agent.dataDirectory(), L"old", 2), 0);
    m_file = path("list.xml");
  }

  std::wstring nameInFile() {
    const Read result = readPath(m_file, false);
    return result.list ? result.list->local.szName : L"no list";
  }

  // Runs an operation in a separate thread until the operation requests a lock or ends.
  class Waiting {
   public:
    explicit Waiting(const std::function<void()>& operation)
        : m_system(std::make_unique<test::FaultyFileSystem>()) {
      m_system->beforeEach([this](test::FileCall call) {
        if (call == test::FileCall::Lock) set(m_asked);
      });
      m_thread = std::thread([this, operation] {
        operation();
        set(m_done);
      });
      std::unique_lock<std::mutex> guard(m_mutex);
      m_changed.wait(guard, [this] { return m_asked || m_done; });
    }
    ~Waiting() { finish(); }
    bool done() {
      const std::lock_guard<std::mutex> guard(m_mutex);
      return m_done;
    }
    void finish() {
      if (m_thread.joinable()) m_thread.join();
    }

   private:
    void set(bool& flag) {
      const std::lock_guard<std::mutex> guard(m_mutex);
      flag = true;
      m_changed.notify_all();
    }
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_asked = false;
    bool m_done = false;
    std::unique_ptr<test::FaultyFileSystem> m_system;
    std::thread m_thread;
  };

  std::wstring m_file;
};

TEST_F(Contention, ReaderWaitsForTheWriterOfAnotherProcess) {
  ChildProcess writer("coreWriteSlowly", {agent.dataDirectory()});
  ASSERT_EQ(writer.receive(), "inside");
  EXPECT_EQ(test::lockState(sitehlp::c_siteListLock), LockState::Written);
  EXPECT_EQ(nameInFile(), L"old");
  Read result{99, nullptr};
  Waiting reader([&] { result = readPath(m_file, true); });
  EXPECT_FALSE(reader.done());
  writer.send("go on");
  reader.finish();
  EXPECT_EQ(writer.wait(), 0);
  EXPECT_EQ(result.code, 0);
  ASSERT_EQ(test::lengthOf(result.list.get()), 3);
  EXPECT_STREQ(result.list->local.szName, L"new");
}

TEST_F(Contention, WriterWaitsForTheReaderOfAnotherProcess) {
  ChildProcess reader("coreReadSlowly", {agent.dataDirectory()});
  ASSERT_EQ(reader.receive(), "inside");
  EXPECT_EQ(test::lockState(sitehlp::c_siteListLock), LockState::Read);
  int code = 99;
  Waiting writer([&] { code = writeNamed(agent.dataDirectory(), L"new", 1); });
  EXPECT_FALSE(writer.done());
  EXPECT_EQ(nameInFile(), L"old");
  reader.send("go on");
  writer.finish();
  EXPECT_EQ(reader.wait(), 0);
  EXPECT_EQ(code, 0);
  EXPECT_EQ(nameInFile(), L"new");
}

TEST_F(Contention, ReadersOfSeveralProcessesGoSideBySide) {
  ChildProcess first("coreReadSlowly", {agent.dataDirectory()});
  ASSERT_EQ(first.receive(), "inside");
  ChildProcess second("coreReadSlowly", {agent.dataDirectory()});
  ASSERT_EQ(second.receive(), "inside");
  EXPECT_EQ(readPath(m_file, true).code, 0);
  first.send("go on");
  second.send("go on");
  EXPECT_EQ(first.wait(), 0);
  EXPECT_EQ(second.wait(), 0);
}

TEST_F(Contention, KilledWriterLeavesTheOldListAndNoLock) {
  ChildProcess writer("coreWriteSlowly", {agent.dataDirectory()});
  ASSERT_EQ(writer.receive(), "inside");
  writer.kill(SIGKILL);
  EXPECT_EQ(writer.wait(), 128 + SIGKILL);
  EXPECT_EQ(test::lockState(sitehlp::c_siteListLock), LockState::Free);
  const Read result = readPath(m_file, true);
  EXPECT_EQ(result.code, 0);
  ASSERT_EQ(test::lengthOf(result.list.get()), 2);
  EXPECT_STREQ(result.list->local.szName, L"old");
  EXPECT_EQ(writeNamed(agent.dataDirectory(), L"next", 1), 0);
  EXPECT_EQ(nameInFile(), L"next");
}

TEST_F(Contention, KilledReaderLeavesNoLock) {
  ChildProcess reader("coreSmartReadSlowly", {agent.dataDirectory()});
  ASSERT_EQ(reader.receive(), "inside");
  EXPECT_EQ(test::lockState(sitehlp::c_siteListLock), LockState::Read);
  EXPECT_EQ(test::lockState(sitehlp::smartSiteListLock), LockState::Read);
  reader.kill(SIGKILL);
  EXPECT_EQ(reader.wait(), 128 + SIGKILL);
  EXPECT_EQ(writeNamed(agent.dataDirectory(), L"next", 1), 0);
  helper.needToUpdateInMemSiteList();
  EXPECT_EQ(CSitesHelper::m_iChange, 1);
}

TEST_F(Contention, ReaderThatWaitsForAKilledWriterGoesOn) {
  ChildProcess writer("coreWriteSlowly", {agent.dataDirectory()});
  ASSERT_EQ(writer.receive(), "inside");
  Read result{99, nullptr};
  Waiting reader([&] { result = readPath(m_file, true); });
  EXPECT_FALSE(reader.done());
  writer.kill(SIGKILL);
  reader.finish();
  EXPECT_EQ(result.code, 0);
  ASSERT_EQ(test::lengthOf(result.list.get()), 2);
  EXPECT_STREQ(result.list->local.szName, L"old");
}

TEST_F(Contention, ChangeNoticeWaitsForTheSmartReadOfAnotherProcess) {
  ChildProcess reader("coreSmartReadSlowly", {agent.dataDirectory()});
  ASSERT_EQ(reader.receive(), "inside");
  Waiting notifier([&] { helper.needToUpdateInMemSiteList(); });
  EXPECT_FALSE(notifier.done());
  reader.send("go on");
  notifier.finish();
  EXPECT_EQ(reader.wait(), 0);
  EXPECT_EQ(CSitesHelper::m_iChange, 1);
}

TEST_F(Contention, OneProcessesNoticeIsNotAnothersCounter) {
  ChildProcess reader("coreSmartReadSlowly", {agent.dataDirectory()});
  ASSERT_EQ(reader.receive(), "inside");
  reader.send("go on");
  EXPECT_EQ(reader.wait(), 0);
  EXPECT_EQ(CSitesHelper::m_iChange, 0);
  EXPECT_EQ(CSitesHelper::m_pSiteList, nullptr);
}

TEST_F(Contention, ManyProcessesOnlyEverSeeWholeLists) {
  std::vector<std::unique_ptr<ChildProcess>> children;
  ASSERT_EQ(writeNamed(agent.dataDirectory(), L"start-1", 1), 0);
  for (int i = 0; i < 5; ++i) {
    children.push_back(std::make_unique<ChildProcess>(
        "coreWriteAndRead", std::vector<std::string>{agent.dataDirectory(), std::to_string(i)}));
  }
  for (auto& child : children) ASSERT_EQ(child->receive(), "ready");
  for (auto& child : children) child->send("go");
  for (auto& child : children) EXPECT_EQ(child->wait(), 0);
  // No temporary file stays behind.
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(agent.dataDirectory())) {
    files += entry.is_regular_file() ? 1 : 0;
  }
  EXPECT_EQ(files, 1);
}

}  // namespace
