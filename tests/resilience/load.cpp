#include "tests/resilience/load.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <random>
#include <thread>

#include "platform/lock/interprocess_lock.h"
#include "sitehlp/sites_helper.h"
#include "tests/import/records.h"
#include "tests/resilience/forked.h"
#include "tests/resilience/workshop.h"
#include "tests/support/locker.h"

using namespace sitehlp;
using korvel_com::orb::lock::InterProcessReadLock;
using korvel_com::orb::lock::InterProcessWriteLock;
using Clock = std::chrono::steady_clock;

namespace test {
namespace {

double milliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

// Processes that repeat an action until they are stopped, and then send the number of runs.
class Crew {
 public:
  explicit Crew(std::function<void()> work) : m_work(std::move(work)) {}

  void add() {
    auto member = std::make_unique<Member>();
    if (::pipe(member->stop) != 0 || ::pipe(member->answer) != 0) return;
    Member* const self = member.get();
    member->process = std::make_unique<Forked>([this, self] { return run(*self); });
    ::close(member->stop[0]);
    ::close(member->answer[1]);
    m_members.push_back(std::move(member));
  }

  // Stops the processes. Returns the number of runs of each.
  std::vector<unsigned long> stop() {
    std::vector<unsigned long> counts;
    for (const auto& member : m_members) ::close(member->stop[1]);
    for (const auto& member : m_members) {
      unsigned long count = 0;
      if (::read(member->answer[0], &count, sizeof count) != sizeof count) count = 0;
      ::close(member->answer[0]);
      member->process->wait();
      counts.push_back(count);
    }
    m_members.clear();
    return counts;
  }

 private:
  struct Member {
    int stop[2];
    int answer[2];
    std::unique_ptr<Forked> process;
  };

  int run(const Member& self) {
    // Only the parent may hold the write ends of the pipes that stop the others.
    for (const auto& other : m_members) ::close(other->stop[1]);
    ::close(self.stop[1]);
    ::fcntl(self.stop[0], F_SETFL, O_NONBLOCK);
    unsigned long count = 0;
    char byte = 0;
    for (; ::read(self.stop[0], &byte, 1) < 0; ++count) m_work();
    return ::write(self.answer[1], &count, sizeof count) == sizeof count ? 0 : 1;
  }

  std::function<void()> m_work;
  std::vector<std::unique_ptr<Member>> m_members;
};

unsigned long sum(const std::vector<unsigned long>& counts) {
  unsigned long total = 0;
  for (const unsigned long count : counts) total += count;
  return total;
}

void holdReadLock() {
  InterProcessReadLock lock(c_siteListLock);
  lock.lock(c_forEver);
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
  lock.unlock();
}

}  // namespace

CrowdFigures writeAmongReaders(int readers, int seconds) {
  CrowdFigures figures;
  const Workshop workshop;
  Crew crowd(holdReadLock);
  for (int i = 0; i < readers; ++i) crowd.add();
  double waited = 0;
  const auto end = Clock::now() + std::chrono::seconds(seconds);
  while (Clock::now() < end) {
    InterProcessWriteLock lock(c_siteListLock);
    const auto start = Clock::now();
    lock.lock(c_forEver);
    const double wait = milliseconds(Clock::now() - start);
    writeFile(workshop.etcDirectory() + "/written", "x");
    lock.unlock();
    waited += wait;
    figures.worstWaitMs = std::max(figures.worstWaitMs, wait);
    ++figures.writes;
  }
  figures.reads = sum(crowd.stop());
  figures.meanWaitMs = waited / static_cast<double>(figures.writes);
  return figures;
}

WriterFigures writeAtOnce(int writers, int readers, int seconds) {
  const Workshop workshop;
  Crew writing([&] { writingOperation("create").run(workshop); });
  Crew reading([&] { readingOperations().front().run(workshop); });
  for (int i = 0; i < writers; ++i) writing.add();
  for (int i = 0; i < readers; ++i) reading.add();
  std::this_thread::sleep_for(std::chrono::seconds(seconds));
  const std::vector<unsigned long> reads = reading.stop();
  const std::vector<unsigned long> writes = writing.stop();
  WriterFigures figures;
  figures.reads = sum(reads);
  figures.writes = sum(writes);
  figures.leastReads = *std::min_element(reads.begin(), reads.end());
  figures.leastWrites = *std::min_element(writes.begin(), writes.end());
  return figures;
}

namespace {

// Returns the list of a version. The version determines the number of sites and is their name.
SiteChain listOf(unsigned long version) {
  SiteChain list;
  for (unsigned long i = 0; i <= version % 7; ++i) {
    list.add(httpSite(std::to_wstring(version)));
  }
  return list;
}

// Returns the version of a list. Sets `fault` if the list is not complete.
unsigned long versionOf(const tag_Site* list, std::string& fault) {
  unsigned long count = 0;
  unsigned long version = 0;
  for (const tag_Site* site = list; site; site = site->pNext, ++count) {
    const unsigned long named = std::stoul(nameOf(*site));
    if (count != 0 && named != version) fault = "two lists in one";
    version = named;
  }
  if (count != version % 7 + 1) fault = "a list of version " + std::to_string(version) + " is cut";
  return version;
}

// A counter in a file. Its lock does not use the library.
class Counter {
 public:
  explicit Counter(const std::string& path) : m_fd(::open(path.c_str(), O_RDWR | O_CREAT, 0600)) {
    ::flock(m_fd, LOCK_EX);
  }
  ~Counter() { ::close(m_fd); }
  Counter(const Counter&) = delete;
  Counter& operator=(const Counter&) = delete;

