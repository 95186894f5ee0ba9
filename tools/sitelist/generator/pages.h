#ifndef TOOLS_SITELIST_GENERATOR_PAGES_H
#define TOOLS_SITELIST_GENERATOR_PAGES_H

#include <string>

#include "tools/sitelist/cli/command_table.h"

namespace tool {

// Return the source of a manual page. `date` has a form as in "May 1, 2001".
std::string toolPage(const CommandInfo& program, const std::string& date);
std::string settingsPage(const std::string& date);
// Returns the JSON Schema of the tool's output: `schema` with the kinds and fields of sites added.
std::string completeSchema(const std::string& schema);
// `schema` must be a result of completeSchema.
std::string schemaPage(const std::string& schema, const std::string& date);

}  // namespace tool

#endif
