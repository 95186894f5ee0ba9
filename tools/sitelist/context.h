#ifndef TOOLS_SITELIST_CONTEXT_H
#define TOOLS_SITELIST_CONTEXT_H

#include <functional>
#include <string>
#include <vector>

namespace tool {

// What the command line says, apart from a command's own options.
struct Context {
  std::string agentDirectory;
  bool verbose = false;
  std::vector<std::string> meshCommand;  // of `init`: all behind --mesh-command
  std::function<int()> action;           // the command that was asked for; gives the exit status
};

}  // namespace tool

#endif
