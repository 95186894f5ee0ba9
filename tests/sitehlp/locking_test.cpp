#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "host/log_sink.h"
#include "platform/lock/interprocess_lock.h"
#include "tests/sitehlp/hooked_file_system.h"
#include "tests/sitehlp/sites_helper_fixture.h"

// Which lock is held at which moment of an operation.
namespace {

using korvel_com::orb::lock::InterProcessWriteLock;
using sitehlp::CSitesHelper;
using sitehlp::tag_Site;
using test::LockState;
using test::Probe;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Pair;
using testing::StartsWith;

class Locking : public test::SitesHelperTest {
 protected:
  struct Moment {
    LockState file;
    LockState cache;
    bool operator==(const Moment& other) const {
      return file == other.file && cache == other.cache;
    }
    friend std::ostream& operator<<(std::ostream& out, const Moment& moment) {
      return out << "file " << moment.file << ", cache " << moment.cache;
    }
  };
  static constexpr Moment c_free = {LockState::Free, LockState::Free};
  static constexpr Moment c_fileRead = {LockState::Read, LockState::Free};
  static constexpr Moment c_fileWritten = {LockState::Written, LockState::Free};
  static constexpr Moment c_cacheRead = {LockState::Free, LockState::Read};
  static constexpr Moment c_bothRead = {LockState::Read, LockState::Read};

  static Moment now() {
    return {test::lockState(sitehlp::c_siteListLock), test::lockState(sitehlp::smartSiteListLock)};
  }

  // Runs an operation and notes how the locks are held when a file of the given name is opened or
  // put in place, and when a log line is written.
  template <typename Operation>
  void watch(const std::string& file, Operation operation) {
    m_files.clear();
    m_lines.clear();
    const auto note = [&](const std::string& path) {
      if (test::endsWith(path, file)) m_files.push_back(now());
    };
    test::HookedFileSystem hooked(note, note);
    host::setLogSink([this](LogLevel, const std::wstring& component, const std::wstring& text) {
      if (component == L"SiteHlp") m_lines.push_back({text, now()});
    });
    operation();
    host::setLogSink([](LogLevel, const std::wstring&, const std::wstring&) {});
    EXPECT_EQ(now(), c_free) << "a lock is still held";
  }
  Moment at(const std::wstring& line) const {
    for (const auto& one : m_lines) {
      if (one.first == line) return one.second;
    }
    ADD_FAILURE() << "never logged: " << test::narrow(line);
    return c_free;
  }
  const std::vector<Moment>& files() const { return m_files; }

