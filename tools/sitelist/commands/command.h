#ifndef TOOLS_SITELIST_COMMANDS_COMMAND_H
#define TOOLS_SITELIST_COMMANDS_COMMAND_H

#include "tools/sitelist/cli/command_line.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// Each function adds one command to the command line. The source file of the command has its name.
void addHelp(Command& app, Context& context);
void addInit(Command& app, Context& context);
void addShow(Command& app, Context& context);
void addGet(Command& app, Context& context);
void addExplain(Command& app, Context& context);
void addProbe(Command& app, Context& context);
void addDiff(Command& app, Context& context);
void addVersions(Command& app, Context& context);
void addServers(Command& app, Context& context);
void addCerts(Command& app, Context& context);
void addPolicies(Command& app, Context& context);
void addValidate(Command& app, Context& context);
void addSummary(Command& app, Context& context);
void addExplainRule(Command& app, Context& context);
void addImport(Command& app, Context& context);
void addInstall(Command& app, Context& context);
void addMerge(Command& app, Context& context);
void addRewrite(Command& app, Context& context);
void addProtect(Command& app, Context& context);
void addFromBuffer(Command& app, Context& context);
void addServerList(Command& app, Context& context);
void addEdit(Command& app, Context& context);
void addHistory(Command& app, Context& context);
void addUndo(Command& app, Context& context);
void addModify(Command& app, Context& context);
void addDoctor(Command& app, Context& context);
void addDeriveServerList(Command& app, Context& context);

}  // namespace tool

#endif
