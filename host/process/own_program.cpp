#include "host/process/own_program.h"

#include <cstdlib>
#include <memory>

#ifdef __APPLE__
#include <mach-o/dyld.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#endif

namespace host {
namespace {

struct FreeText {
  void operator()(char* text) const { std::free(text); }
};

std::string withoutLinks(const char* path) {
  const std::unique_ptr<char, FreeText> full(::realpath(path, nullptr));
  return full ? full.get() : std::string();
}

}  // namespace

std::string ownProgram() {
#ifdef __APPLE__
  char path[PATH_MAX];
  std::uint32_t size = sizeof path;
  if (_NSGetExecutablePath(path, &size) != 0) {
    errno = ENAMETOOLONG;
    return std::string();
  }
  return withoutLinks(path);
#else
  return withoutLinks("/proc/self/exe");
#endif
}

}  // namespace host
