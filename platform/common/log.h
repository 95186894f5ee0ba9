#ifndef PLATFORM_COMMON_LOG_H
#define PLATFORM_COMMON_LOG_H

#include <atomic>

#include "platform/common/astring.h"

// The agent's log. Every message names a component and carries one wide text. Any thread may log;
// messages of one process reach the sink one at a time. Nothing here throws or reports a failure: a
// message that cannot be delivered is dropped.

// How much a message matters; also, as a threshold, the lowest level that is delivered.
enum class LogLevel : int {
  Detail = 0,         // progress, for the one who looks for a fault
  Info = 1,           // what an administrator should know
  Error = 2,          // a failed step that ended an operation
  InternalError = 3,  // a misuse of an interface
  Off = 4             // as a threshold: nothing is delivered
};

// The lowest level that is delivered. Read it through logEnabled.
extern PLATFORM_API std::atomic<int> g_logThreshold;

// Whether a message of this level would be delivered: one load and one branch, so that callers can
// leave a text unbuilt.
inline bool logEnabled(LogLevel level) {
  return static_cast<int>(level) >= g_logThreshold.load(std::memory_order_relaxed);
}

// Logs one message at the level in the name. Neither the component nor the text is kept. A null
// component counts as empty.
PLATFORM_API void logDetail(const wchar_t* component, const AString& text) noexcept;
// As logDetail.
PLATFORM_API void logInfo(const wchar_t* component, const AString& text) noexcept;
// As logDetail.
PLATFORM_API void logError(const wchar_t* component, const AString& text) noexcept;
// As logDetail.
PLATFORM_API void logInternalError(const wchar_t* component, const AString& text) noexcept;

// Logs "Enter: <text>" when it is made and "Leave: <text>" when it is destroyed, both at its level.
// Whether it logs is decided once, when it is made. Both pointers must outlive the object.
class PLATFORM_API AScopeTrace {
 public:
  AScopeTrace(const AScopeTrace&) = delete;
  AScopeTrace& operator=(const AScopeTrace&) = delete;

 protected:
  // Made by ADetailTrace and AnInfoTrace alone.
  AScopeTrace(LogLevel level, const wchar_t* component, const wchar_t* text)
      : m_text(logEnabled(level) ? text : nullptr) {
    if (m_text) enter(level, component);
  }
  ~AScopeTrace() {
    if (m_text) leave();
  }

 private:
  void enter(LogLevel level, const wchar_t* component) noexcept;
  void leave() noexcept;

  const wchar_t* m_text;
  const wchar_t* m_component;
  LogLevel m_level;
};

// A trace at detail level.
class PLATFORM_API ADetailTrace : public AScopeTrace {
 public:
  // Logs that `text` is entered.
  ADetailTrace(const wchar_t* component, const wchar_t* text)
      : AScopeTrace(LogLevel::Detail, component, text) {}
};

// A trace at info level.
class PLATFORM_API AnInfoTrace : public AScopeTrace {
 public:
  // Logs that `text` is entered.
  AnInfoTrace(const wchar_t* component, const wchar_t* text)
      : AScopeTrace(LogLevel::Info, component, text) {}
};

#endif
