#ifndef TOOLS_SITELIST_AGENT_AGENT_ACCESS_H
#define TOOLS_SITELIST_AGENT_AGENT_ACCESS_H

#include <optional>
#include <string>

#include "tools/sitelist/agent/given_file.h"
#include "tools/sitelist/agent/list_lock.h"
#include "tools/sitelist/model/site_list.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// Returns the path of the agent's own list.
std::string ownListPath(const Context& context);

// Returns whether a file is the agent's own list. This is so if the name is empty or leads to the
// same file.
bool isOwnList(const Context& context, const std::string& file);

// Fails if the data directory of the agent of the command line does not exist, because a command
// must not create an agent by accident.
void requireDataDirectory(const Context& context);

// Makes the agent of the command line the current agent of the process, with its locks, keys and
// mesh service. Fails as requireDataDirectory does, and if the settings cannot be used.
void serveAgent(const Context& context);

// Fails when the agent of the command line has no password key.
void requirePasswordKey(const Context& context);

// Makes the agent of the command line the current agent, for work on files that do not belong to
// it. The settings and the password key are those of the agent, but its locks and its mesh service
// are not used. Nothing is created in its data directory, which need not exist.
void serveDetachedAgent(const Context& context);

// Makes the process serve no agent. The settings are the defaults, and the key decrypts nothing.
void serveNoAgent(const Context& context);

// Sets the current agent for a command that reads a list. An empty file name means the agent's own
// list. This list is read with the real agent, under the lock of the list. If it has passwords and
// the password key is missing, it is read with the detached agent, because the real agent would
// create another key. A named file is read with the detached agent, even if it is the agent's own
// list. "-" names standard input.
class AgentForReading {
 public:
  AgentForReading(Context& context, const std::string& file, ListUse use = ListUse::Read);

  // The file to read.
  const std::string& path() const { return m_path; }

 private:
  GivenFile m_given;
  std::string m_path;
  std::optional<ListLock> m_lock;
};

// Makes the detached agent the current agent, for a dry run. The agent's data directory must exist.
void serveForPreview(const Context& context);

// Makes the agent of the command line the current agent, for a command that prints a new list. The
// password key must exist.
void serveForPrinting(const Context& context);

// Fails with wrong usage if the command line has a format other than the default. `list` is the new
// list in words, and `advice` says how it is written to a file.
void requirePrintable(const Context& context, const std::string& list, const std::string& advice);

// Sets the current agent for a command that writes a list, and holds the lock of that list. For the
// agent's own list it is the real agent. For another file it is the detached agent, whose password
// key must exist.
class AgentForWriting {
 public:
  AgentForWriting(Context& context, const std::string& file);

  // Writes the list. Fails when it cannot be written, or when another program changed the file.
  void write(SiteList& list) const;

 private:
  std::string m_path;
  std::optional<ListLock> m_lock;
};

}  // namespace tool

#endif
