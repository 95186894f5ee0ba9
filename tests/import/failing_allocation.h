#ifndef TESTS_IMPORT_FAILING_ALLOCATION_H
#define TESTS_IMPORT_FAILING_ALLOCATION_H

#include <cstddef>

namespace test {

// While it lives, malloc and calloc for blocks of `size` bytes work `before` times and fail from
// then on. One at a time; for the objects of this program alone.
class FailingAllocation {
 public:
  FailingAllocation(std::size_t size, int before);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  int failed() const;  // how many were refused so far
};

}  // namespace test

#endif
