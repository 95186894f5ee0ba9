#include "tests/import/failing_allocation.h"

#include <cerrno>

#if defined(__APPLE__)
#include <malloc/malloc.h>
#endif

namespace test {
namespace {

std::size_t g_size = 0;  // 0: nothing fails
int g_left = 0;
int g_failed = 0;

bool refuses(std::size_t count, std::size_t size) {
  if (g_size == 0 || count * size != g_size) return false;
  if (g_left > 0) {
    --g_left;
    return false;
  }
  ++g_failed;
  errno = ENOMEM;
  return true;
}

}  // namespace

FailingAllocation::FailingAllocation(std::size_t size, int before) {
  g_left = before;
  g_failed = 0;
  g_size = size;
}

FailingAllocation::~FailingAllocation() { g_size = 0; }

int FailingAllocation::failed() const { return g_failed; }

}  // namespace test

#if defined(__APPLE__)
// The linker binds calls in this program to these functions.
extern "C" void* malloc(std::size_t size) {
  if (test::refuses(1, size)) return nullptr;
  return malloc_zone_malloc(malloc_default_zone(), size);
}
extern "C" void* calloc(std::size_t count, std::size_t size) {
  if (test::refuses(count, size)) return nullptr;
  return malloc_zone_calloc(malloc_default_zone(), count, size);
}
#else
// The linker sends the objects' calls here (--wrap).
extern "C" void* __real_malloc(std::size_t size);
extern "C" void* __wrap_malloc(std::size_t size);
extern "C" void* __real_calloc(std::size_t count, std::size_t size);
extern "C" void* __wrap_calloc(std::size_t count, std::size_t size);

extern "C" void* __wrap_malloc(std::size_t size) {
  if (test::refuses(1, size)) return nullptr;
  return __real_malloc(size);
}
extern "C" void* __wrap_calloc(std::size_t count, std::size_t size) {
  if (test::refuses(count, size)) return nullptr;
  return __real_calloc(count, size);
}
#endif