  unsigned long next() {
    unsigned long value = 0;
    if (::pread(m_fd, &value, sizeof value, 0) < 0) return 0;
    ++value;
    return ::pwrite(m_fd, &value, sizeof value, 0) == sizeof value ? value : 0;
  }

 private:
  int m_fd;
};

std::string mix(const Workshop& workshop, const std::string& counterPath, unsigned long operations,
                unsigned int seed) {
  std::mt19937 random(seed);
  const std::wstring own = wide(workshop.own());
  unsigned long last = 0;
  std::string fault;
  for (unsigned long i = 0; i < operations && fault.empty(); ++i) {
    const unsigned long choice = random() % 10;
    if (choice < 2) {
      Counter counter(counterPath);
      const unsigned long version = counter.next();
      const SiteChain list = listOf(version);
      if (CSitesHelper(true).CreateSiteList(list.head(), own, std::to_wstring(version), L"1", L"",
                                            {}) != 0) {
        fault = "cannot write";
      }
    } else if (choice < 3) {
      if (writingOperation("derive").run(workshop) != 0) fault = "cannot derive";
    } else {
      unsigned long version = 0;
      if (choice < 8) {
        SiteChain list;
        const int code = CSitesHelper(true).ReadSiteList(own, list.address(), true);
        if (code != 0) return "cannot read: " + std::to_string(code);
        version = versionOf(list.head(), fault);
      } else {
        std::wstring text[3];
        if (CSitesHelper(true).GetSitelistVersions(own, text[0], text[1], text[2]) != 0) {
          return "cannot read the versions";
        }
        version = std::stoul(text[0]);
      }
      if (version < last)
        fault = "version " + std::to_string(version) + " after " + std::to_string(last);
      last = version;
    }
  }
  return fault;
}

}  // namespace

MixedFigures mixOperations(int processes, unsigned long operationsEach) {
  MixedFigures figures;
  const Workshop workshop;
  const std::string counter = workshop.scratchRoot() + "/counter";
  Counter(counter).next();
  CSitesHelper(true).CreateSiteList(listOf(1).head(), wide(workshop.own()), L"1", L"1", L"", {});
  struct Member {
    int answer[2];
    std::unique_ptr<Forked> process;
  };
  std::vector<Member> members(static_cast<std::size_t>(processes));
  unsigned int seed = 0;
  for (Member& member : members) {
    ++seed;
    if (::pipe(member.answer) != 0) return figures;
    member.process = std::make_unique<Forked>([&] {
      const std::string fault = mix(workshop, counter, operationsEach, seed);
      const ssize_t written = ::write(member.answer[1], fault.data(), fault.size());
      return fault.empty() && written == 0 ? 0 : 1;
    });
    ::close(member.answer[1]);
  }
  for (Member& member : members) {
    char text[500];
    const ssize_t size = ::read(member.answer[0], text, sizeof text);
    ::close(member.answer[0]);
    const int status = member.process->wait();
    if (size > 0)
      figures.faults.add("a process", std::string(text, static_cast<std::size_t>(size)));
    if (status != 0) figures.faults.add("a process", "ends with " + std::to_string(status));
    figures.operations += operationsEach;
  }
  figures.versions = Counter(counter).next() - 1;
  return figures;
}

HolderFigures killHolders(unsigned long kills, const Progress& progress) {
  HolderFigures figures;
  const Workshop workshop;
  for (; figures.kills < kills; ++figures.kills) {
    int held[2];
    if (::pipe(held) != 0) break;
    Forked holder([&]() -> int {
      InterProcessWriteLock lock(c_siteListLock);
      lock.lock(c_forEver);
      const char mark = 'h';
      if (::write(held[1], &mark, 1) != 1) return 1;
      for (;;) ::pause();
    });
    ::close(held[1]);
    char mark = 0;
    const bool isHeld = ::read(held[0], &mark, 1) == 1;
    ::close(held[0]);
    if (!isHeld) break;
    const auto start = Clock::now();
    holder.kill();
    InterProcessWriteLock lock(c_siteListLock);
    if (!lock.lock(c_forEver)) break;
    figures.worstWaitMs = std::max(figures.worstWaitMs, milliseconds(Clock::now() - start));
    lock.unlock();
    holder.wait();
    if (progress) progress(figures.kills);
  }
  return figures;
}

}  // namespace test
