#ifndef TESTS_SITEHLP_COUNTED_NEW_H
#define TESTS_SITEHLP_COUNTED_NEW_H

#include <cstddef>

namespace test {

// The operator new of this program puts the size of a block in front of it. This is how much memory
// it asks malloc for when it is asked for `size` bytes.
constexpr std::size_t blockSizeOfNew(std::size_t size) { return size + alignof(std::max_align_t); }

}  // namespace test

#endif
