#include "tests/resilience/kills.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <random>
#include <set>
#include <thread>

#include "tests/resilience/forked.h"
#include "tests/resilience/workshop.h"
#include "tests/support/locker.h"

namespace test {
namespace {

constexpr int c_killed = 128 + SIGKILL;

// Returns a fault if the next writer cannot take a lock that a killed writer held.
std::string heldLock(Locker& locker) {
  if (!locker.lock(Locker::Mode::Write, 0)) return "the lock is still held";
  locker.unlock(Locker::Mode::Write);
  return std::string();
}

// Runs the operation again, which must succeed. Afterwards leftOver must find no temporary file.
std::string recovery(const Operation& operation, const Workshop& workshop) {
  const WorkshopFileSystem files(workshop);
  const int code = operation.run(workshop);
  return code == 0 ? std::string() : "the next call fails: " + std::to_string(code);
}

std::string leftOver(const Workshop& workshop) {
  const std::vector<std::string> files = workshop.temporaryFiles();
  return files.empty() ? std::string() : files.front() + " survives the next call";
}

}  // namespace

KillFigures killBeforeEveryCall(const Progress& progress) {
  KillFigures figures;
  Workshop workshop;
  Locker locker(workshop.agent.dataDirectory());
  for (const Operation& operation : writingOperations()) {
    workshop.reset(operation);
    const State before = workshop.state();
    figures.faults.addIfAny(operation.name, recovery(operation, workshop));
    const State after = workshop.state();
    int status = c_killed;
    for (unsigned long n = 0; status == c_killed; ++n) {
      const std::string where = std::string(operation.name) + " before call " + std::to_string(n);
      workshop.reset(operation);
      Forked child([&] {
        WorkshopFileSystem files(workshop);
        unsigned long left = n;
        files.beforeEach([&](FileCall) {
          if (left-- == 0) ::raise(SIGKILL);
        });
        return operation.run(workshop);
      });
      status = child.wait();
      if (status != c_killed && status != 0) {
        figures.faults.add(where, "ends with " + std::to_string(status));
      }
      figures.kills += status == c_killed;
      figures.leftOvers += !workshop.temporaryFiles().empty();
      const State now = workshop.state();
      figures.unfinished += now != before && now != after;
      figures.faults.addIfAny(where, mixture(now, before, after));
      figures.faults.addIfAny(where, heldLock(locker));
      figures.faults.addIfAny(where, recovery(operation, workshop));
      figures.faults.addIfAny(where, leftOver(workshop));
      if (now == before) figures.faults.addIfAny(where, mixture(workshop.state(), after, after));
      if (progress) progress(figures.kills);
    }
  }
  return figures;
}

namespace {

// The steps that a writer repeats. The first step replaces everything that the others use, so each
// file has the same sequence of contents in every round.
constexpr const char* c_cycle[] = {"import",
                                   "derive",
                                   "install",
                                   "create",
                                   "modify",
                                   "create-from-buffer",
                                   "server-list",
                                   "import-new-directory",
                                   "server-list-adjusted"};

// The steps whose result does not depend on the earlier content of the file.
constexpr const char* c_independent[] = {"import",
                                         "install",
                                         "create",
                                         "create-from-buffer",
                                         "server-list",
                                         "import-new-directory",
                                         "server-list-adjusted"};

// Every content that a file has at the end of some step; "absent" where it is not there.
using Contents = std::map<std::string, std::set<std::string>>;

const std::string c_absent = "absent";

void collect(const State& state, Contents& contents) {
  for (const auto& [path, content] : state) contents[path].insert(content);
  for (auto& [path, known] : contents) {
    if (state.count(path) == 0) known.insert(c_absent);
  }
}

Contents contentsOfCycle(Workshop& workshop, Faults& faults) {
  Contents contents;
  collect(workshop.state(), contents);
  const WorkshopFileSystem files(workshop);
  for (int round = 0; round < 2; ++round) {
    for (const char* name : c_cycle) {
      if (writingOperation(name).run(workshop) != 0) faults.add(name, "fails by itself");
      collect(workshop.state(), contents);
    }
  }
  return contents;
}

std::string foreign(const State& now, const Contents& contents) {
  for (const auto& [path, known] : contents) {
    const auto found = now.find(path);
    const std::string& is = found == now.end() ? c_absent : found->second;
    if (known.count(is) == 0) return path + " holds: " + is;
  }
  for (const auto& file : now) {
    if (contents.count(file.first) == 0) return file.first + " is new";
  }
  return std::string();
}

[[noreturn]] void writeForEver(const Workshop& workshop, int started) {
  const WorkshopFileSystem files(workshop);
  const char mark = 's';
  if (::write(started, &mark, 1) != 1) ::_exit(1);
  for (;;) {
    for (const char* name : c_cycle) {
      if (writingOperation(name).run(workshop) != 0) ::_exit(2);
    }
  }
}

}  // namespace

KillFigures killAtAnyMoment(unsigned long kills, unsigned int seed, const Progress& progress) {
  KillFigures figures;
  Workshop workshop;
  Locker locker(workshop.agent.dataDirectory());
  const Contents contents = contentsOfCycle(workshop, figures.faults);

  const auto begin = std::chrono::steady_clock::now();
  {
    const WorkshopFileSystem files(workshop);
    for (const char* name : c_cycle) writingOperation(name).run(workshop);
  }
  const auto cycle = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - begin);

  std::mt19937 random(seed);
  std::uniform_int_distribution<long> delay(0, std::max<long>(1, cycle.count()));
  for (unsigned long n = 0; n < kills; ++n) {
    const std::string where = "kill " + std::to_string(n);
    int started[2];
    if (::pipe(started) != 0) break;
    Forked child([&]() -> int { writeForEver(workshop, started[1]); });
    ::close(started[1]);
    char mark = 0;
    if (::read(started[0], &mark, 1) != 1) figures.faults.add(where, "the writer does not start");
    ::close(started[0]);
    // Any moment is suitable, because no result depends on it.
    std::this_thread::sleep_for(std::chrono::microseconds(delay(random)));
    child.kill();
    const int status = child.wait();
    if (status != c_killed)
      figures.faults.add(where, "the writer fails: " + std::to_string(status));
    ++figures.kills;
    const bool left = !workshop.temporaryFiles().empty();
    figures.leftOvers += left;
    figures.faults.addIfAny(where, foreign(workshop.state(), contents));
    figures.faults.addIfAny(where, heldLock(locker));
    figures.faults.addIfAny(
        where, recovery(writingOperation(c_independent[n % std::size(c_independent)]), workshop));
    // Each directory is cleaned by the next call that writes there.
    if (left) {
      for (const char* name : c_cycle) {
        figures.faults.addIfAny(where, recovery(writingOperation(name), workshop));
      }
    }
    figures.faults.addIfAny(where, leftOver(workshop));
    if (progress) progress(figures.kills);
  }
  return figures;
}

}  // namespace test
