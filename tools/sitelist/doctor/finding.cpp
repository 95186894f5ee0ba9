#include "tools/sitelist/doctor/finding.h"

#include <cstring>

namespace tool {

const char* nameOf(State state) {
  switch (state) {
    case State::Ok:
      return "ok";
    case State::Warning:
      return "warning";
    case State::Failure:
      break;
  }
  return "failure";
}

std::string textOfError(int error) { return error == 0 ? "" : std::strerror(error); }

}  // namespace tool
