#include "host/agent.h"

#include <atomic>
#include <utility>

#include "host/config/settings_path.h"
#include "host/detached_agent.h"
#include "host/lock/lock_pool.h"
#include "host/log_sink.h"
#include "host/process/failure_text.h"
#include "host/process/fork_lock.h"
#include "host/process/lasting.h"

namespace host {
namespace {

Lasting<AgentSettings> g_settings;
std::atomic<bool> g_isKnown{false};
std::atomic<bool> g_isDetached{false};

// Returns the settings with full paths.
AgentSettings completed(AgentSettings settings) {
  settings.dataDirectory = fullDirectory(settings.dataDirectory);
  requireUsableLength(settings.dataDirectory);
  settings.meshSiteListPath = pathFrom(settings.dataDirectory, settings.meshSiteListPath);
  return settings;
}

void apply(AgentSettings settings, bool isDetachedNow = false) {
  setLogThreshold(settings.logLevel);
  g_settings.get() = std::move(settings);
  g_isDetached.store(isDetachedNow, std::memory_order_release);
  g_isKnown.store(true, std::memory_order_release);
}

void readDefaultAgent() {
  const ForkLock lock(c_settingsMutex);
  if (g_isKnown.load(std::memory_order_acquire)) return;
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
  apply(completed(settings));
  LockPool::instance().dropIdle();
}

void setDetachedAgent(const AgentSettings& settings) {
  apply(completed(settings), true);
  LockPool::instance().dropIdle();
}

bool isDetached() { return g_isDetached.load(std::memory_order_acquire); }

const AgentSettings& agent() {
  if (!g_isKnown.load(std::memory_order_acquire)) readDefaultAgent();
  return g_settings.get();
}

}  // namespace host
