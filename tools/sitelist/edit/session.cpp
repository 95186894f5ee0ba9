#include "tools/sitelist/edit/session.h"

#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <iostream>

#include "host/fs/files.h"
#include "platform/common/afile.h"
#include "sitehlp/install/key_file_names.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent/mesh_copy.h"
#include "tools/sitelist/agent/scratch_directory.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/diff/diff.h"
#include "tools/sitelist/edit/new_faults.h"

namespace tool {
namespace {

void say(const std::string& path, const std::string& text) {
  std::cerr << "sitelist: " << shown(path) << ": " << text << '\n';
}

// Returns the edited document as the library reads it.
SiteList readDraft(const ListEditor& list, const std::string& draft) {
  if (!list.write(draft)) throw libraryFailure(draft, sitehlp::c_errorWrite);
  SiteList after = readSiteList(draft);
  after.path = list.path();
  if (list.isAsMeant(after)) return after;
  throw failureAt(
      list.path(), exitDocument,
      "the agent would not read the changed document as intended, so nothing was written",
      "check the site in the document; the agent may read its form differently");
}

// A server with a version must have key files next to its list. The rules only look at whether such
// a file is empty, so a file with one byte stands for each, and no key is copied.
void addKeyFiles(const std::string& list, const std::string& draft) {
  namespace fs = std::filesystem;
  for (const wchar_t* name : {sitehlp::c_srPubKey, sitehlp::c_reqSecKey, sitehlp::c_sr2048PubKey,
                              sitehlp::c_req2048SecKey}) {
    const fs::path key = fs::path(list).parent_path() / narrow(name);
    unsigned long long size = 0;
    if (!AFiler::getFileSize(wide(key.string()), size) || size == 0) continue;
    const std::string copy = (fs::path(draft).parent_path() / narrow(name)).string();
    // The draft's directory may belong to another user, who must not redirect the write.
    const int error = host::replaceFile(copy, "0", 1, S_IRUSR | S_IWUSR);
    if (error == 0) continue;
    throw failureAt(draft, exitFile,
                    std::string("a draft of the list cannot be written: ") + std::strerror(error),
                    "check that you may write there and that there is free space");
  }
}

// The result of reading and checking a draft of the changed document.
struct Trial {
  SiteList after;
  std::vector<Fault> faults;
};

Trial tryOut(const ListEditor& list, bool isBesideList, bool hasKeyFiles) {
  const std::string& path = list.path();
  const ScratchDirectory scratch =
      isBesideList ? ScratchDirectory(directoryOf(path)) : ScratchDirectory();
  const std::string draft = scratch.path() + "/SiteList.xml";
  showAs(draft, path);
  Trial trial;
  trial.after = readDraft(list, draft);
  addKeyFiles(path, draft);
  trial.faults = newFaults(path, draft, hasKeyFiles);
  return trial;
}

void warnOf(const std::string& path, const std::vector<Fault>& faults) {
  for (const Fault& fault : faults) {
    printWarning("the change adds a fault: " + lineOf(path, fault));
  }
}

void previewEdit(Context& context, const SiteList& before, const SiteList& after,
                 const std::string& path) {
  context.report = Diff(before, after, false)
                       .report("What would change in " + shown(path), "Nothing was written.");
}

void requireWritable(const Context& context, const EditOptions& options) {
  if (options.dryRun) return;
  if (isStandardStream(options.file)) {
    requirePrintable(context, "the edited list", "edit a file");
  } else if (isReadOnce(options.file)) {
    throw failureAt(options.file, exitUsage, "a pipe cannot be changed in place",
                    "use --file - to edit standard input and print the edited list");
  }
}

// The temporary file has the old list.
void print(ListAccess& access, const ListEditor& list) {
  const std::string& path = list.path();
  if (list.isChanged() && !list.write(path)) throw libraryFailure(path, sitehlp::c_errorWrite);
  const std::string document = readInput(path).bytes;
  access.discardStream();  // the reader of standard output may make the tool wait
  std::cout << document;
}

}  // namespace

ListAccess::ListAccess(Context& context, const EditOptions& options)
    : m_given(options.file), m_path(options.file.empty() ? ownListPath(context) : options.file) {
  if (!options.dryRun && !isStream()) {
    m_lock.emplace(context, options.file, ListUse::Change);
  } else if (isOwnList(context, options.file)) {
    serveAgent(context);
  }
  serveDetachedAgent(context);
  m_path = isStream() ? m_given.path() : m_path;
}

int performEdit(Context& context, const EditOptions& options,
                const std::function<Outcome(ListEditor&)>& edit) {
  requireWritable(context, options);
  ListAccess access(context, options);
  const std::string& path = access.path();
  failIfNotEditable(path);
  const SiteList before = readWholeSiteList(path);
  ListEditor list(before);
  const Outcome outcome = edit(list);
  Trial trial;
  // A dry run writes nothing beside the list.
  if (list.isChanged()) {
    trial = tryOut(list, !options.dryRun && !access.isStream(), !access.isStream());
  }
  if (options.dryRun) previewEdit(context, before, list.isChanged() ? trial.after : before, path);
  if (!trial.faults.empty() && !options.force) throw refusalOf(path, trial.faults);
  warnOf(path, trial.faults);
  if (options.dryRun) return exitSuccess;
  if (access.isStream()) {
    print(access, list);
    say(path, list.isChanged() ? outcome.done : "nothing to change: " + outcome.already);
  } else if (!list.isChanged()) {
    say(path, "nothing to change: " + outcome.already);
  } else {
    access.requireUnchanged();
    if (!list.write(path)) throw libraryFailure(path, sitehlp::c_errorWrite);
    say(path, outcome.done);
    if (isOwnList(context, options.file)) updateMeshCopy(context);
  }
  return exitSuccess;
}

}  // namespace tool
