#include "tools/sitelist/history/history.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <optional>
#include <utility>

#include "host/fs/file_system.h"
#include "host/fs/files.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"

namespace fs = std::filesystem;

namespace tool {
namespace {

// The first part of the name of a copy until the command has ended. The process number follows,
// because two commands can have the same name in the same second.
constexpr const char* c_pending = "pending";
constexpr const char* c_suffix = ".xml";
constexpr mode_t c_directoryMode = 0750;
constexpr mode_t c_mostOfFileMode = 0640;

std::string historyDirectory(const std::string& list) {
  return (fs::path(list).parent_path() / "history").string();
}

// "<front>-<time>-<command>.xml", with the time as "20261122T140512Z"
std::string keptNameOf(const std::string& front, const std::string& time, std::string command) {
  std::string digits;
  std::copy_if(time.begin(), time.end(), std::back_inserter(digits),
               [](char c) { return c != '-' && c != ':'; });
  std::replace(command.begin(), command.end(), ' ', '_');
  return front + "-" + digits + "-" + command + c_suffix;
}

std::string keptNameOf(const HistoryEntry& entry) {
  return keptNameOf(std::to_string(entry.number), entry.time, entry.command);
}

// Gets the parts of such a name. Returns false for any other name.
bool takeApart(const std::string& name, std::string& front, HistoryEntry& entry) {
  constexpr std::size_t timeLength = std::char_traits<char>::length("20261122T140512Z");
  const std::size_t suffix = std::strlen(c_suffix);
  const std::size_t dash = name.find('-');
  const std::size_t second = dash + 1 + timeLength;
  if (dash == std::string::npos || name.size() <= second + 1 + suffix || name[second] != '-') {
    return false;
  }
  if (name.compare(name.size() - suffix, suffix, c_suffix) != 0) return false;
  front = name.substr(0, dash);
  entry.time = name.substr(dash + 1, timeLength);
  for (const auto& [at, mark] : {std::pair{4, "-"}, {7, "-"}, {13, ":"}, {16, ":"}}) {
    entry.time.insert(static_cast<std::size_t>(at), mark);
  }
  entry.command = name.substr(second + 1, name.size() - second - 1 - suffix);
  std::replace(entry.command.begin(), entry.command.end(), '_', ' ');
  return true;
}

bool holds(const std::string& path, const std::string& bytes) {
  std::string found;
  return tryReadBytes(path, found) == 0 && found == bytes;
}

struct Copies {
  std::vector<HistoryEntry> entries;    // the oldest first
  std::optional<HistoryEntry> pending;  // with the number that it would get
};

Copies copiesOf(const std::string& list) {
  Copies copies;
  std::error_code error;
  for (fs::directory_iterator it(historyDirectory(list), error), end; !error && it != end;
       it.increment(error)) {
    HistoryEntry entry;
    std::string front;
    if (!takeApart(it->path().filename().string(), front, entry)) continue;
    entry.path = it->path().string();
    if (front.rfind(c_pending, 0) == 0) {
      copies.pending = entry;
    } else if (!front.empty() && front.find_first_not_of("0123456789") == std::string::npos) {
      entry.number = std::strtoul(front.c_str(), nullptr, 10);
      copies.entries.push_back(entry);
    }
  }
  std::sort(copies.entries.begin(), copies.entries.end(),
            [](const HistoryEntry& a, const HistoryEntry& b) { return a.number < b.number; });
  if (copies.pending) {
    copies.pending->number = copies.entries.empty() ? 1 : copies.entries.back().number + 1;
  }
  return copies;
}

// A pending copy that a killed command left is an entry if the command replaced the list. If the
// copy equals the newest entry, it is not a second entry: the command was killed after it had
// written that entry.
bool isEntry(const Copies& copies, const std::string& present) {
  std::string bytes;
  return copies.pending && tryReadBytes(copies.pending->path, bytes) == 0 && bytes != present &&
         (copies.entries.empty() || !holds(copies.entries.back().path, bytes));
}

int write(const std::string& path, const std::string& like, const std::string& bytes) {
  struct stat status;
  if (const int failed = host::fileSystem().stat(AT_FDCWD, like, true, status)) return -failed;
  return host::replaceFile(path, bytes.data(), bytes.size(), status.st_mode & c_mostOfFileMode);
}

// Makes the pending copy an entry. A process that is killed in between leaves the pending copy and
// the entry.
int promote(const HistoryEntry& pending) {
  std::string bytes;
  if (const int error = tryReadBytes(pending.path, bytes)) return error;
  const fs::path directory = fs::path(pending.path).parent_path();
  const int error = write((directory / keptNameOf(pending)).string(), pending.path, bytes);
  return error ? error : host::removeFile(pending.path);
}

std::string presentTime() {
  const std::time_t now = std::time(nullptr);
  struct tm utc;
  char text[32];
  const std::size_t length =
      ::gmtime_r(&now, &utc) ? std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc) : 0;
  return std::string(text, length);
}

[[noreturn]] void failToKeep(const std::string& path, const std::string& reason) {
  throw failureAt(path, exitFile,
                  "the list cannot be put into the history, so nothing was changed: " + reason,
                  "check that you may write there and that there is free space, or set history = "
                  "0 in agent.toml");
}

}  // namespace

