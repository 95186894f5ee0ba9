#ifndef TESTS_RESILIENCE_MEMORY_EVERY_ALLOCATION_H
#define TESTS_RESILIENCE_MEMORY_EVERY_ALLOCATION_H

#include <cstddef>
#include <string>
#include <vector>

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

// While it lives, each block that is given back, or left behind when it grows, is searched for
// texts, and those that hold one and are of a size that is given are counted. New memory never
// holds what was in it before.
class FreedBlocks {
 public:
  // For a wide text.
  FreedBlocks(const std::wstring& text, std::size_t least, std::size_t most);
  // For any of these bytes, in blocks of any size.
  explicit FreedBlocks(std::vector<std::string> needles);
  ~FreedBlocks();
  FreedBlocks(const FreedBlocks&) = delete;
  FreedBlocks& operator=(const FreedBlocks&) = delete;

  unsigned long searched() const;
  unsigned long found() const;

 private:
  void begin(std::size_t least, std::size_t most) const;

  const std::vector<std::string> m_needles;
};

}  // namespace test

#endif
