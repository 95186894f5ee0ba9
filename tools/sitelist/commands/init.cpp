#include <sys/types.h>

#include <filesystem>
#include <iostream>
#include <system_error>

#include "host/agent.h"
#include "host/fs/files.h"
#include "platform/crypto/crypt_shim.h"
#include "platform/lock/interprocess_lock.h"
#include "sitehlp/sites_helper.h"
#include "tools/sitelist/agent/agent_access.h"
#include "tools/sitelist/agent/change_watch.h"
#include "tools/sitelist/agent/owner.h"
#include "tools/sitelist/agent/password_check.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/full_path.h"
#include "tools/sitelist/cli/input.h"
#include "tools/sitelist/cli/log_record.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/commands/command.h"

namespace fs = std::filesystem;

namespace tool {
namespace {

constexpr mode_t c_modeOfDirectory = 0755;
constexpr mode_t c_modeOfKeyDirectory = 0700;
constexpr mode_t c_modeOfSettings = 0640;

struct InitOptions {
  bool managed = false;
  bool hasMeshCommand = false;
  std::string meshPath;
  std::string owner;  // empty: the owner is not changed
};

Failure cannotMake(const std::string& path, const std::string& reason) {
  return failureAt(path, exitFile, "cannot be created: " + reason,
                   "check the path and that you may write there");
}

void makeDirectory(const std::string& path, mode_t mode) {
  const int error = host::makeDirectories(path, mode);
  if (error != 0) throw cannotMake(path, std::generic_category().message(error));
}

// All that is created in the directory later belongs to its owner.
void makeDataDirectory(const std::string& directory, const std::string& owner) {
  if (owner.empty()) return;
  const Owner found = findOwner(owner);
  makeDirectory(directory, c_modeOfDirectory);
  giveDirectory(directory, found);
}

void makeLocks(Context& context) {
  using namespace korvel_com::orb::lock;  // NOLINT(google-build-using-namespace)
  for (const char* name : {sitehlp::c_siteListLock, sitehlp::smartSiteListLock}) {
    if (!InterProcessWriteLock(name).lock(c_waitForEver)) {
      throw cannotMake(context.agentDirectory + "/locks", "the lock files cannot be used");
    }
  }
}

void makePasswordKey(Context& context) {
  using namespace korvel_com::ZQ::crypto;
  IEncryption* const object =
      CryptShim::instance()->create_encryption_object(ENCRYPTION_TYPE_PASSWORD);
  CryptShim::instance()->destroy_encryption_object(object);
  if (!object) {
    throw failureAt(context.agentDirectory + "/keystore", exitCrypto,
                    "the password key cannot be created", "check that you may write there");
  }
}

host::AgentSettings settingsFrom(Context& context, const InitOptions& options) {
  host::AgentSettings settings;
  settings.dataDirectory = context.agentDirectory;
  settings.managed = options.managed;
  settings.meshLoadCommand = context.meshCommand;
  if (!options.meshPath.empty()) {
    settings.meshSiteListPath = fullPath(options.meshPath);
  }
  if (options.hasMeshCommand &&
      (context.meshCommand.empty() || !fs::path(context.meshCommand.front()).is_absolute())) {
    throw Failure(exitUsage, "--mesh-command: the full path of a program is missing",
                  "end the command line with --mesh-command /full/path/of/program ARG...");
  }
  return settings;
}

// The settings file is written last, so a failed attempt can be repeated.
int init(Context& context, const InitOptions& options) {
  refuseStandardStream(options.meshPath, "--mesh-path");
  const std::string& directory = context.agentDirectory;
  const std::string settingsFile = directory + "/agent.toml";
  const host::AgentSettings settings = settingsFrom(context, options);
  std::error_code error;
  if (fs::exists(fs::symlink_status(settingsFile, error))) {
    throw failureAt(settingsFile, exitConflict, "there is already an agent in this directory",
                    "edit this file to change its settings, or name another directory with "
                    "--agent-dir");
  }
  host::setAgent(settings);
  recordLog(context.verbose);
  PasswordCheck(context, false)
      .requireKeyOfOwnList("restore the key file from a backup, or move the list to another place");
  const ChangeWatch watch(context, filesOfAgent(context));
  makeDataDirectory(directory, options.owner);
  for (const char* name : {"/etc", "/mesh", "/locks"}) {
    makeDirectory(directory + name, c_modeOfDirectory);
  }
  makeDirectory(directory + "/keystore", c_modeOfKeyDirectory);
  makeLocks(context);
  makePasswordKey(context);
  const std::string text = host::formatAgentSettings(settings);
  const int failed = host::replaceFile(settingsFile, text.data(), text.size(), c_modeOfSettings);
  if (failed != 0) throw cannotMake(settingsFile, std::generic_category().message(failed));
  std::cerr << "sitelist: created a" << (options.managed ? " managed" : "n unmanaged")
            << " agent in " << shown(directory) << '\n';
  return exitSuccess;
}

}  // namespace

void addInit(Command& app, Context& context) {
  Command command =
      app.add_subcommand("init", "Create the data directory and settings of an agent");
  const auto options = std::make_shared<InitOptions>();
  command.add_flag("--managed", options->managed, "The agent is under central management");
  command
      .add_option("--mesh-path", options->meshPath,
                  "Path of the mesh copy, the list for the mesh service\n(default: "
                  "mesh/SiteList.xml in the data directory)")
      .type_name("PATH");
  command
      .add_option(
          "--owner", options->owner,
          "The user of the agent, to whom its directories and files\nbelong. Only root can name "
          "another user.")
      .type_name("USER")
      .not_empty();
  // main() has already moved the words after this option to Context::meshCommand.
  command
      .add_flag("--mesh-command", options->hasMeshCommand,
                "Command that makes the mesh service load the mesh copy:\n"
                "the full path of a program, and its arguments. All\n"
                "arguments after this option belong to the command. Put\n"
                "this option last.")
      .type_name("PROGRAM ARG...");
  command.footer(
      "Creates the directories, the settings file agent.toml, the lock files and the\n"
      "password key. If there is already an agent.toml, the command fails and changes\n"
      "nothing.\n"
      "\n"
      "Examples:\n"
      "  sitelist --agent-dir ./agent init\n"
      "  sudo sitelist init --owner agent\n"
      "  sitelist --agent-dir ./agent init --managed \\\n"
      "      --mesh-command /usr/bin/logger -t mesh 'new site list'\n");
  command.callback([&context, options] {
    context.action = [&context, options] { return init(context, *options); };
  });
}

}  // namespace tool