std::vector<HistoryEntry> historyOf(const std::string& list) {
  Copies copies = copiesOf(list);
  std::string present;
  tryReadBytes(list, present);
  if (isEntry(copies, present)) copies.entries.push_back(*copies.pending);
  return copies.entries;
}

bool hasPendingCopyOfEndedProcess(const std::string& list) {
  const Copies copies = copiesOf(list);
  if (!copies.pending) return false;
  const std::string name = fs::path(copies.pending->path).filename().string();
  const long process = std::strtol(name.c_str() + std::strlen(c_pending), nullptr, 10);
  return process <= 0 || (::kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH);
}

HistoryEntry historyEntry(const std::string& list, const std::string& number) {
  const std::vector<HistoryEntry> entries = historyOf(list);
  if (entries.empty()) {
    throw failureAt(list, exitNotFound, "the history is empty",
                    "commands that change the agent's own list fill it");
  }
  if (number.empty()) return entries.back();
  for (const HistoryEntry& entry : entries) {
    if (std::to_string(entry.number) == number) return entry;
  }
  throw failureAt(list, exitNotFound, "the history has no list with the number " + shown(number),
                  "`sitelist history` prints the numbers");
}

KeptList::KeptList(const std::string& list, const std::string& command, unsigned int length)
    : m_list(list), m_length(length) {
  if (length == 0) return;
  const int unread = tryReadBytes(list, m_bytes);
  if (unread == ENOENT || unread == ENOTDIR || unread == EISDIR) return;  // there is no list
  if (unread) failToKeep(list, readFailureReason(unread));
  const std::string directory = historyDirectory(list);
  if (const int error = host::makeDirectory(directory, c_directoryMode)) {
    failToKeep(directory, std::strerror(error));
  }
  int error = 0;
  for (Copies copies = copiesOf(list); copies.pending && error == 0; copies = copiesOf(list)) {
    error = isEntry(copies, m_bytes) ? promote(*copies.pending)
                                     : host::removeFile(copies.pending->path);
  }
  const std::string front = c_pending + std::to_string(::getpid());
  const std::string copy = directory + "/" + keptNameOf(front, presentTime(), command);
  if (error == 0) error = write(copy, list, m_bytes);
  if (error) failToKeep(copy, std::strerror(error));
  m_copy = copy;
}

// A copy that cannot be made an entry stays, and the next command tries again.
KeptList::~KeptList() {
  if (m_copy.empty()) return;
  Copies copies = copiesOf(m_list);
  if (!copies.pending || copies.pending->path != m_copy) return;
  if (holds(m_list, m_bytes)) {
    host::removeFile(m_copy);
    return;
  }
  if (promote(*copies.pending) != 0) return;
  copies.entries.push_back(*copies.pending);
  for (std::size_t i = 0; i + m_length < copies.entries.size(); ++i) {
    host::removeFile(copies.entries[i].path);
  }
}

}  // namespace tool
