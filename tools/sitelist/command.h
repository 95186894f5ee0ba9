#ifndef TOOLS_SITELIST_COMMAND_H
#define TOOLS_SITELIST_COMMAND_H

#include <CLI/CLI.hpp>

#include "tools/sitelist/context.h"

namespace tool {

// Each adds its command, which lives in the source file of that name, to the command line.
void addInit(CLI::App& app, Context& context);
void addShow(CLI::App& app, Context& context);
void addVersions(CLI::App& app, Context& context);
void addServers(CLI::App& app, Context& context);
void addCerts(CLI::App& app, Context& context);
void addPolicies(CLI::App& app, Context& context);
void addValidate(CLI::App& app, Context& context);
void addImport(CLI::App& app, Context& context);
void addInstall(CLI::App& app, Context& context);
void addMerge(CLI::App& app, Context& context);
void addRewrite(CLI::App& app, Context& context);
void addProtect(CLI::App& app, Context& context);
void addFromBuffer(CLI::App& app, Context& context);
void addServerList(CLI::App& app, Context& context);
void addModify(CLI::App& app, Context& context);
void addDeriveServerList(CLI::App& app, Context& context);

}  // namespace tool

#endif
