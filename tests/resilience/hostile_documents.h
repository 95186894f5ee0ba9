#ifndef TESTS_RESILIENCE_HOSTILE_DOCUMENTS_H
#define TESTS_RESILIENCE_HOSTILE_DOCUMENTS_H

#include <cstddef>
#include <string>
#include <vector>

#include "tests/resilience/experiment.h"
#include "tests/support/test_agent.h"

namespace test {

// A kind of hostile document that can have any size.
struct HostileFamily {
  const char* name;
  // Returns a document of about this many bytes.
  std::string (*make)(std::size_t bytes);
  // True for documents of many small sites. Every site needs a record of the same size, whatever
  // the length of its element. The memory of these records is subtracted.
  bool makesRecords = false;
};
const std::vector<HostileFamily>& hostileFamilies();

struct HostileResult {
  std::string family;
  std::size_t bytes = 0;
  int readCode = 0;      // result of ReadSiteList
  bool derived = false;  // result of createServerSiteListFromSiteList
  double peakFactor =
      0;               // memory above that of an idle process, divided by the size of the document
  double seconds = 0;  // processor time of both operations
};

struct HostileFigures {
  std::vector<HostileResult> results;
  Faults faults;
};

// Reads and edits documents of a family in a separate process with a stack of 256 KiB.
class HostileReader {
 public:
  HostileReader();
  // Reads one document. Returns false and adds a fault if the process failed.
  bool read(const HostileFamily& family, std::size_t bytes, HostileResult& result, Faults& faults);

 private:
  TestAgent m_agent;
};

// Reads one document of each family.
HostileFigures readHostileDocuments(std::size_t bytes);

}  // namespace test

#endif
