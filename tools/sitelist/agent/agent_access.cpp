#include "tools/sitelist/agent/agent_access.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>

#include "host/agent.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/text.h"

namespace fs = std::filesystem;

namespace tool {
namespace {

constexpr std::size_t c_keyBytes = 32;  // of a password key

host::AgentSettings settingsOf(const Context& context) {
  try {
    return host::readAgentSettings(context.agentDirectory);
  } catch (const host::SettingsError& e) {
    throw Failure(exitDocument, shown(std::string(e.what())),
                  "correct the settings file, or rename it and run `sitelist init`",
                  {context.agentDirectory + "/agent.toml", 0, 0, 0});
  }
}

std::string makeTemporaryDirectory() {
  std::string pattern = (fs::temp_directory_path() / "sitelist-XXXXXX").string();
  if (!::mkdtemp(pattern.data())) {
    throw failureAt(
        pattern, exitFile,
        "cannot create a temporary directory: " + std::generic_category().message(errno),
        "free space there, or set TMPDIR to another directory");
  }
  return pattern;
}

// The crypto service would create a missing key durably. That takes longer than reading a list, so
// a private agent gets this key.
void makeKeyThatOpensNothing(const std::string& directory) {
  std::error_code error;
  fs::create_directory(directory, error);
  fs::permissions(directory, fs::perms::owner_all, error);
  std::random_device random;
  std::string key(c_keyBytes, '\0');
  for (char& byte : key) byte = static_cast<char>(random());
  const std::string file = directory + "/password.key";
  std::ofstream(file, std::ios::binary) << key;
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write, error);
}

}  // namespace

std::string ownListPath(const Context& context) {
  return context.agentDirectory + "/etc/SiteList.xml";
}

bool isOwnList(const Context& context, const std::string& file) {
  if (file.empty()) return true;
  std::error_code error;
  return fs::weakly_canonical(file, error) == fs::weakly_canonical(ownListPath(context), error);
}

void serveAgent(const Context& context) {
  std::error_code error;
  if (!fs::is_directory(context.agentDirectory, error)) {
    throw failureAt(context.agentDirectory, exitFile, "the agent's data directory does not exist",
                    "name another directory with --agent-dir, or create one with `sitelist init`");
  }
  host::setAgent(settingsOf(context));
  recordLog(context.verbose);
}

void requirePasswordKey(const Context& context) {
  std::error_code error;
  if (!fs::exists(context.agentDirectory + "/keystore/password.key", error)) {
    throw failureAt(context.agentDirectory + "/keystore/password.key", exitCrypto,
                    "the agent has no password key", "create the agent with `sitelist init`");
  }
}

PrivateAgent::PrivateAgent(const Context& context, Relation relation)
    : m_directory(makeTemporaryDirectory()) {
  host::AgentSettings settings;
  if (relation == InPlaceOfReal) settings = settingsOf(context);
  settings.dataDirectory = m_directory;
  settings.meshSiteListPath.clear();
  settings.meshLoadCommand = {"/bin/sh", "-c", ":"};
  std::error_code error;
  fs::create_directory(m_directory + "/mesh", error);
  const std::string keystore = context.agentDirectory + "/keystore";
  if (relation == InPlaceOfReal && fs::exists(keystore + "/password.key", error)) {
    fs::create_directory_symlink(keystore, m_directory + "/keystore", error);
  } else {
    makeKeyThatOpensNothing(m_directory + "/keystore");
  }
  host::setAgent(settings);
  recordLog(context.verbose);
  replaceInLog(m_directory + "/keystore", keystore);
}

PrivateAgent::~PrivateAgent() {
  std::error_code ignored;
  fs::remove_all(m_directory, ignored);
}

AgentForReading::AgentForReading(const Context& context, const std::string& file)
    : m_path(file.empty() ? ownListPath(context) : file) {
  if (file.empty()) {
    m_lock.emplace(context, file, ListUse::Read);
  } else {
    m_private.emplace(context);
  }
}

AgentForWriting::AgentForWriting(const Context& context, const std::string& file) : m_path(file) {
  // Passwords are encrypted with the real password key, so that key must exist.
  serveAgent(context);
  if (!file.empty()) {
    m_lock.emplace(context, file, ListUse::Change);
    if (isOwnList(context, file)) return;
  }
  requirePasswordKey(context);
  m_private.emplace(context);
  if (file.empty()) m_path = m_private->directory() + "/SiteList.xml";
}

void AgentForWriting::write(SiteList& list) const {
  if (m_lock) m_lock->requireUnchanged();
  writeSiteList(list, m_path);
}

}  // namespace tool
