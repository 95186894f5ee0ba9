#include "tests/support/allocation/searched_new.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>

namespace test {
namespace {

constexpr std::size_t c_head = blockSizeOfNew(0);
std::atomic<const unsigned char*> g_needle{nullptr};  // null: no search
std::atomic<std::size_t> g_size{0};
std::atomic<int> g_found{0};
constexpr int c_unlimited = INT_MIN;
std::atomic<int> g_left{c_unlimited};

void* allocate(std::size_t size) {
  const bool isExhausted = g_left != c_unlimited && g_left-- <= 0;
  unsigned char* const block =
      isExhausted ? nullptr : static_cast<unsigned char*>(std::malloc(blockSizeOfNew(size)));
  if (!block) throw std::bad_alloc();
  std::memcpy(block, &size, sizeof size);
  return block + c_head;
}

void release(void* memory) noexcept {
  if (!memory) return;
  unsigned char* const bytes = static_cast<unsigned char*>(memory);
  if (const unsigned char* const needle = g_needle) {
    std::size_t size = 0;
    std::memcpy(&size, bytes - c_head, sizeof size);
    g_found += std::search(bytes, bytes + size, needle, needle + g_size) != bytes + size;
  }
  std::free(bytes - c_head);
}

}  // namespace

SearchedDeletes::SearchedDeletes(const void* bytes, std::size_t size) {
  g_found = 0;
  g_size = size;
  g_needle = static_cast<const unsigned char*>(bytes);
}

SearchedDeletes::~SearchedDeletes() { g_needle = nullptr; }

int SearchedDeletes::found() const { return g_found; }

FailingNew::FailingNew(int before) { g_left = before; }

FailingNew::~FailingNew() { g_left = c_unlimited; }

}  // namespace test

void* operator new(std::size_t size) { return test::allocate(size); }
void* operator new[](std::size_t size) { return test::allocate(size); }
void operator delete(void* memory) noexcept { test::release(memory); }
void operator delete[](void* memory) noexcept { test::release(memory); }
void operator delete(void* memory, std::size_t) noexcept { test::release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { test::release(memory); }
