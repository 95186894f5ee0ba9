#include "fuzz/stage.h"
#include "host/agent.h"

namespace {

bool same(const host::AgentSettings& a, const host::AgentSettings& b) {
  return a.dataDirectory == b.dataDirectory && a.managed == b.managed &&
         a.cryptoKeySize == b.cryptoKeySize && a.meshSiteListPath == b.meshSiteListPath &&
         a.meshLoadCommand == b.meshLoadCommand &&
         a.meshLoadTimeoutSeconds == b.meshLoadTimeoutSeconds &&
         a.maxRecordMegabytes == b.maxRecordMegabytes && a.logLevel == b.logLevel;
}

}  // namespace

// Reads a settings file of any bytes. It must be refused with a reason, or be the same after
// writing and reading.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  test::MemoryFileSystem& files = fuzz::Stage::clear();
  files.put("/agent/agent.toml", std::string(reinterpret_cast<const char*>(data), size));
  host::AgentSettings settings;
  try {
    settings = host::readAgentSettings(fuzz::c_directory);
  } catch (const host::SettingsError& error) {
    fuzz::require(std::string(error.what()).rfind("/agent/agent.toml", 0) == 0,
                  "a refusal names the file");
    return 0;
  }
  files.put("/agent/agent.toml", host::formatAgentSettings(settings));
  fuzz::require(same(host::readAgentSettings(fuzz::c_directory), settings),
                "settings come back as they were");
  return 0;
}
