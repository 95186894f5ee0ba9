#include "tools/sitelist/doctor/agent_user.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

int errorOfUse(const std::string& path, int mode) {
  return ::faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0 ? 0 : errno;
}

bool become(const AgentUser& user) {
  const passwd* const known = ::getpwuid(user.id);
  const int grouped = known ? ::initgroups(known->pw_name, known->pw_gid) : ::setgroups(0, nullptr);
  return grouped == 0 && ::setgid(known ? known->pw_gid : user.group) == 0 &&
         ::setuid(user.id) == 0;
}

// The child reports through a pipe, because its status is lost if the caller's parent ignores
// SIGCHLD.
int errorOfUseInChild(const AgentUser& user, const std::string& path, int mode) {
  int ends[2];
  if (::pipe(ends) != 0) return errno;
  const pid_t child = ::fork();
  if (child == 0) {
    const int error = become(user) ? errorOfUse(path, mode) : EPERM;
    const bool isSent = ::write(ends[1], &error, sizeof error) == sizeof error;
    ::_exit(isSent ? 0 : 1);
  }
  int error = child < 0 ? errno : EPERM;
  ::close(ends[1]);
  if (child > 0 && ::read(ends[0], &error, sizeof error) != sizeof error) error = EPERM;
  ::close(ends[0]);
  while (child > 0 && ::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
  return error;
}

}  // namespace

std::string userName(uid_t user) {
  const passwd* const found = ::getpwuid(user);
  return found ? shown(std::string(found->pw_name)) : "user " + std::to_string(user);
}

std::string groupName(gid_t group) {
  const struct group* const found = ::getgrgid(group);
  return found ? shown(std::string(found->gr_name)) : "group " + std::to_string(group);
}

bool canActAs(const AgentUser& user) { return ::geteuid() == 0 || ::geteuid() == user.id; }

int errorOfUse(const AgentUser& user, const std::string& path, int mode) {
  if (::geteuid() == user.id) return errorOfUse(path, mode);
  return ::geteuid() == 0 ? errorOfUseInChild(user, path, mode) : EPERM;
}

std::string runAs(const AgentUser& user) {
  return user.id == 0 ? "run the command as root"
                      : "run the command as " + userName(user.id) + " or as root";
}

}  // namespace tool
