#include <sys/stat.h>

#include <cerrno>

#include "tests/host_lock/lock_fixture.h"
#include "tests/support/faulty_file_system.h"

namespace {

using test::c_forEver;
using test::c_lockName;
using test::FileCall;
using test::InterProcessReadLock;
using test::InterProcessWriteLock;
using test::Locker;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using Mode = test::Locker::Mode;

class LockFiles : public test::LockTest {
 protected:
  // Returns the errors that were logged since the last call.
  std::vector<std::string> errors() {
    std::vector<std::string> result;
    for (const std::wstring& text : agent.texts(LogLevel::Error)) {
      result.push_back(test::narrow(text));
    }
    agent.clearLog();
    return result;
  }

  void expectExcludesOthers() {
    InterProcessWriteLock writer(c_lockName);
    ASSERT_TRUE(writer.lock(c_forEver));
    Locker other(agent.dataDirectory());
    EXPECT_FALSE(other.lock(Mode::Write, 0));
    EXPECT_FALSE(other.lock(Mode::Read, 0));
    writer.unlock();
    EXPECT_TRUE(other.lock(Mode::Write, 0));
  }
};

TEST_F(LockFiles, AreMadeWithTheirDirectoryForTheOwnerAlone) {
  ASSERT_FALSE(test::exists(locks()));
  EXPECT_TRUE(canWrite());
  EXPECT_TRUE(canRead());
  for (const std::string& file : {mainFile(), gateFile()}) {
    struct stat info {};
    ASSERT_EQ(::stat(file.c_str(), &info), 0) << file;
    EXPECT_EQ(info.st_mode & 07777, 0600U) << file;
  }
}

TEST_F(LockFiles, AreMadeEvenInADataDirectoryThatIsMissing) {
  agent.settings.dataDirectory = agent.dataDirectory() + "/not/yet";
  agent.apply();
  EXPECT_TRUE(canWrite());
  EXPECT_TRUE(test::exists(agent.settings.dataDirectory + "/locks/SiteListLock.lock"));
}

TEST_F(LockFiles, MayBeReadOnly) {
  test::writeFile(mainFile(), "", 0400);
  test::writeFile(gateFile(), "", 0400);
  ::chmod(locks().c_str(), 0500);
  expectExcludesOthers();
}

TEST_F(LockFiles, AreOpenedOnce) {
  EXPECT_TRUE(canRead());
  test::FaultyFileSystem files;
  EXPECT_TRUE(canRead());
  EXPECT_TRUE(canWrite());
  EXPECT_THAT(files.calls(), testing::Not(testing::Contains(FileCall::Open)));
  EXPECT_THAT(files.calls(), testing::Not(testing::Contains(FileCall::Close)));
}

TEST_F(LockFiles, AreMadeAgainWhenTheyWereRemoved) {
  for (const std::string& gone : {mainFile(), gateFile(), locks()}) {
    ASSERT_TRUE(canWrite());
    std::filesystem::remove_all(gone);
    expectExcludesOthers();
    EXPECT_TRUE(test::exists(mainFile()));
    EXPECT_TRUE(test::exists(gateFile()));
  }
}

TEST_F(LockFiles, AreFoundAgainWhenTheirDirectoryWasExchanged) {
  ASSERT_TRUE(canWrite());
  std::filesystem::rename(locks(), locks() + ".old");
  Locker other(agent.dataDirectory());
  ASSERT_TRUE(other.lock(Mode::Write));
  EXPECT_FALSE(canRead());
  EXPECT_FALSE(canWrite());
}

TEST_F(LockFiles, AreMadeAgainWhenTheyAreRemovedJustBeforeTheLock) {
  test::FaultyFileSystem files;
  int removals = 0;
  files.beforeEach([&](FileCall call) {
    if (call == FileCall::Lock && removals < 3) {
      ++removals;
      std::filesystem::remove_all(locks());
    }
  });
  InterProcessWriteLock writer(c_lockName);
  EXPECT_TRUE(writer.lock(c_forEver));
  EXPECT_EQ(removals, 3);
  Locker other(agent.dataDirectory());
  EXPECT_FALSE(other.lock(Mode::Read, 0));
}

TEST_F(LockFiles, ThatAreExchangedForEverAreAFailure) {
  test::FaultyFileSystem files;
  files.beforeEach([&](FileCall call) {
    if (call == FileCall::Lock) std::filesystem::remove_all(locks());
  });
  EXPECT_FALSE(InterProcessReadLock(c_lockName).lock(c_forEver));
  EXPECT_THAT(errors(), ElementsAre(HasSubstr(mainFile())));
}

TEST_F(LockFiles, ThatCannotBeHadAreOneErrorAndNoWait) {
  test::writeFile(locks(), "a file in place of the directory");
  EXPECT_FALSE(InterProcessReadLock(c_lockName).lock(c_forEver));
  EXPECT_THAT(errors(), ElementsAre(AllOf(HasSubstr(locks()), HasSubstr("Not a directory"))));
  EXPECT_FALSE(InterProcessWriteLock(c_lockName).lock(c_forEver));
  EXPECT_THAT(errors(), ElementsAre(AllOf(HasSubstr(locks()), HasSubstr("Not a directory"))));
}

TEST_F(LockFiles, MustBeRegularFiles) {
  std::filesystem::create_directories(mainFile());
  EXPECT_FALSE(canRead());
  EXPECT_THAT(errors(), ElementsAre(AllOf(HasSubstr(mainFile()), HasSubstr("directory"))));
  std::filesystem::remove(mainFile());
  ASSERT_EQ(::mkfifo(gateFile().c_str(), 0600), 0);
  EXPECT_FALSE(InterProcessReadLock(c_lockName).lock(c_forEver));
  EXPECT_THAT(errors(), ElementsAre(HasSubstr(gateFile())));
}

TEST_F(LockFiles, HaveNamesThatLeadNowhereElse) {
  for (const char* name : {"", "../etc", "/etc/x", "a/b"}) {
    EXPECT_FALSE(InterProcessWriteLock(name).lock(c_forEver)) << name;
    EXPECT_FALSE(InterProcessReadLock(name).lock(0)) << name;
    EXPECT_EQ(errors().size(), 2U) << name;
  }
  EXPECT_FALSE(InterProcessWriteLock(nullptr).lock(c_forEver));
  EXPECT_FALSE(test::exists(locks()));
}

TEST_F(LockFiles, ThatFailAtAnyCallLeaveNothingLockedAndNothingOpen) {
  const auto descriptors = openDescriptors();
  for (const bool write : {false, true}) {
    for (const unsigned int wait : {0U, 10U, c_forEver}) {
      for (std::size_t n = 0;; ++n) {
        agent.apply();  // closes the files, so that the next lock opens them
        std::filesystem::remove_all(locks());
        agent.clearLog();
        test::FaultyFileSystem files;
        files.failCall(n, EIO);
        bool locked = false;
        {
          InterProcessReadLock reader(c_lockName);
          InterProcessWriteLock writer(c_lockName);
          locked = write ? writer.lock(wait) : reader.lock(wait);
        }
        if (files.failed().empty()) break;
        SCOPED_TRACE(testing::Message() << "call " << n << ", " << files.failed()[0]);
        files.failNothing();
        // The call failed either before the lock was held, or while the lock was released.
        EXPECT_EQ(errors().size(), locked ? 0U : 1U);
        EXPECT_TRUE(canWrite());
      }
    }
  }
  agent.apply();
  EXPECT_EQ(openDescriptors(), descriptors);
}

TEST_F(LockFiles, BelongToTheAgentOfTheMoment) {
  const auto descriptors = openDescriptors();
  InterProcessWriteLock held(c_lockName);
  ASSERT_TRUE(held.lock(c_forEver));
  test::TempDir second;
  agent.settings.dataDirectory = second.path();
  agent.apply();
  EXPECT_TRUE(canWrite()) << "the other agent's lock is free";
  Locker first(agent.dataDirectory());
  EXPECT_FALSE(first.lock(Mode::Read, 0)) << "the first agent's lock is still held";
  held.unlock();
  EXPECT_TRUE(first.lock(Mode::Read, 0));
  EXPECT_TRUE(held.lock(c_forEver));
  EXPECT_FALSE(canRead());
  held.unlock();
  agent.settings.dataDirectory = agent.dataDirectory();
  agent.apply();
  EXPECT_EQ(openDescriptors(), descriptors + 2) << "only the pipes to the other process are open";
}

}  // namespace
