#ifndef HOST_AGENT_H
#define HOST_AGENT_H

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/common/log.h"
#include "platform/crypto/key_conf.h"
#include "platform/export.h"

// Which agent this process serves. Paths and commands are UTF-8.
namespace host {

// What an agent is like; a member that is not set has its default.
struct AgentSettings {
  // Where the agent keeps its files: etc/ (site lists and key files), locks/, keystore/.
  std::string dataDirectory = "/Library/Korvel/orb";
  // Whether the agent is under central management.
  bool managed = false;
  // The size of the server's keys, which decides what is done with a server list from memory.
  korvel_com::ZQ::crypto::KeySize cryptoKeySize = korvel_com::ZQ::crypto::KEY_SIZE_2048;
  // The mesh service's copy of the site list; empty means <dataDirectory>/mesh/SiteList.xml.
  std::string meshSiteListPath;
  // The program, by full path, and its arguments that make the mesh service load its copy. It is
  // started without a shell. Empty means that there is none, and every load fails.
  std::vector<std::string> meshLoadCommand;
  // How long that program may run before it is ended, 1 to 86,400 seconds.
  unsigned int meshLoadTimeoutSeconds = 60;
  // How much memory the records of one site list may take, 1 to 1,048,576 megabytes of 2^20 bytes.
  unsigned int maxRecordMegabytes = 1024;
  // The lowest level that reaches the log.
  LogLevel logLevel = LogLevel::Error;
};

// Settings that cannot be used. what() names the file and the place, or the data directory, and the
// reason.
class PLATFORM_API SettingsError : public std::runtime_error {
 public:
  explicit SettingsError(const std::string& text);  // what() will say `text`
  SettingsError(const SettingsError&) noexcept;     // never fails, as a copy of an error must not
  ~SettingsError() override;
};

// Says which agent this process serves from now on; keys and locks that belonged to another agent
// are let go. Meant to be called once, before the first site list operation; never while another
// thread uses the library. Also sets the log threshold. Throws SettingsError when the full path
// <dataDirectory>/etc has more than 259 characters; the settings in force then stay as they were.
// The library would cut such a path and use another directory.
PLATFORM_API void setAgent(const AgentSettings& settings);

// The settings in force. At the first use in a process that never called setAgent they come from
// agent.toml in the default data directory; without that file the defaults above hold; with one
// that cannot be used the defaults hold and an error is logged. Any thread.
PLATFORM_API const AgentSettings& agent();

// Reads <dataDirectory>/agent.toml. Settings that the file does not name keep their defaults, a
// relative path counts from the data directory, and an unknown setting is an error. Without the
// file the defaults are returned. Throws SettingsError, also for a data directory that is too long
// for setAgent.
PLATFORM_API AgentSettings readAgentSettings(const std::string& dataDirectory);

// The text of an agent.toml that says what `settings` say, except the data directory, which is the
// directory that the file is in.
PLATFORM_API std::string formatAgentSettings(const AgentSettings& settings);

}  // namespace host

#endif
