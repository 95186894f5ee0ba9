#include "tools/sitelist/cli/messages.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iostream>
#include <streambuf>

namespace tool {
namespace {

std::streambuf* g_omitted = nullptr;

std::vector<std::string>& keptWarnings() {
  static std::vector<std::string> kept;
  return kept;
}

void print(std::ostream& out, const std::string& text, const std::string& advice) {
  out << "sitelist: " << text << '\n';
  if (!advice.empty()) out << "  next: " << advice << '\n';
}

}  // namespace

void omitMessages() {
  if (!g_omitted) g_omitted = std::cerr.rdbuf(nullptr);
}

void printError(const std::string& text, const std::string& advice) {
  std::ostream out(g_omitted ? g_omitted : std::cerr.rdbuf());
  print(out, text, advice);
}

void printWarning(const std::string& text, const std::string& advice) {
  keptWarnings().push_back(text);
  print(std::cerr, "warning: " + text, advice);
}

std::string outputFailure() {
  std::string text = "cannot write to standard output";
  if (::write(STDOUT_FILENO, "\n", 1) == -1) text.append(": ").append(std::strerror(errno));
  return text;
}

const std::vector<std::string>& warnings() { return keptWarnings(); }

}  // namespace tool
