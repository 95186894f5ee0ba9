#ifndef HOST_AGENT_H
#define HOST_AGENT_H

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/common/log.h"
#include "platform/crypto/key_conf.h"
#include "platform/export.h"

// The agent whose files this process uses. Paths and commands are UTF-8.
namespace host {

// The settings of an agent. A member that is not set has its default.
struct AgentSettings {
  // Where the agent keeps its files: etc/ (site lists and key files), locks/, keystore/.
  std::string dataDirectory = "/Library/Korvel/orb";
  // Whether the agent is under central management.
  bool managed = false;
  // The size of the management server's keys. CSitesHelper::CreateServerSiteList adjusts passwords
  // only for 2048 bits.
  korvel_com::ZQ::crypto::KeySize cryptoKeySize = korvel_com::ZQ::crypto::KEY_SIZE_2048;
  // Path of the mesh copy. Empty means <dataDirectory>/mesh/SiteList.xml.
  std::string meshSiteListPath;
  // The load command: the full path of a program, and its arguments. It is started without a shell.
  // Without a command every load fails.
  std::vector<std::string> meshLoadCommand;
  // The number of seconds that the load command may run before it is terminated: 1 to 86,400.
  unsigned int meshLoadTimeoutSeconds = 60;
  // The memory that the records of one site list may take, in megabytes of 2^20 bytes: 1 to
  // 1,048,576.
  unsigned int maxRecordMegabytes = 1024;
  // The number of replaced site lists that `sitelist` keeps: 0 to 10,000. The libraries keep none.
  unsigned int historyLength = 10;
  // The lowest level that reaches the log.
  LogLevel logLevel = LogLevel::Error;
};

// Thrown for settings that cannot be used. what() returns the reason and the place: either the file
// with line and column, or the data directory.
class PLATFORM_API SettingsError : public std::runtime_error {
 public:
  explicit SettingsError(const std::string& text);  // what() returns `text`
  SettingsError(const SettingsError&) noexcept;     // does not throw
  ~SettingsError() override;
};

// Sets the agent whose files this process uses from now on, and the log threshold. Closes the
// unused lock files of the previous agent. Each of its keys is released when the process next uses
// a key of the same type. A process usually calls this once, before the first site list operation.
// It must not be called while another thread uses the library.
//
// Throws SettingsError if the full path <dataDirectory>/etc has more than 259 characters, because
// the library would cut such a path and use another directory. The current settings are then
// unchanged.
PLATFORM_API void setAgent(const AgentSettings& settings);

// Returns the current settings. If the process has not called setAgent, the first use reads them
// from agent.toml in the default data directory. Without that file, the settings are the defaults
// above. If the file cannot be used, they are the defaults as well, and an error is logged. Any
// thread.
PLATFORM_API const AgentSettings& agent();

// Reads <dataDirectory>/agent.toml. A setting that is not in the file has its default. A relative
// path is relative to the data directory. An unknown setting is an error. Without the file, returns
// the defaults. Throws SettingsError if the file cannot be used, or if the data directory is too
// long for setAgent.
PLATFORM_API AgentSettings readAgentSettings(const std::string& dataDirectory);

// Returns the text of an agent.toml with these settings. The data directory is not in the text,
// because it is the directory of the file.
PLATFORM_API std::string formatAgentSettings(const AgentSettings& settings);

}  // namespace host

#endif
