#ifndef TOOLS_SITELIST_AGENT_AGENT_ACCESS_H
#define TOOLS_SITELIST_AGENT_AGENT_ACCESS_H

#include <optional>
#include <string>

#include "tools/sitelist/agent/list_lock.h"
#include "tools/sitelist/model/site_list.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// The agent's own site list file.
std::string ownListPath(const Context& context);

// Whether a file is the agent's own list: it has no name, or leads to the same file.
bool isOwnList(const Context& context, const std::string& file);

// Serves the agent that the command line names, with its locks, keys and mesh service. Fails when
// there is no such data directory: a command never makes an agent by accident.
void serveAgent(const Context& context);

// Fails when the agent that the command line names has no key for passwords.
void requirePasswordKey(const Context& context);

// Serves an agent in a temporary directory, which goes away with the object, so that nothing is
// written into the real agent's directory and nobody's mesh service is told of anything. It stands
// for the real agent as far as it can: managed or not, and with the real password key if there is
// one; or, when it is `Detached`, for no agent at all.
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

// The agent for a command that reads a named file or, without a name, the agent's own list: the
// real one, under the lock of its list, for its own list, else a private one.
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

// Serves the agent for writing a site list: the real one when the file is its own list, else a
// private one with the real agent's password key, which must be there. Holds the lock of the list.
// Without a file name the list is written to a temporary one.
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
