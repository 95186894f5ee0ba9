#include "host/fs/path_walk.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "host/process/failure_text.h"
#include "platform/common/log.h"

namespace host {
namespace {

constexpr int c_maxLinks = 40;

// An intermediate directory need not be readable.
#if defined(O_SEARCH)
constexpr int c_toPass = O_SEARCH;
#elif defined(O_PATH)
constexpr int c_toPass = O_PATH;
#else
constexpr int c_toPass = O_RDONLY;
#endif

std::size_t nameStart(const std::string& path) {
  const std::size_t nameEnd = path.find_last_not_of('/');
  const std::size_t slash = nameEnd == std::string::npos ? nameEnd : path.rfind('/', nameEnd);
  return slash == std::string::npos ? 0 : slash + 1;
}

// Systems report one of these errors when a symbolic link or a file is opened as a directory.
bool mayBeLink(int error) { return error == ENOTDIR || error == ELOOP; }

}  // namespace

int PathWalk::step(const std::string& name, int flags) {
  const int from = m_directory.error() ? AT_FDCWD : m_directory.get();
  Descriptor next(fileSystem().open(from, name, flags | O_DIRECTORY | O_NOFOLLOW, 0));
  if (next.error()) return next.error();
  m_directory = std::move(next);
  return 0;
}

int PathWalk::follow(const std::string& name, std::string& target) {
  struct stat link;
  const int from = m_directory.error() ? AT_FDCWD : m_directory.get();
  if (const int failed = fileSystem().readLink(from, name, target, link)) return -failed;
  if (m_links == Links::OfCallerOrRoot && link.st_uid != 0 && link.st_uid != ::geteuid()) {
    m_refusal = "the symbolic link " + m_at + name + " belongs to user " +
                std::to_string(link.st_uid) + " and is not followed";
    return EPERM;
  }
  if (target.empty()) return ENOENT;
  return ++m_followed > c_maxLinks ? ELOOP : 0;
}

int PathWalk::enter(const std::string& path) {
  std::string rest = path;
  while (!rest.empty()) {
    // A leading separator is the name of the root directory.
    const std::size_t end = rest.front() == '/' ? 0 : rest.find('/');
    const std::string name = end == 0 ? "/" : rest.substr(0, end);
    const std::size_t next = end == std::string::npos ? end : rest.find_first_not_of('/', end);
    rest.erase(0, next);
    int error = step(name, rest.empty() ? O_RDONLY : c_toPass);
    if (error == 0) {
      m_at = name == "/" ? name : m_at + name + "/";
      continue;
    }
    if (!mayBeLink(error)) return error;
    std::string target;
    const int refused = follow(name, target);
    if (refused == EINVAL) return error;  // it is a file
    if (refused) return refused;
    if (!rest.empty()) target.append("/").append(rest);
    rest = std::move(target);
  }
  return m_directory.error() ? ENOENT : 0;
}

int PathWalk::find(const std::string& path) {
  std::string rest = path;
  for (;;) {
    if (rest.empty()) return ENOENT;
    const std::size_t slash = rest.rfind('/');
    m_name = slash == std::string::npos ? rest : rest.substr(slash + 1);
    if (slash != std::string::npos)
      rest.erase(slash + 1);
    else
      rest = m_directory.error() ? "." : "";
    if (!rest.empty()) {
      if (const int error = enter(rest)) return error;
    }
    if (m_name.empty()) return EISDIR;
    const int missing = -fileSystem().stat(m_directory.get(), m_name, false, m_found);
    m_exists = missing == 0;
    if (missing) return missing == ENOENT ? 0 : missing;
    if (!S_ISLNK(m_found.st_mode)) return 0;
    if (const int refused = follow(m_name, rest)) return refused;
  }
}

int PathWalk::reported(const char* what, const std::string& path, int error) const {
  if (!m_refusal.empty()) {
    const std::string text =
        std::string(what) + " " + path + ": " + m_refusal + "; next: " + c_adviceOnRefusal;
    logError(c_logComponent, AString(text.c_str()));
  }
  return error;
}

std::string parentOf(const std::string& path) {
  const std::size_t start = nameStart(path);
  return start == 0 ? "." : path.substr(0, start);
}

std::string nameOf(const std::string& path) {
  const std::size_t start = nameStart(path);
  const std::size_t end = path.find_last_not_of('/');
  return end == std::string::npos ? path : path.substr(start, end + 1 - start);
}

}  // namespace host
