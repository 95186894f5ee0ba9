#include <gmock/gmock.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

#include "sitehlp/sites_helper.h"
#include "tests/import/documents.h"
#include "tests/resilience/workshop.h"
#include "tests/support/faulty_file_system.h"

// An incoming list that another process replaces or removes during an operation. The operation must
// use the same bytes throughout.
namespace {

using namespace sitehlp;
using namespace test;

constexpr std::size_t c_never = std::numeric_limits<std::size_t>::max();

// The real file system with an action before one call. It records when a file is first read.
class SourceWatch : public FaultyFileSystem {
 public:
  SourceWatch(const std::string& source, std::size_t at, std::function<void()> action)
      : m_at(at), m_action(std::move(action)) {
    if (::stat(source.c_str(), &m_source) != 0) throw std::runtime_error("no " + source);
    beforeEach([this](FileCall) {
      if (m_calls++ == m_at) m_action();
    });
  }

  int open(int directory, const std::string& path, int flags, mode_t mode) override {
    const int fd = FaultyFileSystem::open(directory, path, flags, mode);
    struct stat opened {};
    if (fd >= 0 && ::fstat(fd, &opened) == 0 && opened.st_dev == m_source.st_dev &&
        opened.st_ino == m_source.st_ino) {
      m_descriptor = fd;
    }
    return fd;
  }
  int close(int fd) override {
    const int result = FaultyFileSystem::close(fd);
    if (fd == m_descriptor && m_readOnce == c_never) m_readOnce = m_calls;
    return result;
  }

  std::size_t calls() const { return m_calls; }
  // The number of the first call after the first read.
  std::size_t readOnce() const { return m_readOnce; }

 private:
  const std::size_t m_at;
  const std::function<void()> m_action;
  struct stat m_source {};
  std::size_t m_calls = 0;
  std::size_t m_readOnce = c_never;
  int m_descriptor = -1;
};

std::string vendor(const std::string& kind, const std::string& host, const std::string& order,
                   const std::string& path) {
  return "<" + kind + " Type=\"repository\" Name=\"" + kind + path + "\" Order=\"" + order +
         "\" Enabled=\"1\" Local=\"0\" Server=\"" + host + "\"><RelativePath>" + path +
         "</RelativePath></" + kind + ">";
}

// Returns a list. Lists with different tags have no value in common. Only the first list needs the
// key files next to it.
std::string incomingList(const std::string& tag, const std::string& serverVersion,
                         const std::string& httpOrder, const std::string& ftpOrder) {
  return document(vendor("HttpSite", VENDOR_HTTP_HOST ":80", httpOrder, tag) +
                      vendor("FTPSite", VENDOR_FTP_HOST ":21", ftpOrder, tag) +
                      serverElement(tag + "server", serverVersion, "5") + httpElement(tag + "http"),
                  "<CaBundle><CaCertificate>" + tag + " certificate</CaCertificate></CaBundle>" +
                      policies(tag + "Policy", tag),
                  "GlobalVersion=\"G" + tag + "\" LocalVersion=\"L" + tag + "\" Type=\"T" + tag +
                      "\" FipsMode=\"0\"");
}

struct Bringing {
  const char* name;
  bool (*run)(const Workshop& workshop);
};
std::ostream& operator<<(std::ostream& out, const Bringing& bringing) {
  return out << bringing.name;
}

bool runImport(const Workshop& w) {
  return CSitesHelper(wide(w.own())).ImportSiteList(wide(w.incoming()), L"") == 0;
}
bool runInstall(const Workshop& w) {
  return CSitesHelper(wide(w.own())).InstallSiteList(wide(w.incoming()), wide(w.keyDirectory())) ==
         0;
}
bool runModify(const Workshop& w) {
  return CSitesHelper(wide(w.own()))
      .modifySiteList(wide(w.incoming()).c_str(), true, true, AString());
}

class ExchangedSource : public testing::TestWithParam<Bringing> {
 protected:
  ExchangedSource() {
    m_workshop.agent.settings.logLevel = LogLevel::Off;
    m_workshop.agent.settings.managed = true;
    m_workshop.agent.apply();
    m_first = stateAfter(c_firstList);
    m_second = stateAfter(c_secondList);
  }

