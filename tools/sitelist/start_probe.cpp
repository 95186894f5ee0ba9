#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "host/process/own_program.h"
#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/shown_name.h"
#include "tools/sitelist/cli/text.h"
#include "tools/sitelist/probe/run_probe.h"

namespace tool {
namespace {

[[noreturn]] void failToStart(const std::string& program, int error) {
  throw Failure(exitFile, "cannot start " + program + ": " + std::strerror(error),
                "install sitelist again, with all its files");
}

}  // namespace

int runProbe(Context& context, const ProbeOptions&) {
  const std::string own = host::ownProgram();
  if (own.empty()) failToStart("sitelist-probe", errno);
  const std::string program = own.substr(0, own.rfind('/') + 1) + SITELIST_PROBE_FROM_OWN_DIRECTORY;
  std::vector<std::string> words = context.arguments;
  words.insert(words.begin(), "sitelist");
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  ::execv(program.c_str(), argv.data());
  failToStart(shown(program), errno);
}

}  // namespace tool
