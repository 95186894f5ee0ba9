#ifndef TESTS_RESILIENCE_MEMORY_EVERY_ALLOCATION_H
#define TESTS_RESILIENCE_MEMORY_EVERY_ALLOCATION_H

#include <cstddef>
#include <string>
#include <vector>

namespace test {

// For the life of the object, one allocation of this thread fails, or all allocations from that one
// on. The first has number 0. This affects operator new. Without a sanitizer it also affects
// malloc, calloc and realloc of any caller.
class FailingAllocations {
 public:
  FailingAllocations(unsigned long number, bool fromThereOn);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  unsigned long failed() const;
};

// Returns the number of allocated blocks of this process.
long blocksInUse();

// For the life of the object, searches each block for texts when it is released or moved. Counts
// blocks that have a text and a size within the limits. New memory never has its old content.
class FreedBlocks {
 public:
  // False with a sanitizer or another C library than GNU's. No block is searched then.
  static const bool c_works;

  // Searches for a wide text.
  FreedBlocks(const std::wstring& text, std::size_t least, std::size_t most);
  // Searches for any of these byte strings, in blocks of any size.
  explicit FreedBlocks(std::vector<std::string> needles);
  ~FreedBlocks();
  FreedBlocks(const FreedBlocks&) = delete;
  FreedBlocks& operator=(const FreedBlocks&) = delete;

  // Returns the number of blocks with a size within the limits.
  unsigned long searched() const;
  // Returns the number of searched blocks that have a text.
  unsigned long found() const;

 private:
  void begin(std::size_t least, std::size_t most) const;

  const std::vector<std::string> m_needles;
};

}  // namespace test

#endif
