#ifndef TOOLS_SITELIST_INCOMING_H
#define TOOLS_SITELIST_INCOMING_H

#include <string>

#include "tools/sitelist/command.h"

namespace tool {

// What `import` and `install` have in common.
struct IncomingOptions {
  std::string file;
  std::string keyDirectory;
  bool dryRun = false;
  bool isChecked = false;  // import checks the list first
};

void addIncomingOptions(CLI::App& command, IncomingOptions& options);
int takeIncoming(const Context& context, const IncomingOptions& options);

// Says what taking the list would change, and changes nothing.
int previewIncoming(const Context& context, const IncomingOptions& options);

// The failure of import or install, from the library's code and log.
[[noreturn]] void failIncoming(const IncomingOptions& options, const std::string& ownList,
                               int code);

}  // namespace tool

#endif
