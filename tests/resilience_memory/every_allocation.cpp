#include "tests/resilience_memory/every_allocation.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "tests/support/sanitizer.h"

#if defined(__GLIBC__) && !TESTS_SANITIZED
#define WHOLE_PROCESS
#include <malloc.h>
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* memory, std::size_t size);
extern "C" void __libc_free(void* memory);
#endif

namespace test {
namespace {

// Allocations of other threads do not belong to the operation.
thread_local bool g_armed = false;
unsigned long g_left = 0;
bool g_fromThereOn = false;
unsigned long g_failed = 0;
std::atomic<long> g_blocks{0};

bool refuses() {
  if (!g_armed) return false;
  if (g_left > 0) {
    --g_left;
    return false;
  }
  if (!g_fromThereOn && g_failed != 0) return false;
  ++g_failed;
  errno = ENOMEM;
  return true;
}

const std::vector<std::string>* g_needles = nullptr;  // null: no search
std::size_t g_least = 0;
std::size_t g_most = 0;
unsigned long g_searched = 0;
unsigned long g_found = 0;

#ifdef WHOLE_PROCESS
bool holdsNeedle(void* memory) {
  const std::size_t size = ::malloc_usable_size(memory);
  if (size < g_least || size > g_most) return false;
  ++g_searched;
  for (const std::string& needle : *g_needles) {
    if (::memmem(memory, size, needle.data(), needle.size())) return true;
  }
  return false;
}

// Overwrites the block after the used bytes, so that nothing of an earlier block remains there.
void* cover(void* memory, std::size_t used) {
  constexpr int c_pattern = 0xA5;
  if (!memory) return nullptr;
  const std::size_t size = ::malloc_usable_size(memory);
  if (size > used) std::memset(static_cast<char*>(memory) + used, c_pattern, size - used);
  return memory;
}
#endif

}  // namespace

FailingAllocations::FailingAllocations(unsigned long number, bool fromThereOn) {
  g_left = number;
  g_fromThereOn = fromThereOn;
  g_failed = 0;
  g_armed = true;
}

FailingAllocations::~FailingAllocations() { g_armed = false; }

unsigned long FailingAllocations::failed() const { return g_failed; }

long blocksInUse() { return g_blocks.load(); }

FreedBlocks::FreedBlocks(const std::wstring& text, std::size_t least, std::size_t most)
    : m_needles(1, std::string(reinterpret_cast<const char*>(text.data()),
                               text.size() * sizeof(wchar_t))) {
  begin(least, most);
}

FreedBlocks::FreedBlocks(std::vector<std::string> needles) : m_needles(std::move(needles)) {
  begin(0, std::numeric_limits<std::size_t>::max());
}

void FreedBlocks::begin(std::size_t least, std::size_t most) const {
  g_least = least;
  g_most = most;
  g_searched = 0;
  g_found = 0;
  g_needles = &m_needles;
}

FreedBlocks::~FreedBlocks() { g_needles = nullptr; }

#ifdef WHOLE_PROCESS
const bool FreedBlocks::c_works = true;
#else
const bool FreedBlocks::c_works = false;
#endif

unsigned long FreedBlocks::searched() const { return g_searched; }
unsigned long FreedBlocks::found() const { return g_found; }

}  // namespace test

#ifdef WHOLE_PROCESS

extern "C" void* malloc(std::size_t size) {
  if (test::refuses()) return nullptr;
  void* const memory = __libc_malloc(size);
  if (memory) ++test::g_blocks;
  return test::cover(memory, 0);
}
extern "C" void* calloc(std::size_t count, std::size_t size) {
  if (test::refuses()) return nullptr;
  void* const memory = __libc_calloc(count, size);
  if (memory) ++test::g_blocks;
  return test::cover(memory, count * size);
}
extern "C" void* realloc(void* old, std::size_t size) {
  if (test::refuses()) return nullptr;
  const std::size_t used = old ? ::malloc_usable_size(old) : 0;
  const bool holds = old && test::g_needles && test::holdsNeedle(old);
  void* const memory = __libc_realloc(old, size);
  if (holds && memory != old) ++test::g_found;
  if (!old && memory) ++test::g_blocks;
  return test::cover(memory, used);
}
extern "C" void free(void* memory) {
  if (!memory) return;
  --test::g_blocks;
  if (test::g_needles && test::holdsNeedle(memory)) ++test::g_found;
  __libc_free(memory);
}

#else

void* operator new(std::size_t size) {
  if (!test::refuses()) {
    if (void* const memory = std::malloc(size != 0 ? size : 1)) {
      ++test::g_blocks;
      return memory;
    }
  }
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept {
  if (!memory) return;
  --test::g_blocks;
  std::free(memory);
}
void operator delete[](void* memory) noexcept { operator delete(memory); }
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
void operator delete[](void* memory, std::size_t) noexcept { operator delete(memory); }

#endif
