#include "tests/resilience/faults.h"

#include <cerrno>
#include <cstring>
#include <exception>

#include "tests/resilience/workshop.h"
#include "tests/support/locker.h"

namespace test {
namespace {

constexpr int c_errors[] = {ENOSPC, EDQUOT, EIO, EACCES, EROFS};

// The result of a call: its code, or an exception.
struct Ending {
  int code = 0;
  std::string thrown;
};

Ending run(const Operation& operation, const Workshop& workshop) {
  Ending ending;
  try {
    ending.code = operation.run(workshop);
  } catch (const std::exception& e) {
    ending.thrown = e.what();
  }
  return ending;
}

// A workshop for operations with failing calls.
class Trial {
 public:
  explicit Trial(FaultFigures& figures, const Progress& progress)
      : m_figures(figures), m_progress(progress), m_locker(m_workshop.agent.dataDirectory()) {}

  // Runs the operation without failures. Returns the number of its calls.
  std::size_t begin(const Operation& operation, bool writes) {
    m_operation = &operation;
    m_writes = writes;
    m_workshop.reset(operation);
    m_before = m_workshop.state();
    m_modes = m_workshop.modes();
    std::size_t calls = 0;
    {
      WorkshopFileSystem files(m_workshop);
      const Ending ending = run(operation, m_workshop);
      calls = files.calls().size();
      if (ending.code != 0 || !ending.thrown.empty()) {
        m_figures.faults.add(operation.name, "fails by itself: " + std::to_string(ending.code));
      }
    }
    m_after = m_workshop.state();
    if (writes == (m_before == m_after)) {
      m_figures.faults.add(operation.name, writes ? "writes nothing" : "writes something");
    }
    return calls;
  }

  // Returns whether a call failed. `arm` selects the failing calls.
  template <typename Arm>
  bool tryWith(const std::string& how, bool forGood, Arm arm) {
    m_where = std::string(m_operation->name) + ", " + how;
    m_workshop.reset(*m_operation);
    m_workshop.agent.clearLog();
    const std::ptrdiff_t descriptors = m_workshop.openDescriptors();
    Ending ending;
    std::vector<FileCall> failed;
    {
      WorkshopFileSystem files(m_workshop);
      arm(files);
      ending = run(*m_operation, m_workshop);
      failed = files.failed();
    }
    ++m_figures.runs;
    if (m_progress) m_progress(m_figures.runs);
    if (!failed.empty()) m_where += std::string(" at ") + nameOf(failed.front());
    checkEnding(ending);
    checkFiles(ending, failed);
    if (m_workshop.openDescriptors() != descriptors) {
      m_figures.faults.add(m_where, "leaks a descriptor");
    }
    checkLock();
    checkTemporaryFiles(forGood);
    return !failed.empty();
  }

 private:
  void checkEnding(const Ending& ending) {
    m_figures.faults.addIfAny(m_where, ending.thrown);
    if (ending.code == 0) return;
    ++m_figures.refused;
    if (m_operation->failures.count(ending.code) == 0) {
      m_figures.faults.add(m_where, "undocumented result " + std::to_string(ending.code));
    }
  }

  void checkFiles(const Ending& ending, const std::vector<FileCall>& failed) {
    const State now = m_workshop.state();
    m_figures.faults.addIfAny(m_where, mixture(now, m_before, m_writes ? m_after : m_before, true));
    for (const auto& [path, mode] : m_workshop.modes()) {
      const auto known = m_modes.find(path);
      if (known != m_modes.end() && known->second != mode) {
        m_figures.faults.add(m_where, "changes the mode of " + path);
      }
    }
    if (!m_operation->result) return;
    const std::string path = m_operation->result(m_workshop);
    const State only = restrictedTo(path, now);
    const State before = restrictedTo(path, m_before);
    const State after = restrictedTo(path, m_after);
    if (ending.code == 0) {
      m_figures.faults.addIfAny(m_where + ", reported as done", mixture(only, after, after, true));
    } else if (failed.empty() || failed.front() != FileCall::Sync) {
      // Only a failed sync of a directory may be reported although the new bytes are in place.
      m_figures.faults.addIfAny(m_where + ", reported as failed", mixture(only, before, before));
    }
  }

  static State restrictedTo(const std::string& path, const State& state) {
    const auto found = state.find(path);
    return found == state.end() ? State() : State{*found};
  }

  void checkLock() {
    if (!m_locker.lock(Locker::Mode::Write, 0)) {
      m_figures.faults.add(m_where, "keeps the lock");
      return;
    }
    m_locker.unlock(Locker::Mode::Write);
  }

  void checkTemporaryFiles(bool mayRemain) {
    if (m_workshop.temporaryFiles().empty()) return;
    if (!mayRemain) {
      m_figures.faults.add(m_where, "leaves " + m_workshop.temporaryFiles().front());
      return;
    }
    ++m_figures.cleanedUp;
    const WorkshopFileSystem files(m_workshop);
    const Ending next = run(*m_operation, m_workshop);
    if (next.code != 0 || !m_workshop.temporaryFiles().empty()) {
      m_figures.faults.add(m_where, "the next call does not clean up");
    }
  }

  FaultFigures& m_figures;
  const Progress& m_progress;
  Workshop m_workshop;
  Locker m_locker;
  const Operation* m_operation = nullptr;
  bool m_writes = false;
  State m_before;
  State m_after;
  std::map<std::string, mode_t> m_modes;
  std::string m_where;
};

std::vector<int> errorsFor(std::size_t call, Errors errors) {
  if (errors == Errors::Every) return {std::begin(c_errors), std::end(c_errors)};
  return {c_errors[call % (sizeof c_errors / sizeof c_errors[0])]};
}

void failCallsOf(const Operation& operation, bool writes, Errors errors, Trial& trial) {
  const std::size_t calls = trial.begin(operation, writes);
  for (std::size_t n = 0; n < calls; ++n) {
    for (const int error : errorsFor(n, errors)) {
      const std::string how = "call " + std::to_string(n) + " " + std::strerror(error);
      trial.tryWith(how + " once", false, [&](FaultyFileSystem& f) { f.failCall(n, error); });
      trial.tryWith(how + " for good", true, [&](FaultyFileSystem& f) { f.failFrom(n, error); });
    }
  }
}

}  // namespace

FaultFigures failEveryCall(Errors errors, const Progress& progress) {
  FaultFigures figures;
  Trial trial(figures, progress);
  for (const Operation& each : writingOperations()) failCallsOf(each, true, errors, trial);
  for (const Operation& each : readingOperations()) failCallsOf(each, false, errors, trial);
  return figures;
}

FaultFigures moveFewBytes(const Progress& progress) {
  FaultFigures figures;
  Trial trial(figures, progress);
  for (const Operation& operation : writingOperations()) {
    trial.begin(operation, true);
    for (const std::size_t bytes : {1, 7, 1000}) {
      trial.tryWith(std::to_string(bytes) + " bytes at a time", false,
                    [&](FaultyFileSystem& f) { f.limitTransfers(bytes); });
    }
    bool full = true;
    for (int kept = 0; full; ++kept) {
      int writes = 0;
      full = trial.tryWith("full after write " + std::to_string(kept), false,
                           [&](FaultyFileSystem& f) {
                             f.limitTransfers(500);
                             f.beforeEach([&](FileCall call) {
                               if (call == FileCall::Write && ++writes == kept) {
                                 f.failEvery(FileCall::Write, ENOSPC);
                               }
                             });
                           });
      full = full || kept == 0;
    }
  }
  return figures;
}

}  // namespace test
