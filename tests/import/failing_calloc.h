#ifndef TESTS_IMPORT_FAILING_CALLOC_H
#define TESTS_IMPORT_FAILING_CALLOC_H

#include <cstddef>

namespace test {

// While it lives, calloc for blocks of `size` bytes works `before` times and fails from then on.
// One at a time; for the objects of this program alone.
class FailingCalloc {
 public:
  FailingCalloc(std::size_t size, int before);
  ~FailingCalloc();
  FailingCalloc(const FailingCalloc&) = delete;
  FailingCalloc& operator=(const FailingCalloc&) = delete;

  int failed() const;  // how many were refused so far
};

}  // namespace test

#endif
