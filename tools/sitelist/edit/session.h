#ifndef TOOLS_SITELIST_EDIT_SESSION_H
#define TOOLS_SITELIST_EDIT_SESSION_H

#include <functional>
#include <optional>
#include <string>

#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/list_lock.h"
#include "tools/sitelist/edit/operations.h"

namespace tool {

struct EditOptions {
  std::string file;  // empty: the agent's own list
  bool dryRun = false;
  bool backup = false;
  bool force = false;  // also when the change adds faults
};

// Access to a list for reading, changing and writing it in one piece, under its lock unless nothing
// is to be written. Meanwhile a private agent is served.
class ListAccess {
 public:
  // Fails when the lock cannot be taken in time.
  ListAccess(const Context& context, const EditOptions& options);

  const std::string& path() const { return m_path; }
  // Fails when another program changed the list. Must be called before the list is written.
  void requireUnchanged() const {
    if (m_lock) m_lock->requireUnchanged();
  }
  // For a draft that nobody else sees; it goes away with the object.
  std::string draftPath() const { return m_private->directory() + "/SiteList.xml"; }

 private:
  std::string m_path;
  std::optional<ListLock> m_lock;
  std::optional<PrivateAgent> m_private;
};

// Makes an edit, or says what it would change. Nothing is written unless the changed document reads
// as the edit meant it, nor without `force` when the edit adds a fault. Gives the exit status.
int performEdit(Context& context, const EditOptions& options,
                const std::function<Outcome(ListEditor&)>& edit);

// Puts the list back as the last edit with a backup found it.
int restoreBackup(Context& context, const EditOptions& options);

}  // namespace tool

#endif
