#include "tools/sitelist/agent/scratch_directory.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "host/fs/file_system.h"
#include "host/fs/files.h"
#include "tools/sitelist/agent/left_over.h"
#include "tools/sitelist/cli/failure.h"

namespace tool {
namespace {

constexpr const char* c_adviceForTemporary =
    "free space there, or set TMPDIR to a directory that you may write to";
constexpr int c_attempts = 100;
constexpr const char* c_adviceForParent = "check that you may write there and that there is space";

std::string temporaryParent() {
  const char* const set = std::getenv("TMPDIR");
  return set && *set ? set : "/tmp";
}

bool exists(const std::string& path) {
  struct stat unused;
  return host::fileSystem().stat(AT_FDCWD, path, true, unused) == 0;
}

}  // namespace

int SignalsBlocked::s_count = 0;
sigset_t SignalsBlocked::s_before;

SignalsBlocked::SignalsBlocked() {
  if (s_count++ != 0) return;
  sigset_t blocked;
  sigfillset(&blocked);
  // Signals for faults of the program take effect at once, and a terminal may stop the program.
  for (const int signal : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGTRAP, SIGSYS, SIGTSTP,
                           SIGTTIN, SIGTTOU, SIGCONT}) {
    sigdelset(&blocked, signal);
  }
  ::pthread_sigmask(SIG_BLOCK, &blocked, &s_before);
}

SignalsBlocked::~SignalsBlocked() {
  if (--s_count == 0) ::pthread_sigmask(SIG_SETMASK, &s_before, nullptr);
}

ScratchDirectory::ScratchDirectory() : ScratchDirectory(temporaryParent(), c_adviceForTemporary) {}

ScratchDirectory::ScratchDirectory(const std::string& parent)
    : ScratchDirectory(parent, c_adviceForParent) {}

ScratchDirectory::ScratchDirectory(const std::string& parent, const std::string& advice) {
  removeLeftOverScratchDirectories(parent);
  int error = EAGAIN;
  for (int attempt = 0; error == EAGAIN && attempt < c_attempts; ++attempt) error = create(parent);
  if (error == 0) return;
  throw failureAt(parent, exitFile,
                  "cannot create a temporary directory: " + std::generic_category().message(error),
                  advice);
}

// Returns EAGAIN if another process removed the new directory as a left-over one before it was
// locked. If directories cannot be locked, no process removes it.
int ScratchDirectory::create(const std::string& parent) {
  m_path = parent + "/" + makeScratchName();
  const int error = host::makeDirectory(m_path, S_IRWXU);
  if (error == ENOENT && exists(parent)) return EAGAIN;
  if (error) return error;
  return m_lock.lock(m_path, 0) == EWOULDBLOCK || !exists(m_path) ? EAGAIN : 0;
}

ScratchDirectory::~ScratchDirectory() { removeScratchDirectory(m_path); }

}  // namespace tool
