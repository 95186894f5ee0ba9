#include "tools/sitelist/agent/agent_access.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "host/detached_agent.h"
#include "host/fs/files.h"
#include "tools/sitelist/agent/lost_passwords.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/cli/text.h"

namespace fs = std::filesystem;

namespace tool {
namespace {

// A path that cannot be a directory.
constexpr const char* c_noDirectory = "/dev/null";

host::AgentSettings settingsOf(const Context& context) {
  try {
    return host::readAgentSettings(context.agentDirectory);
  } catch (const host::SettingsError& e) {
    const std::string path = context.agentDirectory + "/agent.toml";
    std::string bytes;
    const int error = tryReadBytes(path, bytes);
    if (error != 0 && error != ENOENT) {
      throw failureAt(path, exitFile, "cannot be read: " + readFailureReason(error), c_checkFile);
    }
    throw Failure(exitDocument, shown(std::string(e.what())),
                  "correct the settings file, or rename it and run `sitelist init`",
                  {path, 0, 0, 0});
  }
}

void serveDetached(const Context& context, const host::AgentSettings& settings) {
  host::setDetachedAgent(settings);
  recordLog(context.verbose);
}

}  // namespace

std::string ownListPath(const Context& context) {
  return context.agentDirectory + "/etc/SiteList.xml";
}

bool isOwnList(const Context& context, const std::string& file) {
  if (file.empty()) return true;
  // One file can have two canonical paths, for example through a mount or in another case.
  bool isOne = false;
  if (host::wouldReplace(file, ownListPath(context), isOne) == 0 && isOne) return true;
  std::error_code error;
  return fs::weakly_canonical(file, error) == fs::weakly_canonical(ownListPath(context), error);
}

void requireDataDirectory(const Context& context) {
  std::error_code error;
  if (!fs::is_directory(context.agentDirectory, error)) {
    if (error && error != std::errc::no_such_file_or_directory &&
        error != std::errc::not_a_directory) {
      throw failureAt(context.agentDirectory, exitFile,
                      "the agent's data directory cannot be read: " + error.message(),
                      "check the path, or name another directory with --agent-dir");
    }
    throw failureAt(context.agentDirectory, exitFile, "the agent's data directory does not exist",
                    "name another directory with --agent-dir, or create one with `sitelist init`");
  }
}

void serveAgent(const Context& context) {
  requireDataDirectory(context);
  host::setAgent(settingsOf(context));
  recordLog(context.verbose);
}

void requirePasswordKey(const Context& context) {
  const int error = passwordKeyError(context.agentDirectory);
  const std::string path = passwordKeyPath(context.agentDirectory);
  if (error == ENOENT) {
    throw failureAt(path, exitCrypto, "the agent has no password key",
                    "restore the key file, or create the agent with `sitelist init`");
  }
  if (error != 0) {
    throw failureAt(
        path, exitCrypto,
        "the password key cannot be examined: " + std::generic_category().message(error),
        "check that you may read the directory \"keystore\" of the agent");
  }
}

void serveDetachedAgent(const Context& context) { serveDetached(context, settingsOf(context)); }

void serveNoAgent(const Context& context) {
  host::AgentSettings settings;
  settings.dataDirectory = c_noDirectory;
  serveDetached(context, settings);
}

void serveForPreview(const Context& context) {
  serveAgent(context);
  serveDetachedAgent(context);
}

void serveForPrinting(const Context& context) {
  serveAgent(context);
  requirePasswordKey(context);
  serveDetachedAgent(context);
}

void requirePrintable(const Context& context, const std::string& list, const std::string& advice) {
  if (formatOf(context) == Format::Table) return;
  throw Failure(exitUsage, list + " is an XML document and has no other format",
                "omit --format, or " + advice);
}

AgentForReading::AgentForReading(Context& context, const std::string& file, ListUse use)
    : m_given(file), m_path(file.empty() ? ownListPath(context) : m_given.path()) {
  if (file.empty()) m_lock.emplace(context, file, use);
  if (!file.empty() ||
      (passwordKeyError(context.agentDirectory) == ENOENT && !sitesWithPasswords(m_path).empty())) {
    serveDetachedAgent(context);
  }
}

AgentForWriting::AgentForWriting(Context& context, const std::string& file) : m_path(file) {
  // Passwords are encrypted with the real password key, so that key must exist.
  serveAgent(context);
  m_lock.emplace(context, file, ListUse::Change);
  if (isOwnList(context, file)) return;
  requirePasswordKey(context);
  serveDetachedAgent(context);
}

void AgentForWriting::write(SiteList& list) const {
  m_lock->requireUnchanged();
  writeSiteList(list, m_path);
}

}  // namespace tool
