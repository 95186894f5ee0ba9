#include "tools/sitelist/cli/messages.h"

#include <iostream>

namespace tool {
namespace {

std::vector<std::string>& keptWarnings() {
  static std::vector<std::string> kept;
  return kept;
}

}  // namespace

void printWarning(const std::string& text, const std::string& advice) {
  keptWarnings().push_back(text);
  std::cerr << "sitelist: warning: " << text << '\n';
  if (!advice.empty()) std::cerr << "  next: " << advice << '\n';
}

const std::vector<std::string>& warnings() { return keptWarnings(); }

}  // namespace tool
