#include "tools/sitelist/agent/incoming.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>

#include "host/fs/files.h"
#include "sitehlp/common/log_texts.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/incoming_check.h"
#include "tools/sitelist/agent/key_files.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/library_failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/messages.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/model/site_list.h"
#include "tools/sitelist/validate/validation.h"

namespace tool {
namespace {

constexpr const char* c_fixErrors = "fix these errors; `sitelist explain-rule RULE` says how";
constexpr const char* c_noKeyFiles = "the key files that belong to the list could not be copied";

bool begins(const std::wstring& text, const std::wstring& start) {
  return text.rfind(start, 0) == 0;
}

bool wasLogged(const std::wstring& start) {
  for (const LogRecord& record : logRecords()) {
    if (begins(record.text, start)) return true;
  }
  return false;
}

// Returns which key files of the list cannot be used, with the reason, one in each line.
std::string unusableKeyFiles(const IncomingOptions& options, bool isVersioned) {
  namespace fs = std::filesystem;
  const fs::path directory =
      isVersioned ? fs::path(options.file).parent_path() : fs::path(options.keyDirectory);
  std::string text;
  for (const wchar_t* name : c_keyFiles) {
    const std::string path = (directory / narrow(name)).string();
    const std::string reason = whyUnusable(path);
    if (!reason.empty()) text += "\n  " + shown(path) + ": " + reason;
    if (!isVersioned) break;
  }
  return text;
}

// Returns a failure with all faults.
Failure refusal(const std::string& file, int code) {
  std::string text =
      shown(file) + ": the list was refused and nothing was changed (" + formatCode(code) + ")";
  for (const Fault& fault : loggedFaults(file)) text += "\n  " + lineOf(file, fault);
  return Failure(exitNegative, text, c_fixErrors, {file, code});
}

// The library stops at this fault. A checked import also reports the other errors.
Failure unknownSiteFailure(const IncomingOptions& options) {
  const Failure last = lastSiteFailure(options.file);
  std::string others;
  if (options.isChecked) {
    const bool isManaged = sitehlp::CSitesHelper(true).IsOrbManaged() != 0;
    for (const Fault& fault : validateList({options.file, options.file}, isManaged)) {
      const bool isOther = std::string(fault.rule->name) != "unknown-site";
      if (isOther && fault.rule->severity == Severity::Error) {
        others.append("\n  ").append(lineOf(options.file, fault));
      }
    }
    clearLogRecords();
  }
  return Failure(last.status(), last.what() + others, others.empty() ? last.advice() : c_fixErrors,
                 last.origin());
}

}  // namespace

void failIfNotWritten(const std::string& list, int code) {
  const std::string directory = std::filesystem::path(list).parent_path().string();
  std::vector<std::string> paths = {directory, list};
  for (const wchar_t* name : c_keyFiles) paths.push_back(directory + "/" + narrow(name));
  for (const std::string& path : paths) {
    LoggedReason logged = takeReasonOfWrite(path);
    if (logged.reason.empty() && wasLogged(sitehlp::log_texts::c_notWritable + wide(path)) &&
        ::access(path.c_str(), W_OK) != 0) {
      logged.reason = std::strerror(errno);
    }
    if (logged.reason.empty()) continue;
    throw libraryFailure(path, code, exitFile, "the agent's files could not be written",
                         logged.advice.empty()
                             ? "check that you may write there and that there is free space"
                             : logged.advice,
                         "\n  " + logged.reason);
  }
}

void failOwnFiles(const IncomingOptions& options, const std::string& ownList, int code) {
  if (wasLogged(sitehlp::log_texts::c_listNotCreated)) {
    throw writeFailure(ownList, code, "the list could not be written");
  }
  failIfNotWritten(ownList, code);
  const bool isVersioned = hasVersionedServer(readSiteList(options.file).sites.get());
  if (isVersioned && options.isStream) {
    throw libraryFailure(options.file, code, exitCrypto, c_noKeyFiles,
                         "save the list to a file next to its key files, and name that file",
                         "\n  it is read from a stream, so there is no directory with key files");
  }
  throw libraryFailure(
      options.file, code, exitCrypto, c_noKeyFiles,
      isVersioned
          ? "put srpubkey.bin and reqseckey.bin, or sr2048pubkey.bin and req2048seckey.bin,\n"
            "  next to the list; they must not be empty"
          : "put a srpubkey.bin that is not empty into the directory of --keys, or omit --keys",
      unusableKeyFiles(options, isVersioned));
}

void failIncoming(const IncomingOptions& options, const std::string& ownList, int code) {
  const auto document = findReadError(options.file);
  if (code == sitehlp::c_errorValidation || code == sitehlp::c_errorNoServerSite ||
      code == sitehlp::c_errorNoPath) {
    throw refusal(options.file, code);
  }
  if (code == sitehlp::c_errorGeneral && !document) {
    const int result = readSiteList(options.file).result;
    if (result == code) throw unknownSiteFailure(options);
    if (result == 0) failOwnFiles(options, ownList, code);
  }
  throw libraryFailure(options.file, code);
}

namespace {

std::wstring globalVersionOf(const std::string& path) {
  std::wstring global;
  std::wstring local;
  std::wstring type;
  sitehlp::CSitesHelper(true).GetSitelistVersions(wide(path), global, local, type);
  return global;
}

// A management server uses the time as the global version. Other versions have no order.
bool isTime(const std::wstring& version) {
  constexpr std::size_t digits = 14;
  return version.size() == digits && version.find_first_not_of(L"0123456789") == std::wstring::npos;
}

// Prints notes from the log about the import.
void reportNotes(const std::string& file) {
  for (const LogRecord& record : logRecords()) {
    if (begins(record.text, sitehlp::log_texts::c_importedList)) {
      printWarning(
          shown(file) +
          ": the next list from the management server will overwrite this one (policy setting "
          "\"OverwriteClientSites\")");
    } else if (record.text == sitehlp::log_texts::c_ordersExchanged) {
      std::cerr << "sitelist: swapped the orders of the default vendor repositories, so that the "
                   "HTTP one comes first\n";
    }
  }
}

}  // namespace

void refuseOlder(const IncomingOptions& options, const std::string& ownList) {
  std::error_code error;
  if (options.allowsOlder || !std::filesystem::exists(ownList, error)) return;
  const std::wstring own = globalVersionOf(ownList);
  const std::wstring incoming = globalVersionOf(options.file);
  if (!isTime(own) || !isTime(incoming) || incoming >= own) return;
  throw failureAt(options.file, exitConflict,
                  "the list is older than the agent's own list: its global version is " +
                      shown(incoming) + ", that of the agent's own list is " + shown(own),
                  "use a newer list, or --allow-older");
}

void addIncomingOptions(Command& command, IncomingOptions& options) {
  command.add_option("FILE", options.file, "The incoming site list; - means standard input")
      .required()
      .type_name("");
  command
      .add_option("--keys", options.keyDirectory,
                  "Directory of the management server's public key, for a\nlist whose server has "
                  "no version")
      .type_name("DIR");
  command.add_flag("--allow-older", options.allowsOlder,
                   "Accept a list with an older global version than that of\nthe agent's own list");
  command.add_flag("--dry-run", options.dryRun,
                   "Show the changes to the agent's own list, the key files\nand the FIPS marker; "
                   "write nothing");
  addAllowLostPasswords(command, options.allowLostPasswords);
}

void useGivenFile(IncomingOptions& options, GivenFile& file) {
  refuseStandardStream(options.keyDirectory, "--keys");
  options.file = file.path();
  options.isStream = file.isStream();
}

// A list from standard input stays stored while the load command runs, because the library reads
// the list and runs the command in one operation. The command has a time limit.
int takeIncoming(Context& context, IncomingOptions options) {
  GivenFile file(options.file);
  if (options.dryRun) {
    useGivenFile(options, file);
    return previewIncoming(context, options);
  }
  const ListLock lock(context, "", ListUse::Change);
  useGivenFile(options, file);
  const std::string ownList = ownListPath(context);
  requireIncomingList(options);
  refuseOlder(options, ownList);
  PasswordCheck passwords(context, options.allowLostPasswords);
  passwords.requireKeyOfOwnList();
  passwords.requireEncryptable(options.file);
  sitehlp::CSitesHelper helper(wide(ownList));
  const int result = options.isChecked
                         ? helper.ImportSiteList(wide(options.file), wide(options.keyDirectory))
                         : helper.InstallSiteList(wide(options.file), wide(options.keyDirectory));
  if (result != 0) failIncoming(options, ownList, result);
  reportNotes(options.file);
  file.discard();  // the end of the lock may wait for another process
  passwords.warn(false);
  const SiteList now = readSiteList(ownList);
  std::cerr << "sitelist: " << shown(ownList) << " now has " << countEntries(now.sites.get())
            << ", global version " << shown(now.globalVersion) << '\n';
  return exitSuccess;
}

}  // namespace tool
