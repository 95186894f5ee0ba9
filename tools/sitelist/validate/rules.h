#ifndef TOOLS_SITELIST_VALIDATE_RULES_H
#define TOOLS_SITELIST_VALIDATE_RULES_H

#include <string>
#include <vector>

#include "tools/sitelist/cli/exit_status.h"

namespace tool {

// An error stops the library from taking the list. A warning does not, but the agent then has
// something other than what the document seems to say.
enum class Severity { Error, Warning };

// What a list is asked for. The names never change from one release to the next.
struct Rule {
  const char* name;
  Severity severity;
  ExitStatus status;  // of a list that breaks it
  const char* summary;
  const char* why;
  const char* mend;
  const char* faulty;  // one line as an example
  const char* mended;  // the same line, put right
};

// All rules: of the file, of the list, of the management server, then the warnings.
const std::vector<Rule>& allRules();

// Null when there is none of that name.
const Rule* findRule(const std::string& name);

const char* nameOf(Severity severity);

// Names and summaries of the rules of that severity, for the help.
std::string ruleHelp(Severity severity);

}  // namespace tool

#endif
