#ifndef TESTS_THREADS_OPERATIONS_H
#define TESTS_THREADS_OPERATIONS_H

#include <string>
#include <vector>

#include "sitehlp/sites_helper.h"
#include "tests/resilience/workshop.h"

// Every public operation of the library, each on an instance of its own against one shared agent.
namespace test {

// What an operation does with the cached list of the process.
enum class Cache {
  Untouched,
  HandsOut,  // gives its caller the list itself
  Releases,  // may release the list
};

struct SharedOperation {
  std::string name;
  // The result and what the outputs hold, as text. From any thread.
  std::string (*run)(const Workshop& workshop);
  bool writes = false;
  Cache cache = Cache::Untouched;
};
using SharedOperations = std::vector<SharedOperation>;

SharedOperations recordOperations();
SharedOperations readingSharedOperations();
SharedOperations writingSharedOperations();
SharedOperations editingOperations();
// All of these.
const SharedOperations& sharedOperations();

// A result with what is in a list.
std::string told(int result, const sitehlp::tag_Site* list = nullptr);
// A result with texts.
std::string told(int result, const std::vector<std::wstring>& texts);

}  // namespace test

#endif
