#ifndef TOOLS_SITELIST_GENERATOR_PAGES_H
#define TOOLS_SITELIST_GENERATOR_PAGES_H

#include <string>
#include <utility>
#include <vector>

#include "tools/sitelist/cli/command_table.h"

namespace tool {

// Which exit statuses each command can return.
struct StatusTable {
  std::vector<std::string> lines;  // a heading, and a line for each command
  // a command and a status, for example "diff 1", with the meaning
  std::vector<std::pair<std::string, std::string>> meanings;
};

// Makes the table from the text of exit-statuses.json. Fails unless this text has exactly the
// commands of the program.
StatusTable statusTable(const CommandInfo& program, const std::string& statuses);

// Return the source of a manual page. `date` is in the form "May 1, 2001".
std::string toolPage(const CommandInfo& program, const StatusTable& statuses,
                     const std::string& date);
std::string settingsPage(const std::string& date);
// Returns the JSON Schema of the tool's output: `schema` with the kinds and fields of sites added.
std::string completeSchema(const std::string& schema);
// `schema` must be a result of completeSchema.
std::string schemaPage(const std::string& schema, const std::string& date);

}  // namespace tool

#endif
