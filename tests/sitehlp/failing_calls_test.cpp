#include <gmock/gmock.h>

#include <cerrno>
#include <new>
#include <stdexcept>
#include <string>

#include "tests/sitehlp/hooked_file_system.h"
#include "tests/sitehlp/writer_fixture.h"
#include "tests/support/faulty_file_system.h"

// Failing system calls, and exceptions from the platform.
namespace {

using sitehlp::tag_Site;
using test::FaultyFileSystem;
using test::FileCall;
using test::HookedFileSystem;
using test::LockState;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string c_document =
    test::documentWithRoot("<SiteList><HttpSite/></SiteList>", R"(GlobalVersion="1" FipsMode="1")");

class FailingCalls : public test::WriterTest {
 protected:
  ~FailingCalls() override {
    EXPECT_EQ(test::lockState(sitehlp::c_siteListLock), LockState::Free);
    EXPECT_EQ(test::lockState(sitehlp::smartSiteListLock), LockState::Free);
  }
  // Reads an existing unreadable file with every operation.
  void expectUnreadable(const std::wstring& file) {
    for (const bool useLock : {true, false}) {
      tag_Site* list = test::untouched();
      EXPECT_EQ(helper.ReadSiteList(file, &list, useLock), -10);
      EXPECT_EQ(list, test::untouched());
    }
    std::wstring global = L"as it was";
    std::wstring local = L"as it was";
    std::wstring type = L"as it was";
    EXPECT_EQ(helper.GetSitelistVersions(file, global, local, type), -10);
    EXPECT_EQ(global, L"");
    EXPECT_EQ(local, L"");
    EXPECT_EQ(type, L"as it was");
    std::wstring mode = L"as it was";
    EXPECT_EQ(helper.GetSitelistFipsMode(file, mode), -10);
    EXPECT_EQ(mode, L"as it was");
    tag_Site* list = test::untouched();
    EXPECT_EQ(helper.SmartReadSiteList(file, &list), -10);
    EXPECT_EQ(helper.MustReadSiteList(file, &list), -10);
    EXPECT_EQ(list, test::untouched());
  }
  // Throws from the moment when a file of that name is opened.
  template <typename Exception>
  static HookedFileSystem::Action throwAt(const std::string& name, const Exception& exception) {
    return [=](const std::string& path) {
      if (test::endsWith(path, name)) throw exception;
    };
  }
};

TEST_F(FailingCalls, FailedReadCallGivesMinusTen) {
  const std::wstring file = store(c_document);
  for (const int error : {EIO, EACCES, ENOMEM, EMFILE}) {
    FaultyFileSystem faulty;
    faulty.failEvery(FileCall::Read, error);
    expectUnreadable(file);
  }
}

TEST_F(FailingCalls, AnyExceptionOfTheReadGivesMinusTen) {
  const std::wstring file = store(c_document);
  {
    HookedFileSystem hooked(throwAt("list.xml", std::bad_alloc()));
    expectUnreadable(file);
  }
  {
    HookedFileSystem hooked(throwAt("list.xml", std::runtime_error("from below")));
    expectUnreadable(file);
  }
  EXPECT_EQ(readPath(file).code, 0);
}

TEST_F(FailingCalls, AnyExceptionOfTheWriteGivesMinusElevenAndTheMeshServiceIsTold) {
  store("the old list", "out.xml");
  HookedFileSystem hooked(nullptr, throwAt("out.xml", std::runtime_error("from below")));
  EXPECT_EQ(write(test::ListPtr(test::newSite(sitehlp::SITE_KIND_FTP))), -11);
  EXPECT_EQ(outText(), "the old list");
  EXPECT_THAT(meshText(), testing::HasSubstr("<FTPSite "));
  EXPECT_THAT(messages(), ElementsAre(info(L"Command to mesh service to load new sitelist.")));
}

TEST_F(FailingCalls, AnyExceptionOfTheMeshCopyIsLoggedAlone) {
  HookedFileSystem hooked(nullptr, throwAt("SiteList.xml", std::runtime_error("from below")));
  EXPECT_EQ(write(nullptr), 0);
  EXPECT_EQ(written(), emptyList());
  EXPECT_THAT(messages(), ElementsAre(error(L"Failed to write mesh service sitelist.")));
}

TEST_F(FailingCalls, ExceptionOfAnElementWriterEndsTheOperationWithTheResultSoFar) {
  store("the old list", "out.xml");
  const auto failingList = [this](int firstKind) {
    tag_Site* first = test::newSite(static_cast<sitehlp::SiteKind>(firstKind));
    tag_Site* second = test::newSite(sitehlp::SITE_KIND_LOCAL);
    const test::ListPtr list = test::chain({first, second});
    agent.apply();
    agent.clearLog();
    HookedFileSystem hooked(throwAt("password.key", std::bad_alloc()));
    return write(list);
  };
  EXPECT_EQ(failingList(sitehlp::SITE_KIND_HTTP), 0);
  EXPECT_EQ(failingList(5), -1);
  EXPECT_EQ(outText(), "the old list");
  EXPECT_FALSE(test::exists(agent.dataDirectory() + "/mesh/SiteList.xml"));
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(FailingCalls, ExceptionOfTheLockEndsTheOperationWithTheResultSoFar) {
  store("the old list", "out.xml");
  const test::ListPtr list(test::newSite(static_cast<sitehlp::SiteKind>(5)));
  {
    FaultyFileSystem throwing;
    throwing.beforeEach([](FileCall call) {
      if (call == FileCall::Lock) throw std::bad_alloc();
    });
    EXPECT_EQ(write(nullptr), 0);
    EXPECT_EQ(write(list), -1);
  }
  EXPECT_EQ(outText(), "the old list");
  EXPECT_FALSE(test::exists(agent.dataDirectory() + "/mesh/SiteList.xml"));
  EXPECT_THAT(messages(), IsEmpty());
}

}  // namespace
