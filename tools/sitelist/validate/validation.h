#ifndef TOOLS_SITELIST_VALIDATE_VALIDATION_H
#define TOOLS_SITELIST_VALIDATE_VALIDATION_H

#include <string>
#include <vector>

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/validate/fault.h"

namespace tool {

// A list to be checked.
struct ListSource {
  std::string name;  // for messages
  std::string path;  // where the library finds it
  bool isBesideKeys = true;
};

// All faults of a list in the order of the document, warnings included. With `checkServer`, also
// those of its management server. Fails when the library's result has no reason.
std::vector<Fault> validateList(const ListSource& source, bool checkServer);

// The fault of a document that cannot be read.
Fault faultOfReading(const ReadError& error);

// The faults that the library's own checks logged, placed in the file.
std::vector<Fault> loggedFaults(const std::string& path);

// The failure of a list whose last site is of unknown kind, with the place of that site.
Failure lastSiteFailure(const std::string& path);

}  // namespace tool

#endif
