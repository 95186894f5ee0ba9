#include "tools/sitelist/doctor/finding.h"

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

}  // namespace tool
