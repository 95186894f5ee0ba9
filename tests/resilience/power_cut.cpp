#include "tests/resilience/power_cut.h"

#include <filesystem>
#include <random>
#include <set>

#include "tests/resilience/disk_model.h"
#include "tests/resilience/workshop.h"

namespace fs = std::filesystem;

namespace test {
namespace {

constexpr std::size_t c_mostEnumerated = 10;  // effects of which every choice is tried

const std::string c_scratch = "/Library/Korvel/orb/scratch";

// The calls of one operation, with the paths that they had on the disk.
std::vector<RecordedCall> record(const Operation& operation, const Workshop& workshop,
                                 std::size_t bytesAtATime, Faults& faults) {
  WorkshopFileSystem behind(workshop);
  behind.limitTransfers(bytesAtATime);
  RecordingFileSystem files(behind);
  if (operation.run(workshop) != 0) faults.add(operation.name, "fails by itself");
  std::vector<RecordedCall> calls = files.calls();
  for (RecordedCall& call : calls) {
    for (std::string* path : {&call.path, &call.newPath}) {
      if (path->rfind(c_scratch, 0) == 0) {
        path->replace(0, c_scratch.size(), workshop.scratchRoot());
      }
    }
  }
  return calls;
}

class PowerCut {
 public:
  PowerCut(const PowerCutPlan& plan, const Progress& progress)
      : m_plan(plan), m_progress(progress) {}

  void of(const Operation& operation) {
    m_operation = &operation;
    m_workshop.reset(operation);
    m_before = m_workshop.state();
    DiskModel disk(m_workshop.roots());
    const std::vector<RecordedCall> calls =
        record(operation, m_workshop, m_plan.bytesAtATime, m_figures.faults);
    m_after = m_workshop.state();
    cut(disk, "before anything", false);
    for (std::size_t i = 0; i < calls.size(); ++i) {
      if (!disk.apply(calls[i])) continue;
      cut(disk, "after call " + std::to_string(i) + " " + nameOf(calls[i].call), false);
    }
    cut(disk, "when it was reported as done", true);
  }

  PowerCutFigures figures() {
    m_figures.distinct = m_seen.size();
    return m_figures;
  }

 private:
  void cut(const DiskModel& disk, const std::string& when, bool done) {
    const std::string where = std::string(m_operation->name) + " " + when;
    const std::size_t pending = disk.pending();
    const bool all =
        pending <= c_mostEnumerated && (std::size_t{1} << pending) <= m_plan.choicesEach;
    const std::size_t choices = all ? std::size_t{1} << pending : m_plan.choicesEach;
    for (std::size_t choice = 0; choice < choices; ++choice) {
      if (all) {
        check(disk.afterPowerCut([&](std::size_t n) { return (choice >> n & 1) != 0; }), where,
              done);
      } else if (choice < 2) {
        check(disk.afterPowerCut([&](std::size_t) { return choice == 1; }), where, done);
      } else {
        check(disk.afterPowerCut([&](std::size_t) { return (m_random() & 1) != 0; }), where, done);
      }
    }
  }

  void check(const DiskModel::Files& files, const std::string& where, bool done) {
    ++m_figures.states;
    if (m_progress) m_progress(m_figures.states);
    State now;
    std::string whole = m_operation->name;
    for (const auto& [path, bytes] : files) {
      if (!isTemporaryFile(path)) now[path] = normalForm(path, bytes);
      whole += '\0' + path + '\0' + bytes;
    }
    m_seen.insert(std::hash<std::string>()(whole));
    m_figures.between += now != m_before && now != m_after;
    m_figures.faults.addIfAny(where, mixture(now, done ? m_after : m_before, m_after));
    checkKeysComeFirst(now, where);
    if (m_figures.states % m_plan.restartEvery == 0) restart(files, where);
  }

  // A new list is never on the disk without the key files of its server.
  void checkKeysComeFirst(const State& now, const std::string& where) {
    const std::string list = m_workshop.own();
    if (!m_operation->result || m_operation->result(m_workshop) != list ||
        m_before.at(list) == m_after.at(list) || at(now, list) != at(m_after, list)) {
      return;
    }
    for (const char* key : c_keyFileNames) {
      const std::string path = m_workshop.agent.etc(key);
      if (at(now, path) != at(m_after, path)) {
        m_figures.faults.add(where, std::string("the list is new and not ") + key);
      }
    }
  }

  static std::string at(const State& state, const std::string& path) {
    const auto found = state.find(path);
    return found == state.end() ? std::string() : found->second;
  }

  // The machine restarts, and the operation runs on the files that are on the disk.
  void restart(const DiskModel::Files& files, const std::string& where) {
    ++m_figures.restarted;
    m_workshop.reset(*m_operation);
    for (const std::string& root : m_workshop.roots()) {
      std::vector<fs::path> gone;
      for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const std::string path = entry.path().string();
        if (!entry.is_directory() && !isLockFile(path) && files.count(path) == 0) {
          gone.push_back(entry.path());
        }
      }
      for (const fs::path& path : gone) fs::remove(path);
    }
    for (const auto& [path, bytes] : files) writeFile(path, bytes, 0600);
    // A process that starts has no key in memory. This process has one, and drops it when the key
    // file has another key.
    const std::string key = m_workshop.keystore() + "/password.key";
    if (files.count(key) != 0)
      writeFile(key, std::to_string(1000000000 + m_figures.restarted) + std::string(22, 'k'), 0600);
    const WorkshopFileSystem system(m_workshop);
    const int code = m_operation->run(m_workshop);
    if (code != 0) m_figures.faults.add(where, "the next call fails: " + std::to_string(code));
    const std::vector<std::string> left = m_workshop.temporaryFiles();
    if (!left.empty()) m_figures.faults.add(where, left.front() + " survives the next call");
  }

  const PowerCutPlan& m_plan;
  const Progress& m_progress;
  PowerCutFigures m_figures;
  Workshop m_workshop;
  const Operation* m_operation = nullptr;
  State m_before;
  State m_after;
  std::set<std::size_t> m_seen;
  std::mt19937 m_random{7};
};

}  // namespace

PowerCutFigures cutPower(const PowerCutPlan& plan, const Progress& progress) {
  PowerCut experiment(plan, progress);
  for (const Operation& operation : writingOperations()) experiment.of(operation);
  return experiment.figures();
}

}  // namespace test
