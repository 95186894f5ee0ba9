#ifndef TOOLS_SITELIST_VALIDATE_VALIDATION_H
#define TOOLS_SITELIST_VALIDATE_VALIDATION_H

#include <string>
#include <vector>

#include "tools/sitelist/validate/fault.h"

namespace tool {

// A list to be checked.
struct ListSource {
  std::string name;  // for messages
  std::string path;  // where the library finds it
  bool isBesideKeys = true;
};

// All faults of a list in the order of the document, warnings included. An agent under central
// management asks for a management server, too. Fails when the library's answer has no reason.
std::vector<Fault> validateList(const ListSource& source, bool checkServer);

// The rules of the library's own checks that were logged as broken, placed in the file.
std::vector<Fault> brokenRules(const std::string& path);

}  // namespace tool

#endif
