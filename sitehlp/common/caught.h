#ifndef SITEHLP_COMMON_CAUGHT_H
#define SITEHLP_COMMON_CAUGHT_H

#include <string>

namespace sitehlp {

// Logs the exception that is being handled as one error line: what failed, the file at `path`, and
// the reason. `what` must be the start of the line. Must be called in a handler that does not
// rethrow the exception. The line is dropped if there is not enough memory to build it.
void logCaught(const wchar_t* what, const std::wstring& path) noexcept;

// Logs the reason of a failure as one error line of component "Host". Use it if the other log lines
// of the failure give no reason.
void logCause(const std::wstring& text) noexcept;

// Logs one error line of the class. The line is dropped if there is not enough memory to build it.
// Never throws, so it cannot change the caller's result or lose a list.
void logFixed(const wchar_t* text) noexcept;
// Does the same with a result code directly after the text.
void logResult(const wchar_t* text, int result) noexcept;

}  // namespace sitehlp

#endif
