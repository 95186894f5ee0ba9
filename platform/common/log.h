#ifndef PLATFORM_COMMON_LOG_H
#define PLATFORM_COMMON_LOG_H

#include <atomic>

#include "platform/common/astring.h"

// The agent's log. Every message has a component and one wide text. Any thread may log. The
// messages of one process reach the sink one at a time. Nothing here throws. A message that cannot
// be delivered is dropped.

// The level of a message. As a threshold: the lowest level that is delivered.
enum class LogLevel : int {
  Detail = 0,         // progress, for troubleshooting
  Info = 1,           // what an administrator should know
  Error = 2,          // a failed step that ended an operation
  InternalError = 3,  // an interface was used wrongly
  Off = 4             // as a threshold: nothing is delivered
};

// The lowest level that is delivered. Read it through logEnabled.
extern PLATFORM_API std::atomic<int> g_logThreshold;

// Returns whether a message of this level would be delivered. It costs one load and one branch.
// Callers use it to avoid building a text that would be dropped.
inline bool logEnabled(LogLevel level) {
  return static_cast<int>(level) >= g_logThreshold.load(std::memory_order_relaxed);
}

// Logs one message at the level in the function's name. Keeps no pointer to its arguments. A null
// component means an empty one.
PLATFORM_API void logDetail(const wchar_t* component, const AString& text) noexcept;
// As logDetail.
PLATFORM_API void logInfo(const wchar_t* component, const AString& text) noexcept;
// As logDetail.
PLATFORM_API void logError(const wchar_t* component, const AString& text) noexcept;
// As logDetail.
PLATFORM_API void logInternalError(const wchar_t* component, const AString& text) noexcept;

// Logs "Enter: <text>" when it is created and "Leave: <text>" when it is destroyed. The threshold
// is checked once, when it is created. `component` and `text` must outlive the object.
class PLATFORM_API AScopeTrace {
 public:
  AScopeTrace(const AScopeTrace&) = delete;
  AScopeTrace& operator=(const AScopeTrace&) = delete;

 protected:
  // Only ADetailTrace and AnInfoTrace use this.
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
  // Logs "Enter: <text>".
  ADetailTrace(const wchar_t* component, const wchar_t* text)
      : AScopeTrace(LogLevel::Detail, component, text) {}
};

// A trace at info level.
class PLATFORM_API AnInfoTrace : public AScopeTrace {
 public:
  // Logs "Enter: <text>".
  AnInfoTrace(const wchar_t* component, const wchar_t* text)
      : AScopeTrace(LogLevel::Info, component, text) {}
};

#endif
