#ifndef TESTS_RESILIENCE_SECRETS_H
#define TESTS_RESILIENCE_SECRETS_H

#include "tests/resilience/experiment.h"

namespace test {

struct SecretFigures {
  unsigned long runs = 0;
  unsigned long lines = 0;  // log lines
  unsigned long files = 0;  // searched files, including temporary ones
  Faults faults;
};

// Runs every operation on lists with a known password in every password field, without failures and
// with each file-system call failing. Searches all written files for the password, including the
// temporary files that a killed writer would leave.
SecretFigures lookForTheCanary(const Progress& progress = nullptr);

struct SwapFigures {
  unsigned long swaps = 0;
  unsigned long writes = 0;
  Faults faults;
};

// Repeatedly replaces the directory of a list, or the list itself, with a link to an outside place,
// and restores it. A writer runs at the same time.
SwapFigures swapLinks(unsigned long swaps, const Progress& progress = nullptr);

}  // namespace test

#endif
