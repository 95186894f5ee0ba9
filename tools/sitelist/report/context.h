#ifndef TOOLS_SITELIST_REPORT_CONTEXT_H
#define TOOLS_SITELIST_REPORT_CONTEXT_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/sitelist/report/report.h"

namespace tool {

// What the command line says, apart from a command's own options, and what the command answers.
struct Context {
  std::string agentDirectory;
  bool verbose = false;
  std::string format = "table";
  bool json = false;  // the short way to say that the format is "json"
  std::string color = "auto";
  std::string wait = "10";               // how long to wait for locks, in seconds
  unsigned int waitMilliseconds = 0;     // the same, once it is known to be a number
  std::vector<std::string> meshCommand;  // of `init`: all behind --mesh-command
  std::string command;                   // the name of the one that was asked for
  std::function<int()> action;           // does it; gives the exit status
  std::optional<Report> report;          // what the action has to tell, also when it fails
};

// The form that the output is to have.
Format formatOf(const Context& context);

}  // namespace tool

#endif
