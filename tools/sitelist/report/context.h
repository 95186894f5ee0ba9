#ifndef TOOLS_SITELIST_REPORT_CONTEXT_H
#define TOOLS_SITELIST_REPORT_CONTEXT_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/sitelist/report/report.h"

namespace tool {

// The options that all commands share, and the result of the command.
struct Context {
  std::string agentDirectory;
  bool verbose = false;
  bool quiet = false;  // no messages, and no table
  std::string format;  // empty: "table"
  bool json = false;   // the same as format "json"
  std::string color = "auto";
  std::optional<std::string> wait;                 // longest wait for locks, in seconds, if given
  unsigned int waitMilliseconds = 0;               // `wait` or the default; set after the check
  std::vector<std::string> meshCommand;            // for `init`: all words after --mesh-command
  std::string command;                             // the name of the given command
  std::vector<std::string> arguments;              // all words of the command line
  std::optional<std::vector<std::string>> helpOn;  // for `help`: the command to describe
  std::function<int()> action;                     // runs the command; returns the exit status
  std::optional<Report> report;                    // the result of the action, also after a failure
  bool changed = false;                            // whether the action has changed files
};

// Returns whether the command may print its progress on standard error.
bool wantsProgress(const Context& context);

// Returns the format of the output.
Format formatOf(const Context& context);

// Returns the properties of standard output with the given colour.
Screen screenOf(const Context& context);

}  // namespace tool

#endif
