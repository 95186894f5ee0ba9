#ifndef TESTS_THREADS_OPERATIONS_H
#define TESTS_THREADS_OPERATIONS_H

#include <string>
#include <vector>

#include "sitehlp/sites_helper.h"
#include "tests/resilience/workshop.h"

// Every public operation of the library. Each uses its own instance, and all use one agent.
namespace test {

// How an operation uses the cached list of the process.
enum class Cache {
  Untouched,
  HandsOut,  // returns the list itself
  Releases,  // may release the list
};

struct SharedOperation {
  std::string name;
  // Returns the result and the outputs as text. Any thread.
  std::string (*run)(const Workshop& workshop);
  bool writes = false;
  Cache cache = Cache::Untouched;
};
using SharedOperations = std::vector<SharedOperation>;

SharedOperations recordOperations();
SharedOperations readingSharedOperations();
SharedOperations writingSharedOperations();
SharedOperations editingOperations();
// Returns all of these operations.
const SharedOperations& sharedOperations();

// Returns one text from the result code and the content of the list.
std::string told(int result, const sitehlp::tag_Site* list = nullptr);
// Returns one text from the result code and the texts.
std::string told(int result, const std::vector<std::wstring>& texts);

}  // namespace test

#endif
