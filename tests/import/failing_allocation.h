#ifndef TESTS_IMPORT_FAILING_ALLOCATION_H
#define TESTS_IMPORT_FAILING_ALLOCATION_H

#include <cstddef>

namespace test {

// For the life of the object, malloc and calloc of blocks of `size` bytes succeed `before` times
// and then fail. Only one object may exist at a time. It affects only the code of this program.
class FailingAllocation {
 public:
  FailingAllocation(std::size_t size, int before);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  int failed() const;  // number of failed allocations so far
};

}  // namespace test

#endif
