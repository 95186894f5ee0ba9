#include <cstring>
#include <iostream>
#include <memory>

#include "host/fs/files.h"
#include "host/xml/text_file.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/mesh_copy.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"
#include "tools/sitelist/diff/diff.h"
#include "tools/sitelist/edit/list_editor.h"
#include "tools/sitelist/history/history.h"

namespace tool {
namespace {

struct UndoOptions {
  std::string number;
  bool dryRun = false;
  bool allowLostPasswords = false;
};

int preview(Context& context, const UndoOptions& options) {
  serveForPreview(context);
  const std::string path = ownListPath(context);
  const HistoryEntry entry = historyEntry(path, options.number);
  SiteList after = readWholeSiteList(entry.path);
  after.path = path;
  PasswordCheck passwords(context, options.allowLostPasswords);
  passwords.requireCopied(entry.path, path, entry.path);
  passwords.warn(true);
  context.report = Diff(readSiteList(path), after, false)
                       .report("What would change in " + shown(path), "Nothing was written.");
  return exitSuccess;
}

int undo(Context& context, const UndoOptions& options) {
  if (options.dryRun) return preview(context, options);
  const ListLock lock(context, "", ListUse::Change);
  const std::string path = ownListPath(context);
  const HistoryEntry entry = historyEntry(path, options.number);
  failIfNotEditable(entry.path);
  PasswordCheck passwords(context, options.allowLostPasswords);
  passwords.requireCopied(entry.path, path, entry.path);
  serveDetachedAgent(context);
  readWholeSiteList(entry.path);
  const std::string bytes = readInput(entry.path).bytes;
  std::string present;
  if (tryReadBytes(path, present) == 0 && present == bytes) {
    std::cerr << "sitelist: " << shown(path) << ": nothing to change: the list is the same\n";
    return exitSuccess;
  }
  const int error = host::replaceFile(path, bytes.data(), bytes.size(), host::c_modeOfNewDocument);
  if (error) {
    throw failureAt(path, exitFile, std::string("cannot be written: ") + std::strerror(error),
                    "check that you may write there and that there is free space");
  }
  passwords.warn(false);
  std::cerr << "sitelist: " << shown(path) << ": restored list " << entry.number << ", which \""
            << shown(entry.command) << "\" replaced at " << entry.time << '\n';
  updateMeshCopy(context);
  return exitSuccess;
}

}  // namespace

void addUndo(Command& app, Context& context) {
  Command command = app.add_subcommand("undo", "Restore a list that a command has replaced");
  const auto options = std::make_shared<UndoOptions>();
  command
      .add_option("NUMBER", options->number,
                  "The number of the list in `sitelist history` (default: the\nnewest list)")
      .type_name("");
  command.add_flag("--dry-run", options->dryRun, "Show the changes, and write nothing");
  addAllowLostPasswords(command, options->allowLostPasswords);
  command.footer(
      "Replaces the agent's own list by the list from the history, byte for byte. The\n"
      "list that is replaced goes into the history as well, so a second `sitelist undo`\n"
      "undoes the first. Key files and the FIPS marker are unchanged.\n"
      "\n"
      "Examples:\n"
      "  sitelist undo\n"
      "  sitelist undo --dry-run 3\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return undo(context, *options); };
  });
}

}  // namespace tool
