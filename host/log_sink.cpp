#include "host/log_sink.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "host/common/encoding.h"
#include "host/common/level_names.h"
#include "host/process/fork_lock.h"
#include "host/process/lasting.h"

std::atomic<int> g_logThreshold{static_cast<int>(LogLevel::Error)};

namespace host {
namespace {

// A message must be one line, and a text in it must not control a terminal.
std::string oneLine(std::wstring text) {
  for (wchar_t& c : text) {
    if (c < 0x20 || (c >= 0x7F && c < 0xA0)) c = L'?';
  }
  return toUtf8(text);
}

// Writes one line for each message with a single write of the stream.
class StandardError {
 public:
  void operator()(LogLevel level, const std::wstring& component, const std::wstring& text) {
    if (!m_logger) {
      m_logger =
          std::make_shared<spdlog::logger>("", std::make_shared<spdlog::sinks::stderr_sink_st>());
      m_logger->set_level(spdlog::level::trace);
      m_logger->set_pattern("%Y-%m-%dT%H:%M:%S.%e%z %v");
    }
    m_logger->info("{} {}: {}", levelName(level), oneLine(component), oneLine(text));
  }

 private:
  std::shared_ptr<spdlog::logger> m_logger;
};

struct Output {
  LogSink sink HOST_GUARDED_BY(c_logMutex) = StandardError();
};

// Never destroyed, because destructors at the end of the process may log
Lasting<Output> g_output;

void deliver(LogLevel level, const wchar_t* component, const wchar_t* prefix,
             std::wstring_view text) noexcept {
  try {
    const std::wstring componentText = component ? component : L"";
    const std::wstring whole = std::wstring(prefix).append(text);
    Output& output = g_output.get();
    const ForkLock lock(c_logMutex);
    output.sink(level, componentText, whole);
  } catch (...) {
    // A failure to log must not change the result of the operation.
  }
}

void logAt(LogLevel level, const wchar_t* component, const AString& text) noexcept {
  if (logEnabled(level)) deliver(level, component, L"", text.str());
}

}  // namespace

void setLogSink(LogSink sink) {
  if (!sink) sink = StandardError();
  Output& output = g_output.get();
  const ForkLock lock(c_logMutex);
  output.sink.swap(sink);
}

void setLogThreshold(LogLevel level) {
  g_logThreshold.store(static_cast<int>(level), std::memory_order_relaxed);
}

}  // namespace host

void logDetail(const wchar_t* component, const AString& text) noexcept {
  host::logAt(LogLevel::Detail, component, text);
}

void logInfo(const wchar_t* component, const AString& text) noexcept {
  host::logAt(LogLevel::Info, component, text);
}

void logError(const wchar_t* component, const AString& text) noexcept {
  host::logAt(LogLevel::Error, component, text);
}

void logInternalError(const wchar_t* component, const AString& text) noexcept {
  host::logAt(LogLevel::InternalError, component, text);
}

void AScopeTrace::enter(LogLevel level, const wchar_t* component) noexcept {
  m_level = level;
  m_component = component;
  host::deliver(m_level, m_component, L"Enter: ", m_text);
}

void AScopeTrace::leave() noexcept { host::deliver(m_level, m_component, L"Leave: ", m_text); }
