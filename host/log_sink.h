#ifndef HOST_LOG_SINK_H
#define HOST_LOG_SINK_H

#include <functional>
#include <string>

#include "platform/common/log.h"
#include "platform/export.h"

namespace host {

// Receives each message at or above the threshold. It is called on the thread that logs, by one
// thread at a time. A sink must neither fork nor call the library or the platform interface. An
// exception that a sink throws is dropped. A fork waits until the sink has returned. A sink must
// therefore not wait for a mutex that a thread may hold while it forks. This includes the mutexes
// that fork handlers of the program take.
using LogSink =
    std::function<void(LogLevel level, const std::wstring& component, const std::wstring& text)>;

// Replaces the sink of this process. An empty function restores the default, which writes one line
// per message to standard error: time, level, component, text. Any thread.
PLATFORM_API void setLogSink(LogSink sink);

// Sets the lowest level that is delivered. Any thread.
PLATFORM_API void setLogThreshold(LogLevel level);

}  // namespace host

#endif
