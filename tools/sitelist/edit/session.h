#ifndef TOOLS_SITELIST_EDIT_SESSION_H
#define TOOLS_SITELIST_EDIT_SESSION_H

#include <functional>
#include <optional>
#include <string>

#include "platform/lock/interprocess_lock.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/edit/operations.h"

namespace tool {

struct EditOptions {
  std::string file;  // empty: the agent's own list
  std::string wait = "10";
  bool dryRun = false;
  bool backup = false;
};

bool isOwnList(const Context& context, const EditOptions& options);

// Access to a list for reading, changing and writing it in one piece. Unless nothing is to be
// written it holds the agent's write lock "SiteListLock": for the agent's own list always, for
// another one if the agent's locks may be used. Meanwhile a private agent is served, so that the
// library can read files under its locks.
class ListAccess {
 public:
  // Fails when the lock cannot be taken in time.
  ListAccess(const Context& context, const EditOptions& options);

  const std::string& path() const { return m_path; }
  // For a draft that nobody else sees; it goes away with the object.
  std::string draftPath() const { return m_private->directory() + "/SiteList.xml"; }

 private:
  void lock(unsigned int waitMilliseconds);

  std::string m_path;
  korvel_com::orb::lock::InterProcessWriteLock m_lock;
  std::optional<PrivateAgent> m_private;
};

// Makes an edit, or says what it would change. Nothing is written unless the changed document reads
// as the edit meant it. Gives the exit status.
int performEdit(Context& context, const EditOptions& options,
                const std::function<Outcome(ListEditor&)>& edit);

// Puts the list back as the last edit with a backup found it.
int restoreBackup(Context& context, const EditOptions& options);

}  // namespace tool

#endif
