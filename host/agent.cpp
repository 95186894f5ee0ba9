#include "host/agent.h"

#include <mutex>
#include <utility>

#include "host/common/failure_text.h"
#include "host/config/settings_path.h"
#include "host/lock/lock_pool.h"
#include "host/log_sink.h"

namespace host {
namespace {

struct State {
  std::once_flag once;
  AgentSettings settings;
};

State& state() {
  // Never destroyed: the agent is served until the very end of the process.
  static State& state = *new State;
  return state;
}

// The settings with full paths.
AgentSettings completed(AgentSettings settings) {
  settings.dataDirectory = fullDirectory(settings.dataDirectory);
  requireUsableLength(settings.dataDirectory);
  settings.meshSiteListPath = pathFrom(settings.dataDirectory, settings.meshSiteListPath);
  return settings;
}

void apply(AgentSettings settings) {
  setLogThreshold(settings.logLevel);
  state().settings = std::move(settings);
}

void readDefaultAgent() {
  const AgentSettings defaults;
  try {
    apply(completed(readAgentSettings(defaults.dataDirectory)));
  } catch (const SettingsError& error) {
    apply(completed(defaults));
    logError(c_logComponent, AString(error.what()));
  }
}

}  // namespace

SettingsError::SettingsError(const std::string& text) : std::runtime_error(text) {}
SettingsError::SettingsError(const SettingsError&) noexcept = default;
SettingsError::~SettingsError() = default;

void setAgent(const AgentSettings& settings) {
  AgentSettings full = completed(settings);
  std::call_once(state().once, [] {});
  apply(std::move(full));
  LockPool::instance().dropIdle();
}

const AgentSettings& agent() {
  std::call_once(state().once, readDefaultAgent);
  return state().settings;
}

}  // namespace host
