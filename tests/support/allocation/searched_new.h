#ifndef TESTS_SUPPORT_ALLOCATION_SEARCHED_NEW_H
#define TESTS_SUPPORT_ALLOCATION_SEARCHED_NEW_H

#include <cstddef>

// The operators new and delete of a test program. They can look into what is given back, and refuse
// to give anything out.
namespace test {

// They put the size of a block in front of it. This is how much memory they ask malloc for when
// they are asked for `size` bytes.
constexpr std::size_t blockSizeOfNew(std::size_t size) { return size + alignof(std::max_align_t); }

// While it lives, each block that is given back to operator delete is searched for these bytes,
// which must live as long. One at a time.
class SearchedDeletes {
 public:
  SearchedDeletes(const void* bytes, std::size_t size);
  ~SearchedDeletes();
  SearchedDeletes(const SearchedDeletes&) = delete;
  SearchedDeletes& operator=(const SearchedDeletes&) = delete;

  int found() const;  // blocks so far that hold the bytes
};

// While it lives, operator new gives out `before` blocks and throws std::bad_alloc from then on.
// One at a time.
class FailingNew {
 public:
  explicit FailingNew(int before);
  ~FailingNew();
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
};

}  // namespace test

#endif
