#include "tools/sitelist/edit/session.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "sitehlp/sites_helper.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/diff/diff.h"
#include "tools/sitelist/edit/backup.h"

namespace fs = std::filesystem;

namespace tool {
namespace {

unsigned int milliseconds(const std::string& seconds) {
  constexpr unsigned long c_most = 86400;
  const bool isNumber = !seconds.empty() && seconds.size() <= 5 &&
                        seconds.find_first_not_of("0123456789") == std::string::npos;
  const unsigned long number = isNumber ? std::strtoul(seconds.c_str(), nullptr, 10) : c_most + 1;
  if (number > c_most) {
    throw Failure(exitUsage, "--wait: \"" + shown(seconds) + "\" is not a number of seconds",
                  "give a number from 0 to " + std::to_string(c_most));
  }
  return static_cast<unsigned int>(number) * 1000;
}

// Whether there is an agent whose locks may be used for a list that is not its own.
bool canLock(const Context& context) {
  return ::access((context.agentDirectory + "/locks").c_str(), R_OK | W_OK | X_OK) == 0;
}

void say(const std::string& path, const std::string& text) {
  std::cerr << "sitelist: " << shown(path) << ": " << text << '\n';
}

// The edited document, as the library reads it.
SiteList readDraft(const ListEditor& list, const std::string& draft) {
  if (!list.write(draft)) throw libraryFailure(draft, sitehlp::c_errorWrite);
  SiteList after = readSiteList(draft);
  after.path = list.path();
  if (list.isAsMeant(after)) return after;
  throw failureAt(
      list.path(), exitDocument,
      "the agent would not read the changed document as intended, so nothing was written",
      "look at the site in the document; its form may be one that the agent reads differently");
}

void previewEdit(Context& context, const SiteList& before, const SiteList& after,
                 const std::string& path) {
  context.report = Diff(before, after, false)
                       .report("What would change in " + shown(path), "Nothing was written.");
}

}  // namespace

bool isOwnList(const Context& context, const EditOptions& options) {
  if (options.file.empty()) return true;
  std::error_code error;
  return fs::weakly_canonical(options.file, error) ==
         fs::weakly_canonical(ownListPath(context), error);
}

ListAccess::ListAccess(const Context& context, const EditOptions& options)
    : m_path(options.file.empty() ? ownListPath(context) : options.file),
      m_lock(sitehlp::c_siteListLock) {
  const bool isGuarded = isOwnList(context, options) || canLock(context);
  const unsigned int wait = milliseconds(options.wait);
  if (isGuarded) serveAgent(context);
  if (isGuarded && !options.dryRun) lock(wait);
  m_private.emplace(context);
}

void ListAccess::lock(unsigned int waitMilliseconds) {
  const std::size_t logged = logRecords().size();
  if (m_lock.lock(waitMilliseconds)) return;
  if (logRecords().size() != logged) {
    throw failureAt(m_path, exitFile, "the agent's locks cannot be used",
                    "check that you may write in the directory \"locks\" of the agent");
  }
  throw failureAt(m_path, exitConflict, "the list is locked by another process",
                  "try again, or wait longer with --wait SECONDS");
}

int performEdit(Context& context, const EditOptions& options,
                const std::function<Outcome(ListEditor&)>& edit) {
  const ListAccess access(context, options);
  const std::string& path = access.path();
  failIfNotEditable(path);
  std::string old;
  if (!readBytes(path, old)) throw libraryFailure(path, sitehlp::c_errorRead);
  const SiteList before = readWholeSiteList(path);
  ListEditor list(before);
  const Outcome outcome = edit(list);
  SiteList after;
  if (list.isChanged()) after = readDraft(list, access.draftPath());
  if (options.dryRun) {
    previewEdit(context, before, list.isChanged() ? after : before, path);
  } else if (!list.isChanged()) {
    say(path, "nothing to change: " + outcome.already);
  } else {
    if (options.backup) writeBackup(path, old);
    if (!list.write(path)) throw libraryFailure(path, sitehlp::c_errorWrite);
    say(path, outcome.done);
  }
  return exitSuccess;
}

int restoreBackup(Context& context, const EditOptions& options) {
  if (options.backup) {
    throw Failure(exitUsage,
                  "--backup cannot be used with restore, which needs the existing backup",
                  "omit --backup");
  }
  const ListAccess access(context, options);
  const std::string& path = access.path();
  const std::string backup = backupPath(path);
  const std::string bytes = readBackup(path);
  failIfNotEditable(backup);
  SiteList after = readWholeSiteList(backup);
  after.path = path;
  std::string present;
  if (options.dryRun) {
    previewEdit(context, readSiteList(path), after, path);
  } else if (readBytes(path, present) && present == bytes) {
    say(path, "nothing to change: the list is the same as its backup");
  } else {
    putBack(path, bytes);
    say(path, "restored from " + shown(backup));
  }
  return exitSuccess;
}

}  // namespace tool
