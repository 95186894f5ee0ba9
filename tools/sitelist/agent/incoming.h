#ifndef TOOLS_SITELIST_AGENT_INCOMING_H
#define TOOLS_SITELIST_AGENT_INCOMING_H

#include <string>
#include <vector>

#include "sitehlp/sites_helper.h"
#include "tools/sitelist/cli/command_line.h"
#include "tools/sitelist/diff/diff.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// What `import` and `install` have in common.
struct IncomingOptions {
  std::string file;
  std::string keyDirectory;
  bool dryRun = false;
  bool isChecked = false;  // import checks the list first
};

void addIncomingOptions(Command& command, IncomingOptions& options);
int takeIncoming(Context& context, const IncomingOptions& options);

// Says what taking the list would change, and changes nothing.
int previewIncoming(Context& context, const IncomingOptions& options);

// Says which sites come without their passwords.
void warnOfLostPasswords(const IncomingOptions& options);

// What would become of the key files and the marker beside the agent's list.
std::vector<FileChange> fileChanges(sitehlp::CSitesHelper& helper, const IncomingOptions& options,
                                    sitehlp::tag_Site* sites, const std::string& ownList);

// Fails because the key files could not be copied or the list could not be written.
[[noreturn]] void failOwnFiles(const IncomingOptions& options, const std::string& ownList,
                               int code);

// The failure of import or install, from the library's code and log.
[[noreturn]] void failIncoming(const IncomingOptions& options, const std::string& ownList,
                               int code);

}  // namespace tool

#endif