 private:
  std::vector<Moment> m_files;
  std::vector<std::pair<std::wstring, Moment>> m_lines;
};

constexpr Locking::Moment Locking::c_free;
constexpr Locking::Moment Locking::c_fileRead;
constexpr Locking::Moment Locking::c_fileWritten;
constexpr Locking::Moment Locking::c_cacheRead;
constexpr Locking::Moment Locking::c_bothRead;

const std::string c_document = test::documentWithRoot(
    "<CaBundle></CaBundle><SiteList><HttpSite Type=\"" + std::string(260, 't') + "\"/></SiteList>",
    R"(GlobalVersion="1" FipsMode="1")");

// --- Reading
// --------------------------------------------------------------------------------------

TEST_F(Locking, ReadHoldsTheReadLockAroundTheFileAlone) {
  const std::wstring file = store(c_document);
  tag_Site* list = nullptr;
  watch("list.xml", [&] { EXPECT_EQ(helper.ReadSiteList(file, &list, true), 0); });
  const test::ListPtr owner(list);
  EXPECT_THAT(files(), ElementsAre(c_fileRead));
  EXPECT_EQ(at(L"Enter: Reading Sitelist"), c_free);
  EXPECT_EQ(at(L"String " + std::wstring(260, L't') + L" is truncated to " +
               std::wstring(259, L't') + L" in CopyWStr"),
            c_free);
  EXPECT_EQ(at(L"Enter: Reading site from SiteList"), c_free);
}

TEST_F(Locking, ReadWithoutLockHoldsNone) {
  const std::wstring file = store(c_document);
  tag_Site* list = nullptr;
  watch("list.xml", [&] { EXPECT_EQ(helper.ReadSiteList(file, &list, false), 0); });
  const test::ListPtr owner(list);
  EXPECT_THAT(files(), ElementsAre(c_free));
}

TEST_F(Locking, ReadWithoutLockDoesNotWait) {
  const std::wstring file = store(c_document);
  InterProcessWriteLock held(sitehlp::c_siteListLock);
  ASSERT_TRUE(held.lock(0));
  EXPECT_EQ(readPath(file, false).code, 0);
}

TEST_F(Locking, NothingToReadMeansNothingToWaitFor) {
  InterProcessWriteLock held(sitehlp::c_siteListLock);
  ASSERT_TRUE(held.lock(0));
  tag_Site* list = nullptr;
  std::wstring text;
  EXPECT_EQ(helper.ReadSiteList(L"", &list, true), -2);
  EXPECT_EQ(helper.ReadSiteList(path("missing.xml"), &list, true), -4);
  EXPECT_EQ(helper.MustReadSiteList(L"", &list), -1);
  EXPECT_EQ(helper.MustReadSiteList(path("missing.xml"), &list), -4);
  EXPECT_EQ(helper.GetSitelistVersions(path("missing.xml"), text, text, text), -4);
  EXPECT_EQ(helper.GetSitelistFipsMode(path("missing.xml"), text), -4);
  EXPECT_FALSE(helper.GetSiteListBuffer(text));
  EXPECT_FALSE(Probe(path("missing.xml")).GetSiteListBuffer(text));
}

TEST_F(Locking, FailedReadReleasesTheLock) {
  tag_Site* list = nullptr;
  const std::wstring invalid = store("<a>\xFF</a>");
  watch("list.xml", [&] { EXPECT_EQ(helper.ReadSiteList(invalid, &list, true), -10); });
  EXPECT_THAT(files(), ElementsAre(c_fileRead));
  store("<a>");
  watch("list.xml", [&] { EXPECT_EQ(helper.ReadSiteList(invalid, &list, true), -5); });
  EXPECT_THAT(files(), ElementsAre(c_fileRead));
}

TEST_F(Locking, MustReadHoldsTheReadLock) {
  const std::wstring file = store(c_document);
  tag_Site* list = nullptr;
  watch("list.xml", [&] { EXPECT_EQ(helper.MustReadSiteList(file, &list), 0); });
  const test::ListPtr owner(list);
  EXPECT_THAT(files(), ElementsAre(c_fileRead));
}

TEST_F(Locking, BufferIsReadUnderTheReadLock) {
  Probe own(store(c_document));
  std::wstring text;
  watch("list.xml", [&] { EXPECT_TRUE(own.GetSiteListBuffer(text)); });
  EXPECT_THAT(files(), ElementsAre(c_fileRead));
  EXPECT_EQ(at(L"Enter: Reading Sitelist"), c_free);
}

TEST_F(Locking, BufferThatCannotBeReadReleasesTheLock) {
  Probe own(store("<a>\xFF</a>"));
  std::wstring text;
  watch("list.xml",
        [&] { EXPECT_THROW(own.GetSiteListBuffer(text), AdvXMLParser::ReadWriteException); });
  EXPECT_THAT(files(), ElementsAre(c_fileRead));
}

TEST_F(Locking, VersionsAreReadUnderTheReadLock) {
  const std::wstring file = store(c_document);
  std::wstring text;
  watch("list.xml", [&] { EXPECT_EQ(helper.GetSitelistVersions(file, text, text, text), 0); });
  EXPECT_THAT(files(), ElementsAre(c_fileRead));
  EXPECT_EQ(at(L"Enter: Getting Sitelist versions"), c_free);
  watch("list.xml", [&] { EXPECT_EQ(helper.GetSitelistFipsMode(file, text), 0); });
  EXPECT_THAT(files(), ElementsAre(c_fileRead));
  watch("list.xml", [&] { Probe object(file); });
  EXPECT_THAT(files(), ElementsAre(c_fileRead));
  watch("list.xml", [&] {
    store("<a>\xFF</a>");
    EXPECT_EQ(helper.GetSitelistVersions(file, text, text, text), -10);
  });
}

// --- Without a lock
// -------------------------------------------------------------------------------

// A lock that cannot be taken is logged, and the operation continues.
class NoLock : public test::SitesHelperTest {
 protected:
  NoLock() {
    const std::string file = agent.dataDirectory() + "/locks/SiteListLock.lock";
    agent.apply();  // closes the lock files
    std::filesystem::remove_all(file);
    std::filesystem::create_directories(file);
    agent.clearLog();
  }
  // Returns the only error since the last call.
  std::string error() {
    const std::vector<std::wstring> errors = agent.texts(LogLevel::Error);
    EXPECT_EQ(errors.size(), 1u);
    agent.clearLog();
    return errors.empty() ? "" : test::narrow(errors[0]);
  }
  std::string beginning() const {
    return "Cannot lock " + agent.dataDirectory() + "/locks/SiteListLock.lock: ";
  }
  static constexpr const char* c_ending =
      ". An operation that continues is not protected from other processes";
};

TEST_F(NoLock, ReadAndWriteGoOnAndThatIsTold) {
  const test::ListPtr list(test::newSite(sitehlp::SITE_KIND_HTTP));
  EXPECT_EQ(helper.CreateSiteList(list.get(), path("out.xml"), L"G", L"L", L"T", {}), 0);
  EXPECT_THAT(error(), AllOf(StartsWith(beginning()), EndsWith(c_ending)));
  agent.apply();  // the error is logged again
  const Read result = readPath(path("out.xml"));
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(test::lengthOf(result.list.get()), 1);
  EXPECT_THAT(error(), AllOf(StartsWith(beginning()), EndsWith(c_ending)));
}

// --- The cached list
// ------------------------------------------------------------------------------

TEST_F(Locking, SmartReadHoldsTheCacheLockFirstAndOverAll) {
  const std::wstring file = store(c_document);
  tag_Site* list = nullptr;
  watch("list.xml", [&] { EXPECT_EQ(helper.SmartReadSiteList(file, &list), 0); });
  EXPECT_EQ(at(L"Reading from FILE0"), c_cacheRead);
  EXPECT_EQ(at(L"Enter: Reading Sitelist"), c_cacheRead);
  EXPECT_THAT(files(), ElementsAre(c_bothRead));
  EXPECT_EQ(at(L"Enter: Reading site from SiteList"), c_cacheRead);
  EXPECT_EQ(at(L"Leave: Reading Sitelist"), c_cacheRead);
}

TEST_F(Locking, SmartReadFromMemoryHoldsTheCacheLockAlone) {
  const std::wstring file = store(c_document);
  tag_Site* list = nullptr;
  ASSERT_EQ(helper.SmartReadSiteList(file, &list), 0);
  watch("list.xml", [&] { EXPECT_EQ(helper.SmartReadSiteList(file, &list), 0); });
  EXPECT_EQ(at(L"Reading from memory1"), c_cacheRead);
  EXPECT_TRUE(files().empty());
}

TEST_F(Locking, ReloadReleasesTheOldListUnderTheCacheLock) {
  const std::wstring file = store(c_document);
  tag_Site* list = nullptr;
  ASSERT_EQ(helper.SmartReadSiteList(file, &list), 0);
  CSitesHelper::m_iChange = 3;
  watch("list.xml", [&] { EXPECT_EQ(helper.SmartReadSiteList(file, &list), 0); });
  EXPECT_EQ(at(L"Enter: Free memory for Sitelist"), c_cacheRead);
  EXPECT_THAT(files(), ElementsAre(c_bothRead));
}

TEST_F(Locking, FailedSmartReadReleasesBothLocks) {
  tag_Site* list = nullptr;
  watch("list.xml", [&] { EXPECT_EQ(helper.SmartReadSiteList(path("missing.xml"), &list), -4); });
  EXPECT_EQ(at(L"Unable to read from SiteList file, error hr=-4"), c_cacheRead);
  const std::wstring file = store("<a>\xFF</a>");
  watch("list.xml", [&] { EXPECT_EQ(helper.SmartReadSiteList(file, &list), -10); });
  EXPECT_THAT(files(), ElementsAre(c_bothRead));
}

// --- Writing
// --------------------------------------------------------------------------------------

TEST_F(Locking, WriteHoldsTheWriteLockAroundTheFileAlone) {
  const test::ListPtr list(test::newSite(sitehlp::SITE_KIND_HTTP));
  watch("out.xml", [&] {
    EXPECT_EQ(helper.CreateSiteList(list.get(), path("out.xml"), L"G", L"L", L"T", {}), 0);
  });
  ASSERT_FALSE(files().empty());
  EXPECT_EQ(files().back(), c_fileWritten);
  EXPECT_EQ(at(L"Enter: Creating Sitelist"), c_free);
  EXPECT_EQ(at(L"Enter: Adding HTTP site"), c_free);
  EXPECT_EQ(at(L"Command to mesh service to load new sitelist."), c_free);
}

TEST_F(Locking, MeshCopyIsWrittenOutsideTheLock) {
  watch("SiteList.xml", [&] {
    EXPECT_EQ(helper.CreateSiteList(nullptr, path("out.xml"), L"G", L"L", L"T", {}), 0);
  });
  ASSERT_FALSE(files().empty());
  for (const Moment& moment : files()) EXPECT_EQ(moment, c_free);
}

TEST_F(Locking, FailedWriteReleasesTheLock) {
  std::filesystem::create_directory(test::narrow(path("out.xml")));
  watch("SiteList.xml", [&] {
    EXPECT_EQ(helper.CreateSiteList(nullptr, path("out.xml"), L"G", L"L", L"T", {}), -11);
  });
  ASSERT_FALSE(files().empty());
  for (const Moment& moment : files()) EXPECT_EQ(moment, c_free);
}

}  // namespace
