#ifndef TESTS_SUPPORT_ALLOCATION_SEARCHED_NEW_H
#define TESTS_SUPPORT_ALLOCATION_SEARCHED_NEW_H

#include <cstddef>

// The operators new and delete of a test program. They can search released blocks and make
// allocations fail.
namespace test {

// Returns how many bytes the operators request from malloc for `size` bytes. They store the size of
// a block before it.
constexpr std::size_t blockSizeOfNew(std::size_t size) { return size + alignof(std::max_align_t); }

// Searches each released block for these bytes, for the life of the object. The bytes must live as
// long. Only one object may exist at a time.
class SearchedDeletes {
 public:
  SearchedDeletes(const void* bytes, std::size_t size);
  ~SearchedDeletes();
  SearchedDeletes(const SearchedDeletes&) = delete;
  SearchedDeletes& operator=(const SearchedDeletes&) = delete;

  int found() const;  // number of blocks so far that have the bytes
};

// For the life of the object, operator new succeeds `before` times and then throws std::bad_alloc.
// Only one object may exist at a time.
class FailingNew {
 public:
  explicit FailingNew(int before);
  ~FailingNew();
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
};

}  // namespace test

#endif