  // Runs the operation and returns whether it succeeded. Sets `m_readOnce` and `m_calls`.
  bool run(const std::string& list, std::size_t at = c_never, bool remove = false) {
    m_workshop.reset();
    const std::string other = m_workshop.incoming() + ".other";
    writeFile(m_workshop.incoming(), list, 0600);
    writeFile(other, c_secondList, 0600);
    const std::string source = m_workshop.incoming();
    SourceWatch files(source, at, [&] {
      if (remove) {
        ::unlink(source.c_str());
      } else {
        ::rename(other.c_str(), source.c_str());
      }
    });
    const bool done = GetParam().run(m_workshop);
    m_calls = files.calls();
    m_readOnce = files.readOnce();
    return done;
  }
  State stateAfter(const std::string& list) {
    EXPECT_TRUE(run(list));
    return installed();
  }
  State installed() const {
    const std::string agent = m_workshop.agent.dataDirectory() + "/";
    State state;
    for (const auto& [path, bytes] : m_workshop.state()) {
      if (path.rfind(agent, 0) == 0) state[path.substr(agent.size())] = bytes;
    }
    return state;
  }
  // Returns an empty text, or the list that each file belongs to.
  std::string mixed(bool mayBeSecond) const {
    const State now = installed();
    if (now == m_first || (mayBeSecond && now == m_second)) return std::string();
    std::string text;
    for (const auto& file : now) {
      const auto isOf = [&file](const State& state) {
        const auto found = state.find(file.first);
        return found != state.end() && found->second == file.second;
      };
      const bool isFirst = isOf(m_first);
      const bool isSecond = isOf(m_second);
      if (isFirst && isSecond) continue;
      text += file.first +
              (isFirst    ? " is of the first"
               : isSecond ? " is of the second"
                          : " is of neither") +
              " list\n";
    }
    return text.empty() ? "a file is missing" : text;
  }
  // Does something to the source before each call in turn, from `first` on.
  void expectTheFirstList(std::size_t first, bool remove) {
    const std::size_t calls = m_calls;
    ASSERT_GT(calls, first + 20);
    std::size_t mixtures = 0;
    std::size_t failures = 0;
    std::string what;
    for (std::size_t at = first; at < calls; ++at) {
      failures += !run(c_firstList, at, remove);
      // A replacement before the read is effective.
      const std::string mixture = mixed(at < m_readOnce);
      if (mixture.empty()) continue;
      if (mixtures++ == 0) what = "before call " + std::to_string(at) + ":\n" + mixture;
    }
    EXPECT_EQ(failures, 0U) << "of " << calls - first;
    EXPECT_EQ(mixtures, 0U) << "of " << calls - first << "; the first one " << what;
  }

  const std::string c_firstList = incomingList("first", "5.1", "1", "2");
  const std::string c_secondList = incomingList("second", "", "4", "3");
  Workshop m_workshop;
  State m_first;
  State m_second;
  std::size_t m_calls = 0;
  std::size_t m_readOnce = c_never;
};

TEST_P(ExchangedSource, LeavesOtherFilesForEachOfTheTwoLists) {
  for (const std::string path : {"etc/SiteList.xml", "etc/srpubkey.bin"}) {
    EXPECT_NE(m_first.at(path), m_second.at(path)) << path;
  }
  EXPECT_NE(m_readOnce, c_never);
}

TEST_P(ExchangedSource, IsTakenWholeWheneverItIsExchanged) {
  ASSERT_TRUE(run(c_firstList));
  expectTheFirstList(0, false);
}

TEST_P(ExchangedSource, IsTakenWholeWheneverItIsRemovedOnceItWasRead) {
  ASSERT_TRUE(run(c_firstList));
  expectTheFirstList(m_readOnce, true);
}

INSTANTIATE_TEST_SUITE_P(Operations, ExchangedSource,
                         testing::Values(Bringing{"import", runImport},
                                         Bringing{"install", runInstall},
                                         Bringing{"modify", runModify}),
                         [](const testing::TestParamInfo<Bringing>& param) {
                           return std::string(param.param.name);
                         });

}  // namespace
