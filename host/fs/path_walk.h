#ifndef HOST_FS_PATH_WALK_H
#define HOST_FS_PATH_WALK_H

#include <sys/stat.h>

#include <string>

#include "host/fs/descriptor.h"

namespace host {

// Which symbolic links a walk follows.
enum class Links {
  OfCallerOrRoot,  // those of the effective user and of root: the rule for everything that is made
  All              // any: for questions, which change nothing
};

// Resolves one path directory by directory. Call enter or find once per object. A directory that is
// exchanged meanwhile sends the walk nowhere else, and every symbolic link on the way is looked at
// before it is followed. For one thread.
class PathWalk {
 public:
  explicit PathWalk(Links links = Links::OfCallerOrRoot) : m_links(links) {}

  // Opens the directory that `path` leads to, so that it can be read and synced. 0, or the errno of
  // what failed; EPERM with a text in refusal() for a link that is not followed.
  int enter(const std::string& path);
  // Finds the file that `path` leads to, links at its end included, whether it is there or not:
  // directory() and name() then say where it is, found() what it is. Results as of enter; a path
  // that names a directory by its end gives EISDIR.
  int find(const std::string& path);

  int directory() const { return m_directory.get(); }
  const std::string& name() const { return m_name; }
  // Null when nothing has that name.
  const struct stat* found() const { return m_exists ? &m_found : nullptr; }

  // Which link was not followed, and whose it is. Empty for other failures.
  const std::string& refusal() const { return m_refusal; }
  static constexpr const char* c_adviceOnRefusal = "remove the link, or make root its owner";
  // Logs a refusal as an error, after `what` and the path. Returns `error`.
  int reported(const char* what, const std::string& path, int error) const;

 private:
  int step(const std::string& name, int flags);
  int follow(const std::string& name, std::string& target);

  Links m_links;
  Descriptor m_directory{-EBADF};
  std::string m_at;  // the path of m_directory, ready for a name to be appended
  std::string m_name;
  bool m_exists = false;
  struct stat m_found {};
  int m_followed = 0;
  std::string m_refusal;
};

// The directory part of a path, with its separator; "." without one. Separators at the end of the
// path do not count.
std::string parentOf(const std::string& path);
// The last name of a path, without the separators at its end.
std::string nameOf(const std::string& path);

}  // namespace host

#endif
