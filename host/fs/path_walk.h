#ifndef HOST_FS_PATH_WALK_H
#define HOST_FS_PATH_WALK_H

#include <sys/stat.h>

#include <string>

#include "host/fs/descriptor.h"

namespace host {

// Which symbolic links a walk follows.
enum class Links {
  OfCallerOrRoot,  // links of the effective user and of root; for every change
  All              // every link; for queries
};

// Resolves one path, directory by directory. It checks every symbolic link before it follows the
// link. A directory that another process replaces during the walk does not redirect it. Call enter
// or find once for each object. One object must not be used by two threads at the same time.
class PathWalk {
 public:
  explicit PathWalk(Links links = Links::OfCallerOrRoot) : m_links(links) {}

  // Opens the directory that `path` leads to, so that it can be read and synced. Returns 0 or an
  // errno. For a link that is not followed, returns EPERM and sets refusal().
  int enter(const std::string& path);
  // Finds the file that `path` leads to, after links at its end. The file need not exist.
  // Afterwards directory() and name() give its place, and found() its status. Returns the same as
  // enter, or EISDIR for a path that ends with "/".
  int find(const std::string& path);

  int directory() const { return m_directory.get(); }
  const std::string& name() const { return m_name; }
  // Returns the status of the file, or null if it does not exist.
  const struct stat* found() const { return m_exists ? &m_found : nullptr; }

  // Returns which link was not followed, and who owns it. Empty after other failures.
  const std::string& refusal() const { return m_refusal; }
  static constexpr const char* c_adviceOnRefusal = "remove the link, or make root its owner";
  // Logs a refusal as an error, with `what` and the path. Returns `error`.
  int reported(const char* what, const std::string& path, int error) const;

 private:
  int step(const std::string& name, int flags);
  int follow(const std::string& name, std::string& target);

  Links m_links;
  Descriptor m_directory{-EBADF};
  std::string m_at;  // the path of m_directory, with a separator at its end
  std::string m_name;
  bool m_exists = false;
  struct stat m_found {};
  int m_followed = 0;
  std::string m_refusal;
};

// Returns the directory part of a path, with its separator, or "." without one. Ignores separators
// at the end of the path.
std::string parentOf(const std::string& path);
// Returns the last name of a path, without separators at its end.
std::string nameOf(const std::string& path);

}  // namespace host

#endif
