#ifndef SITEHLP_COMMON_CAUGHT_H
#define SITEHLP_COMMON_CAUGHT_H

#include <string>

namespace sitehlp {

// Logs the exception that is being handled and goes no further as one error line: `what` was not
// done, with the file at `path`, and why. Call it in a handler. A line that cannot be built for
// want of memory is dropped.
void logCaught(const wchar_t* what, const std::wstring& path) noexcept;

// Logs one error line that tells why an operation failed, where its own lines do not.
void logCause(const std::wstring& text) noexcept;

}  // namespace sitehlp

#endif
