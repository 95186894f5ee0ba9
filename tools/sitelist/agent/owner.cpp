#include "tools/sitelist/agent/owner.h"

#include <pwd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "host/fs/owner.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/text.h"

namespace tool {
namespace {

constexpr std::size_t c_mostDigits = 9;

bool isNumber(const std::string& text) {
  return !text.empty() && text.size() <= c_mostDigits &&
         text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

Owner findOwner(const std::string& user) {
  const passwd* found = ::getpwnam(user.c_str());
  if (!found && isNumber(user)) {
    found = ::getpwuid(static_cast<uid_t>(std::strtoul(user.c_str(), nullptr, 10)));
  }
  if (found) return {found->pw_uid, found->pw_gid};
  throw Failure(exitUsage, "--owner: there is no user \"" + shown(user) + "\"",
                "give the name or the number of a user of this system");
}

void giveDirectory(const std::string& directory, const Owner& owner) {
  const int error = host::giveEmptyDirectory(directory, owner.user, owner.group);
  if (error == 0) return;
  if (error == ENOTEMPTY) {
    throw failureAt(directory, exitConflict,
                    "the directory belongs to another user and is not empty",
                    "change its owner, or name another directory with --agent-dir");
  }
  throw failureAt(directory, exitFile,
                  "the owner cannot be changed: " + std::generic_category().message(error),
                  "run the command as root, or as that user without --owner");
}

}  // namespace tool
