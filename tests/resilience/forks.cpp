#include "tests/resilience/forks.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "host/log_sink.h"
#include "platform/common/log.h"
#include "platform/lock/interprocess_lock.h"
#include "sitehlp/sites_helper.h"
#include "tests/resilience/forked.h"
#include "tests/resilience/workshop.h"
#include "tests/support/heap.h"

namespace test {
namespace {

// Much longer than the operations take, even on a busy machine.
constexpr unsigned int c_patienceSeconds = 120;
constexpr int c_hung = 128 + SIGALRM;

// Runs every operation, those that write first. A written list has no FIPS mode, so the query for
// it fails. Every other operation succeeds.
class EveryOperation {
 public:
  explicit EveryOperation(const Workshop& workshop) : m_workshop(workshop) {
    for (const Operation& operation : writingOperations()) m_operations.push_back(&operation);
    for (const Operation& operation : readingOperations()) m_operations.push_back(&operation);
  }

  // Returns 0, or the number of the first failed operation, from 1.
  int run() const {
    const WorkshopFileSystem files(m_workshop);
    int place = 0;
    for (const Operation* operation : m_operations) {
      ++place;
      const bool succeeds = operation->run(m_workshop) == 0;
      if (succeeds == (operation->name == c_fipsMode)) return place;
    }
    return 0;
  }

  std::string describe(int place) const {
    const auto index = static_cast<std::size_t>(place - 1);
    return index < m_operations.size() ? m_operations[index]->name + std::string(" fails")
                                       : "ends with " + std::to_string(place);
  }

 private:
  static inline const std::string c_fipsMode = "fips-mode";

  const Workshop& m_workshop;
  std::vector<const Operation*> m_operations;
};

// Discards standard error for the life of the object, because the experiment uses the default sink.
class SilentStandardError {
 public:
  SilentStandardError() : m_saved(::fcntl(2, F_DUPFD_CLOEXEC, 10)) {
    const int nothing = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(nothing, 2);
    ::close(nothing);
  }
  SilentStandardError(const SilentStandardError&) = delete;
  SilentStandardError& operator=(const SilentStandardError&) = delete;
  ~SilentStandardError() {
    ::dup2(m_saved, 2);
    ::close(m_saved);
  }

 private:
  int m_saved;
};

// Threads that do something over and over as long as the object lives.
class BusyThreads {
 public:
  explicit BusyThreads(const std::vector<std::function<void()>>& works) {
    for (const auto& work : works) {
      m_threads.emplace_back([this, work] {
        while (!m_done) work();
      });
    }
  }
  BusyThreads(const BusyThreads&) = delete;
  BusyThreads& operator=(const BusyThreads&) = delete;
  ~BusyThreads() {
    m_done = true;
    for (std::thread& thread : m_threads) thread.join();
  }

 private:
  std::atomic<bool> m_done{false};
  std::vector<std::thread> m_threads;
};

void protectPasswords() {
  std::wstring sealed;
  for (int i = 0; i < 20; ++i) sitehlp::CSitesHelper(true).EncryptPassword(L"secret", sealed);
  // libcrypto runs code at the end of a thread.
  std::thread([&] { sitehlp::CSitesHelper(true).EncryptPassword(L"secret", sealed); }).join();
}

void lockAndUnlock() {
  korvel_com::orb::lock::InterProcessReadLock("AnotherLock").lock(0);
  korvel_com::orb::lock::InterProcessWriteLock("AnotherLock").lock(0);
}

// Releases the cached list and reads it anew. Only one thread does this, because only one operation
// at a time may use the cached list.
void replaceTheCachedList(const Workshop& workshop) {
  sitehlp::CSitesHelper helper(wide(workshop.own()));
  helper.needToUpdateInMemSiteList();
  helper.needToUpdateInMemSiteList();
  std::wstring text[5];
  int port = 0;
  helper.GetPYXServerInfo(text[0], text[1], text[2], text[3], port, text[4], true, false);
}

// The local version is the present time.
void writeWithATimeStamp(const Workshop& workshop) {
  sitehlp::CSitesHelper(true).CreateSiteList(
      nullptr, wide(workshop.agent.dataDirectory() + "/stamped.xml"), L"G", L"", L"", {});
}

}  // namespace

ForkFigures forkBesideThreads(unsigned long forks, const Progress& progress) {
  ForkFigures figures;
  Workshop workshop;
  workshop.agent.settings.meshLoadCommand = {"/bin/sh", "-c", "exit 0"};
  workshop.agent.apply();
  const EveryOperation all(workshop);
  if (const int place = all.run()) figures.faults.add("before any fork", all.describe(place));
  const SilentStandardError silence;
  host::setLogSink(nullptr);
  const BusyThreads threads({protectPasswords, [] { logError(L"Busy", L"at work"); }, lockAndUnlock,
                             [&] {
                               writingOperation("import").run(workshop);
                               readingOperations().front().run(workshop);
                               replaceTheCachedList(workshop);
                               writeWithATimeStamp(workshop);
                             }});
  for (; figures.forks < forks; ++figures.forks) {
    Forked child([&] {
      ::alarm(c_patienceSeconds);
      logError(L"Child", L"at work");
      return all.run();
    });
    const int status = child.wait();
    const std::string where = "fork " + std::to_string(figures.forks);
    if (status == c_hung) {
      ++figures.hung;
      figures.faults.add(where, "hangs");
    } else if (status != 0) {
      figures.faults.add(where, all.describe(status));
    }
    if (progress) progress(figures.forks);
  }
  return figures;
}

namespace {

// Numbers that a process shares with its children.
class SharedNumbers {
 public:
  explicit SharedNumbers(std::size_t count)
      : m_size(count * sizeof(std::size_t)),
        m_memory(
            ::mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
    if (m_memory == MAP_FAILED) throw std::bad_alloc();
  }
  SharedNumbers(const SharedNumbers&) = delete;
  SharedNumbers& operator=(const SharedNumbers&) = delete;
  ~SharedNumbers() { ::munmap(m_memory, m_size); }

  std::size_t& operator[](std::size_t index) { return static_cast<std::size_t*>(m_memory)[index]; }

 private:
  std::size_t m_size;
  void* m_memory;
};

int liveOn(const EveryOperation& all, unsigned int generation, unsigned int last,
           SharedNumbers& heap) {
  if (const int place = all.run()) return place;
  heap[generation - 1] = heapInUse();
  if (generation == last) return 0;
  const auto next = [&] { return liveOn(all, generation + 1, last, heap); };
  return Forked(std::ref(next)).wait();  // a copy would stay on the heap of later generations
}

}  // namespace

GenerationFigures forkGenerations(unsigned int generations) {
  GenerationFigures figures;
  Workshop workshop;
  const EveryOperation all(workshop);
  if (const int place = all.run()) figures.faults.add("before any fork", all.describe(place));
  host::setLogSink([](LogLevel, const std::wstring&, const std::wstring&) {});  // keeps no lines
  SharedNumbers heap(generations);
  const int status = Forked([&] { return liveOn(all, 1, generations, heap); }).wait();
  if (status != 0) figures.faults.add("a generation", all.describe(status));
  figures.heapOfFirst = heap[0];
  figures.heapOfLast = heap[generations - 1];
  return figures;
}

}  // namespace test
