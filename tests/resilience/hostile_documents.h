#ifndef TESTS_RESILIENCE_HOSTILE_DOCUMENTS_H
#define TESTS_RESILIENCE_HOSTILE_DOCUMENTS_H

#include <cstddef>
#include <string>
#include <vector>

#include "tests/resilience/experiment.h"
#include "tests/support/test_agent.h"

namespace test {

// A kind of document that is made to hurt, in any size.
struct HostileFamily {
  const char* name;
  // About so many bytes.
  std::string (*make)(std::size_t bytes);
  // A record has a fixed size whatever it was read from, so a flood of tiny site elements takes
  // more memory than any other text of its length. Its records do not count.
  bool makesRecords = false;
};
const std::vector<HostileFamily>& hostileFamilies();

struct HostileResult {
  std::string family;
  std::size_t bytes = 0;
  int readCode = 0;       // of ReadSiteList
  bool derived = false;   // by createServerSiteListFromSiteList
  double peakFactor = 0;  // memory above that of an idle process, by the bytes of the document
  double seconds = 0;     // of both, on the processor
};

struct HostileFigures {
  std::vector<HostileResult> results;
  Faults faults;
};

// Lets a process of its own, on a stack of 256 KiB, read and edit documents of a family.
class HostileReader {
 public:
  HostileReader();
  // One document. False, with a fault, when the process did not end well.
  bool read(const HostileFamily& family, std::size_t bytes, HostileResult& result, Faults& faults);

 private:
  TestAgent m_agent;
};

// One document of each family.
HostileFigures readHostileDocuments(std::size_t bytes);

}  // namespace test

#endif
