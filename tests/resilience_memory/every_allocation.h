#ifndef TESTS_RESILIENCE_MEMORY_EVERY_ALLOCATION_H
#define TESTS_RESILIENCE_MEMORY_EVERY_ALLOCATION_H

#include <string>

namespace test {

// While it lives, allocation number `number` of this thread fails, the first being number 0, or
// every one from there on. Of operator new, and outside of sanitizers of malloc, calloc and realloc
// too, whoever calls them.
class FailingAllocations {
 public:
  FailingAllocations(unsigned long number, bool fromThereOn);
  ~FailingAllocations();
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  unsigned long failed() const;
};

// Blocks of this process that are in use.
long blocksInUse();

// While it lives, each block that is given back is searched for a wide text, and those that hold it
// and are of a size that is given are counted.
class FreedBlocks {
 public:
  FreedBlocks(const std::wstring& text, std::size_t least, std::size_t most);
  ~FreedBlocks();
  FreedBlocks(const FreedBlocks&) = delete;
  FreedBlocks& operator=(const FreedBlocks&) = delete;

  unsigned long searched() const;
  unsigned long found() const;
};

}  // namespace test

#endif
