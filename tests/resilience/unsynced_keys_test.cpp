#include <fcntl.h>
#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>

#include "sitehlp/sites_helper.h"
#include "tests/resilience/disk_model.h"
#include "tests/resilience/workshop.h"
#include "tests/support/recording_file_system.h"

// The key files of an import are already in place, but the process that wrote them has not synced
// them. A power cut must still not leave the new list without its keys.
namespace {

using namespace test;

class UnsyncedKeys : public testing::Test {
 protected:
  UnsyncedKeys() {
    import();
    m_after = m_workshop.state();
    m_workshop.reset();
  }

  int import() const {
    return sitehlp::CSitesHelper(wide(m_workshop.own()))
        .ImportSiteList(wide(m_workshop.incoming()), L"");
  }

  // Applies the calls to the disk. Cuts the power after each one from number `from` on, and at the
  // end. Returns the number of cuts that left the old list.
  std::size_t cutPower(DiskModel& disk, const std::vector<RecordedCall>& calls, std::size_t from) {
    std::size_t old = 0;
    for (std::size_t i = 0; i < calls.size(); ++i) {
      if (!disk.apply(calls[i]) || i < from) continue;
      SCOPED_TRACE(testing::Message() << "after call " << i << ", " << calls[i]);
      old += forEachCut(disk, [&](const State& now) { expectKeysBeforeList(now); });
    }
    forEachCut(disk, [&](const State& now) { EXPECT_EQ(mixture(now, m_after, m_after), ""); });
    return old;
  }

  Workshop m_workshop;

 private:
  // Cuts the power so that no pending effect reaches the disk, then only one, then all.
  template <typename Check>
  std::size_t forEachCut(const DiskModel& disk, Check check) {
    std::size_t old = 0;
    const std::size_t pending = disk.pending();
    for (std::size_t choice = 0; choice < pending + 2; ++choice) {
      State now;
      for (const auto& [path, bytes] : disk.afterPowerCut(
               [&](std::size_t number) { return choice == pending + 1 || number == choice; })) {
        if (!isTemporaryFile(path)) now[path] = normalForm(path, bytes);
      }
      check(now);
      old += now[m_workshop.own()] != m_after[m_workshop.own()];
    }
    return old;
  }

  void expectKeysBeforeList(const State& now) {
    const std::string list = m_workshop.own();
    if (now.at(list) != m_after.at(list)) return;
    for (const char* name : c_keyFileNames) {
      const std::string key = m_workshop.agent.etc(name);
      EXPECT_TRUE(now.count(key) != 0 && now.at(key) == m_after.at(key))
          << "the list is new and not " << name;
    }
  }

  State m_after;
};

TEST_F(UnsyncedKeys, OfAnImportThatEndedAfterARenameAreSyncedByTheNextOne) {
  std::vector<FileCall> calls;
  {
    const WorkshopFileSystem files(m_workshop);
    import();
    calls = files.calls();
  }
  std::size_t keys = 0;
  std::size_t old = 0;
  for (std::size_t last = 0; last < calls.size(); ++last) {
    if (calls[last] != FileCall::Rename) continue;
    SCOPED_TRACE(testing::Message() << "the first import ends after call " << last);
    m_workshop.reset();
    DiskModel disk(m_workshop.roots());
    WorkshopFileSystem behind(m_workshop);
    const RecordingFileSystem files(behind);
    // The calls of a process that has ended do not happen. Here they fail instead.
    behind.failFrom(last + 1, EIO);
    import();
    behind.failNothing();
    const std::size_t first = files.calls().size();
    for (const char* name : c_keyFileNames) {
      keys += readFile(m_workshop.agent.etc(name)) == Workshop::incomingKey(name);
    }
    ASSERT_EQ(import(), 0);
    old += cutPower(disk, files.calls(), first);
  }
  EXPECT_GT(keys, 4U) << "the next import found them in place";
  EXPECT_GT(old, 100U);
}

TEST_F(UnsyncedKeys, OfAnotherProgramAreSyncedByAnImport) {
  for (const char* name : c_keyFileNames) std::filesystem::remove(m_workshop.agent.etc(name));
  DiskModel disk(m_workshop.roots());
  RecordingFileSystem files;
  for (const char* name : c_keyFileNames) {
    const std::string bytes = Workshop::incomingKey(name);
    const int fd =
        files.open(AT_FDCWD, m_workshop.agent.etc(name), O_WRONLY | O_CREAT | O_EXCL, 0600);
    files.write(fd, bytes.data(), bytes.size());
    files.close(fd);
  }
  ASSERT_EQ(import(), 0);
  EXPECT_GT(cutPower(disk, files.calls(), 0), 0U);
}

}  // namespace
