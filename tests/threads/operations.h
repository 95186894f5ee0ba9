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

// Returns a result with the content of a list as text.
std::string told(int result, const sitehlp::tag_Site* list = nullptr);
// Returns a result with texts as text.
std::string told(int result, const std::vector<std::wstring>& texts);

}  // namespace test

#endif
