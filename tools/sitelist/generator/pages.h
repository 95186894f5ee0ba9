#ifndef TOOLS_SITELIST_GENERATOR_PAGES_H
#define TOOLS_SITELIST_GENERATOR_PAGES_H

#include <string>

#include "tools/sitelist/cli/command_table.h"

namespace tool {

// Manual pages, as their source. `date` is written as in "May 1, 2001".
std::string toolPage(const CommandInfo& program, const std::string& date);
std::string settingsPage(const std::string& date);
// The JSON Schema of what the tool prints, with the fields of a site put into it.
std::string completeSchema(const std::string& schema);
// `schema` is what completeSchema made.
std::string schemaPage(const std::string& schema, const std::string& date);

}  // namespace tool

#endif
