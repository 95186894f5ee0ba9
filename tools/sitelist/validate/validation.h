#ifndef TOOLS_SITELIST_VALIDATE_VALIDATION_H
#define TOOLS_SITELIST_VALIDATE_VALIDATION_H

#include <string>
#include <vector>

#include "tools/sitelist/cli/failure.h"
#include "tools/sitelist/cli/read_error.h"
#include "tools/sitelist/validate/fault.h"

namespace tool {

// A list to check.
struct ListSource {
  std::string name;  // for messages
  std::string path;  // path for the library
  bool isBesideKeys = true;
};

// Returns all faults of a list, including warnings, in the order of the document. If `checkServer`
// is set, also checks its management server. Fails when the library refuses the list without a
// known reason.
std::vector<Fault> validateList(const ListSource& source, bool checkServer);

// Returns the fault of a document that cannot be read.
Fault faultOfReading(const ReadError& error);

// Returns the faults that the library's own checks logged, with their places in the file.
std::vector<Fault> loggedFaults(const std::string& path);

// Returns the failure for a list whose last site is of unknown kind, with the place of that site.
Failure lastSiteFailure(const std::string& path);

}  // namespace tool

#endif
