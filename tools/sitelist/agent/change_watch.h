#ifndef TOOLS_SITELIST_AGENT_CHANGE_WATCH_H
#define TOOLS_SITELIST_AGENT_CHANGE_WATCH_H

#include <string>
#include <utility>
#include <vector>

#include "tools/sitelist/report/context.h"

namespace tool {

// Finds out whether a command changes files. A change by another program counts as well if the
// caller does not hold the lock of the files.
class ChangeWatch {
 public:
  // Remembers the content of the files, of which none needs to exist. `context` must exist longer
  // than the object.
  ChangeWatch(Context& context, const std::vector<std::string>& files);
  // Sets Context::changed if a file was created or removed, or has other bytes.
  ~ChangeWatch();
  ChangeWatch(const ChangeWatch&) = delete;
  ChangeWatch& operator=(const ChangeWatch&) = delete;

 private:
  Context& m_context;
  std::vector<std::pair<std::string, std::string>> m_digests;  // of each path
};

// Returns the files of the current agent that commands write: its lists, its keys, the FIPS marker,
// the mesh copy and the settings.
std::vector<std::string> filesOfAgent(const Context& context);

}  // namespace tool

#endif
