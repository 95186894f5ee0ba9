#ifndef TESTS_RESILIENCE_UPDATES_H
#define TESTS_RESILIENCE_UPDATES_H

#include <string>

#include "tests/resilience/experiment.h"

namespace test {

enum class UpdatedList { OfAgent, Named };
enum class UpdateKills { None, OneInTen };

struct UpdateFigures {
  unsigned long changes = 0;  // that the tool answered with 0
  unsigned long kills = 0;
  Faults faults;
};

// Changes one list through 16 processes of the tool at once, with every kind of change. A change
// that was answered with 0 and is not in the list in the end is a fault, and so is every other
// answer of a process that was not killed. A named list is changed on behalf of an agent and
// without one in turns.
UpdateFigures updateAtOnce(const std::string& tool, UpdatedList which, UpdateKills kills,
                           unsigned long changes, const Progress& progress = {});

}  // namespace test

#endif
