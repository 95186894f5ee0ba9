#ifndef TESTS_RESILIENCE_UPDATES_H
#define TESTS_RESILIENCE_UPDATES_H

#include <string>

#include "tests/resilience/experiment.h"

namespace test {

enum class UpdatedList { OfAgent, Named };
enum class UpdateKills { None, OneInTen };

struct UpdateFigures {
  unsigned long changes = 0;  // changes for which the tool returned 0
  unsigned long kills = 0;
  Faults faults;
};

// Changes one list with 16 concurrent processes of the tool and all kinds of changes. A change with
// the result 0 that is not in the list at the end is a fault. Any other result of a process that
// was not killed is also a fault. A named list is changed with and without an agent in turn.
UpdateFigures updateAtOnce(const std::string& tool, UpdatedList which, UpdateKills kills,
                           unsigned long changes, const Progress& progress = {});

}  // namespace test

#endif
