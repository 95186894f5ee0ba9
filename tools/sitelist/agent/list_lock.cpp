#include "tools/sitelist/agent/list_lock.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>

#include "host/agent.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/text.h"

namespace fs = std::filesystem;

namespace tool {
namespace {

using std::chrono::milliseconds;

// A shorter wait is not reported.
constexpr milliseconds c_silentWait{1000};

// Returns whether the agent's lock can be used for a list that is not the agent's own.
bool canLock(const Context& context) {
  return ::access((context.agentDirectory + "/locks").c_str(), R_OK | W_OK | X_OK) == 0;
}

}  // namespace

std::string directoryOf(const std::string& file) {
  std::error_code error;
  const fs::path path = fs::weakly_canonical(fs::absolute(file, error), error);
  return error ? "." : path.parent_path().string();
}

ListLock::ListLock(Context& context, const std::string& file, ListUse use)
    : m_path(file.empty() ? ownListPath(context) : file),
      m_start(Clock::now()),
      m_wait(context.waitMilliseconds) {
  const bool isOwn = isOwnList(context, file);
  if (isOwn || canLock(context)) {
    serveAgent(context);
    // The library takes the two locks in this order.
    if (use == ListUse::ReadCached) takeFromAgent(sitehlp::smartSiteListLock, use, m_cacheHold);
    takeFromAgent(sitehlp::c_siteListLock, use, m_listHold);
  }
  if (use != ListUse::Change) return;
  if (isOwn) {
    m_watch.emplace(context, filesOfAgent(context));
    m_kept.emplace(ownListPath(context), context.command, host::agent().historyLength);
    return;
  }
  lockDirectory();
  m_watch.emplace(context, std::vector<std::string>{m_path});
  m_state = stateOfFile(m_path);
}

// The history is completed under the lock, which was released for the load command.
ListLock::~ListLock() {
  if (!m_kept || !m_kept->isPending() || m_listHold->isHeld()) return;
  try {
    if (m_listHold->lock(static_cast<unsigned int>(m_wait.count()))) return;
  } catch (const std::exception&) {  // no memory
  }
  m_kept->leave();
}

void ListLock::requireUnchanged() const {
  if (!m_state || stateOfFile(m_path) == *m_state) return;
  throw failureAt(m_path, exitConflict,
                  "another program changed the list meanwhile, so nothing was written",
                  "try again");
}

ListLock::Answer ListLock::await(const std::function<Answer(unsigned int)>& lock) {
  const auto left = [this](milliseconds wait) {
    const auto passed = std::chrono::duration_cast<milliseconds>(Clock::now() - m_start);
    return static_cast<unsigned int>(std::max(milliseconds(0), wait - passed).count());
  };
  if (m_wait <= c_silentWait || ::isatty(STDERR_FILENO) == 0) return lock(left(m_wait));
  const Answer answer = lock(left(c_silentWait));
  if (answer != Answer::Busy) return answer;
  std::cerr << "sitelist: waiting for the lock of " << shown(m_path) << '\n';
  return lock(left(m_wait));
}

void ListLock::takeFromAgent(const char* name, ListUse use, std::optional<host::LockHold>& hold) {
  const bool writes = use == ListUse::Change || use == ListUse::Mend;
  hold.emplace(name, writes ? host::LockMode::Write : host::LockMode::Read);
  const std::size_t logged = logRecords().size();
  const Answer answer = await([&](unsigned int wait) {
    if (hold->lock(wait)) return Answer::Held;
    return logRecords().size() == logged ? Answer::Busy : Answer::Unusable;
  });
  if (answer == Answer::Busy) failBusy();
  if (answer == Answer::Unusable && writes) {
    throw failureAt(m_path, exitFile, "the agent's locks cannot be used",
                    "check that you may write in the directory \"locks\" of the agent");
  }
}

// If the directory is missing or the user may not use it, the write itself fails. If it cannot be
// locked, requireUnchanged() checks the file.
void ListLock::lockDirectory() {
  const std::string directory = directoryOf(m_path);
  const Answer answer = await([&](unsigned int wait) {
    const int error = m_directory.lock(directory, wait);
    return error == 0 ? Answer::Held : error == EWOULDBLOCK ? Answer::Busy : Answer::Unusable;
  });
  if (answer == Answer::Busy) failBusy();
}

void ListLock::failBusy() const {
  throw failureAt(m_path, exitFile, "the list is locked by another process",
                  "try again, or wait longer with --wait SECONDS");
}

unsigned int parseWait(const std::string& seconds) {
  constexpr unsigned long c_most = 86400;
  const bool isNumber = !seconds.empty() && seconds.size() <= 5 &&
                        seconds.find_first_not_of("0123456789") == std::string::npos;
  const unsigned long number = isNumber ? std::strtoul(seconds.c_str(), nullptr, 10) : c_most + 1;
  if (number > c_most) {
    throw Failure(exitUsage, "--wait: \"" + shown(seconds) + "\" is not a number of seconds",
                  "give a number from 0 to " + std::to_string(c_most));
  }
  return static_cast<unsigned int>(number) * 1000;
}

}  // namespace tool
