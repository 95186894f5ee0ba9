#ifndef TOOLS_SITELIST_AGENT_AGENT_ACCESS_H
#define TOOLS_SITELIST_AGENT_AGENT_ACCESS_H

#include <optional>
#include <string>

#include "tools/sitelist/agent/list_lock.h"
#include "tools/sitelist/model/site_list.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// Returns the path of the agent's own list.
std::string ownListPath(const Context& context);

// Returns whether a file is the agent's own list. This is so if the name is empty or leads to the
// same file.
bool isOwnList(const Context& context, const std::string& file);

// Makes the agent of the command line the current agent of the process, with its locks, keys and
// mesh service. Fails if its data directory does not exist, because a command must not create an
// agent by accident.
void serveAgent(const Context& context);

// Fails when the agent of the command line has no password key.
void requirePasswordKey(const Context& context);

// Makes an agent in a temporary directory the current agent. The destructor removes the directory.
// Nothing is written into the directory of the real agent, and no load command is run.
//
// An agent `InPlaceOfReal` is managed if the real agent is, and has the real password key if there
// is one. A `Detached` agent does not depend on the real agent.
class PrivateAgent {
 public:
  enum Relation { InPlaceOfReal, Detached };

  explicit PrivateAgent(const Context& context, Relation relation = InPlaceOfReal);
  ~PrivateAgent();
  PrivateAgent(const PrivateAgent&) = delete;
  PrivateAgent& operator=(const PrivateAgent&) = delete;

  const std::string& directory() const { return m_directory; }

 private:
  std::string m_directory;
};

// Sets the current agent for a command that reads a list. For the agent's own list it is the real
// agent, under the lock of the list. For another file it is a private agent. An empty file name
// means the agent's own list.
class AgentForReading {
 public:
  AgentForReading(const Context& context, const std::string& file);

  // The file to read.
  const std::string& path() const { return m_path; }

 private:
  std::string m_path;
  std::optional<ListLock> m_lock;
  std::optional<PrivateAgent> m_private;
};

// Sets the current agent for a command that writes a list, and holds the lock of that list. For the
// agent's own list it is the real agent. For another file it is a private agent with the real
// password key, which must exist. Without a file name the list is written to a temporary file.
class AgentForWriting {
 public:
  AgentForWriting(const Context& context, const std::string& file);

  // The file to write.
  const std::string& path() const { return m_path; }
  // Writes the list. Fails when it cannot be written, or when another program changed the file.
  void write(SiteList& list) const;

 private:
  std::string m_path;
  std::optional<ListLock> m_lock;
  std::optional<PrivateAgent> m_private;
};

}  // namespace tool

#endif
