#include "host/process/failure_text.h"

#include <system_error>

#include "host/process/fork_lock.h"

namespace host {

const wchar_t* const c_logComponent = L"Host";

std::string errorText(int error) {
  // The system takes a lock when it translates the text.
  const ForkLock lock(c_errorTextMutex);
  return std::generic_category().message(error);
}

AString failureText(const char* what, const std::string& path, int error) {
  return AString((std::string(what) + " " + path + ": " + errorText(error)).c_str());
}

}  // namespace host
