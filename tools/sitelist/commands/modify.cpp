#include <filesystem>
#include <iostream>

#include "platform/common/afile.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/incoming.h"
#include "tools/sitelist/agent/mesh_copy.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/agent/scratch_directory.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/edit/list_editor.h"
#include "tools/sitelist/model/site_list.h"
#include "tools/sitelist/validate/validation.h"

namespace tool {
namespace {

using sitehlp::CSitesHelper;

struct ModifyOptions {
  IncomingOptions incoming;
  bool repositories = false;
  bool servers = false;
};

bool modifyList(const std::string& list, const ModifyOptions& options) {
  CSitesHelper helper(wide(list));
  return helper.modifySiteList(wide(options.incoming.file).c_str(), options.repositories,
                               options.servers, wide(options.incoming.keyDirectory));
}

bool haveKeyFiles(const IncomingOptions& incoming) {
  const SiteList list = readSiteList(incoming.file);
  ABuffer buffers[4];
  bool flags[4] = {};
  return CSitesHelper(true).readKeyFiles(
      wide(incoming.file), list.sites.get(), wide(incoming.keyDirectory), buffers[0], buffers[1],
      buffers[2], buffers[3], flags[0], flags[1], flags[2], flags[3]);
}

// `written` is the list that was to be modified: the agent's own, or a copy of it.
[[noreturn]] void failToModify(const ModifyOptions& options, const std::string& ownList,
                               const std::string& written) {
  failIfNotEditable(ownList);
  failIfOverLimit(ownList);
  failIfNotEditable(options.incoming.file);
  const int result = readSiteList(options.incoming.file).result;
  if (result == sitehlp::c_errorGeneral) throw lastSiteFailure(options.incoming.file);
  if (result != 0) throw libraryFailure(options.incoming.file, result);
  failIfNotWritten(written, sitehlp::c_errorWrite);
  if (!haveKeyFiles(options.incoming)) {
    failOwnFiles(options.incoming, ownList, sitehlp::c_errorGeneral);
  }
  throw libraryFailure(written, sitehlp::c_errorWrite);
}

// Modifies a copy of the list in a directory for drafts, with the detached agent. Fails if
// passwords would be lost.
std::string modifyCopy(const ScratchDirectory& scratch, const ModifyOptions& options,
                       const std::string& ownList, PasswordCheck& passwords) {
  passwords.requireKeyOfOwnList();
  // The FIPS marker is a file beside the directory of the list.
  const std::string copy = scratch.path() + "/etc/SiteList.xml";
  showAs(scratch.path() + "/etc", "a temporary copy of " + directoryOf(ownList));
  if (!AFiler::createDirectory(wide(scratch.path() + "/etc")) ||
      !AFiler::copyFile(wide(ownList), wide(copy)) || !modifyList(copy, options)) {
    failToModify(options, ownList, copy);
  }
  passwords.requireCopied(copy, ownList, options.incoming.file);
  return copy;
}

// Shows the changes: modifies a copy of the list and compares it with the list.
int previewModify(Context& context, const ModifyOptions& options) {
  const std::string ownList = ownListPath(context);
  serveForPreview(context);
  failIfNotEditable(ownList);
  const ScratchDirectory scratch;
  PasswordCheck passwords(context, options.incoming.allowLostPasswords);
  const std::string copy = modifyCopy(scratch, options, ownList, passwords);
  const SiteList before = readSiteList(ownList);
  SiteList after = readSiteList(copy);
  after.path = ownList;
  const SiteList incoming = readSiteList(options.incoming.file);
  CSitesHelper helper(wide(ownList));
  Diff diff(before, after, false);
  diff.add(fileChanges(helper, options.incoming, incoming.sites.get(), ownList));
  passwords.warn(true);
  context.report = diff.report("What would change in " + shown(ownList), "Nothing was written.");
  return exitSuccess;
}

int modify(Context& context, ModifyOptions options) {
  GivenFile source(options.incoming.file);
  if (options.incoming.dryRun) {
    useGivenFile(options.incoming, source);
    return previewModify(context, options);
  }
  const ListLock lock(context, "", ListUse::Change);
  useGivenFile(options.incoming, source);
  const std::string ownList = ownListPath(context);
  PasswordCheck passwords(context, options.incoming.allowLostPasswords);
  serveDetachedAgent(context);
  failIfNotEditable(ownList);
  failIfNotEditable(options.incoming.file);
  modifyCopy(ScratchDirectory(directoryOf(ownList)), options, ownList, passwords);
  clearLogRecords();
  serveAgent(context);
  if (!modifyList(ownList, options)) failToModify(options, ownList, ownList);
  source.discard();
  passwords.warn(false);
  std::cerr << "sitelist: " << shown(ownList) << ": modified\n";
  updateMeshCopy(context);
  return exitSuccess;
}

}  // namespace

void addModify(Command& app, Context& context) {
  Command command =
      app.add_subcommand("modify", "Copy parts of another list into the agent's own list");
  const auto options = std::make_shared<ModifyOptions>();
  command
      .add_option("SOURCE", options->incoming.file,
                  "The list that has the new parts; - means standard input")
      .required()
      .type_name("")
      .completes(Completion::File);
  command.add_flag("--repositories", options->repositories,
                   "Replace the two default vendor repositories");
  command.add_flag("--servers", options->servers,
                   "Replace the management servers and the CA certificates");
  command
      .add_option("--keys", options->incoming.keyDirectory,
                  "Directory of the management server's public key, for a\nlist whose server has "
                  "no version")
      .type_name("DIR");
  command.add_flag("--dry-run", options->incoming.dryRun, "Show the changes, and write nothing");
  addAllowLostPasswords(command, options->incoming.allowLostPasswords);
  command.footer(
      "All other elements, attributes, comments and text are unchanged, including those\n"
      "that the agent does not read. The key files next to SOURCE are always installed.\n"
      "\n"
      "Examples:\n"
      "  sitelist modify --servers --dry-run incoming/SiteList.xml\n"
      "  sitelist modify --repositories --servers incoming/SiteList.xml\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return modify(context, *options); };
  });
}

}  // namespace tool
