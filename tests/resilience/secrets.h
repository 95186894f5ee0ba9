#ifndef TESTS_RESILIENCE_SECRETS_H
#define TESTS_RESILIENCE_SECRETS_H

#include "tests/resilience/experiment.h"

namespace test {

struct SecretFigures {
  unsigned long runs = 0;
  unsigned long lines = 0;  // of the log
  unsigned long files = 0;  // looked through, temporary ones included
  Faults faults;
};

// Runs every operation on lists whose every password field holds a known password, undisturbed and
// with each file-system call failing, and looks for the password in all that is written, while a
// writer that dies would leave it behind and afterwards.
SecretFigures lookForTheCanary(const Progress& progress = nullptr);

struct SwapFigures {
  unsigned long swaps = 0;
  unsigned long writes = 0;
  Faults faults;
};

// Swaps the directory of a list, and the list itself, between the real one and a link to a place
// outside while a writer writes.
SwapFigures swapLinks(unsigned long swaps, const Progress& progress = nullptr);

}  // namespace test

#endif
