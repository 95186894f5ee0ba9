#ifndef TOOLS_SITELIST_AGENT_INCOMING_H
#define TOOLS_SITELIST_AGENT_INCOMING_H

#include <string>
#include <vector>

#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent/given_file.h"
#include "tools/sitelist/cli/command_line.h"
#include "tools/sitelist/diff/diff.h"
#include "tools/sitelist/report/context.h"

namespace tool {

// The options of `import` and `install`. `modify` uses some of them.
struct IncomingOptions {
  std::string file;       // the path for the library
  bool isStream = false;  // no key files can be next to the list
  std::string keyDirectory;
  bool dryRun = false;
  bool allowsOlder = false;
  bool isChecked = false;  // import checks the list first
  bool allowLostPasswords = false;
  bool allowEmpty = false;
};

void addIncomingOptions(Command& command, IncomingOptions& options);
int takeIncoming(Context& context, IncomingOptions options);

// Makes the options name the file that the library can read.
void useGivenFile(IncomingOptions& options, GivenFile& file);

// Prints what the import of the list would change, and changes nothing.
int previewIncoming(Context& context, const IncomingOptions& options);

// Returns how an import would change the key files and the FIPS marker of the agent's list.
std::vector<FileChange> fileChanges(sitehlp::CSitesHelper& helper, const IncomingOptions& options,
                                    sitehlp::tag_Site* sites, const std::string& ownList);

// Fails if the list is older than the agent's own list, unless that is allowed.
void refuseOlder(const IncomingOptions& options, const std::string& ownList);

// Fails if the directory of `list`, the list or a key file beside it could not be written.
void failIfNotWritten(const std::string& list, int code);

// Fails because the key files or the list could not be written.
[[noreturn]] void failOwnFiles(const IncomingOptions& options, const std::string& ownList,
                               int code);

// Fails with the result code and the log of an import or installation.
[[noreturn]] void failIncoming(const IncomingOptions& options, const std::string& ownList,
                               int code);

}  // namespace tool

#endif
