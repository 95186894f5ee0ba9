#ifndef TOOLS_SITELIST_EDIT_SESSION_H
#define TOOLS_SITELIST_EDIT_SESSION_H

#include <functional>
#include <optional>
#include <string>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/given_file.h"
#include "tools/sitelist/agent/list_lock.h"
#include "tools/sitelist/edit/operations.h"

namespace tool {

struct EditOptions {
  std::string file;  // empty for the agent's own list, "-" for standard input
  bool dryRun = false;
  bool force = false;  // writes the list even if the edit adds faults
  bool allowLostPasswords = false;
};

// Access to a list for reading, changing and writing it as one operation. Holds the lock of the
// list, except for a dry run and a stream. The detached agent is the current agent during this
// time.
class ListAccess {
 public:
  // Fails when the lock cannot be taken within the time of --wait.
  ListAccess(Context& context, const EditOptions& options);

  const std::string& path() const { return m_path; }
  // Fails when another program changed the list. Must be called before the list is written.
  void requireUnchanged() const {
    if (m_lock) m_lock->requireUnchanged();
  }

  // Returns whether the list is standard input or a pipe, so that path() is a temporary file.
  bool isStream() const { return m_given.isStream(); }
  // Removes that file.
  void discardStream() { m_given.discard(); }

 private:
  GivenFile m_given;
  std::string m_path;
  std::optional<ListLock> m_lock;
};

// Makes an edit or, in a dry run, prints what it would change. The list is written only if a read
// of the changed document gives the result of the edit. An edit that adds a fault to the list is
// refused unless `force` is set. The result of an edit of standard input is printed, even if there
// is nothing to change. Returns the exit status.
int performEdit(Context& context, const EditOptions& options,
                const std::function<Outcome(ListEditor&)>& edit);

}  // namespace tool

#endif
