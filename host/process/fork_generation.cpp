#include "host/process/fork_generation.h"

#include <pthread.h>
#include <sys/mman.h>

#include <atomic>
#include <new>

namespace host {
namespace {

using Number = std::atomic<std::uint64_t>;

// The number of this process, on memory of its own; 0 in a child until it takes one.
Number* g_current = nullptr;
// The last number that this process or one before it took.
Number g_last{0};

void forget() { g_current->store(0, std::memory_order_relaxed); }

Number* watch() {
  void* const memory =
      ::mmap(nullptr, sizeof(Number), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  g_current = new (memory) Number(0);
#ifdef MADV_WIPEONFORK
  // The kernel itself zeroes it, however the child is made.
  if (::madvise(memory, sizeof(Number), MADV_WIPEONFORK) == 0) return g_current;
#endif
  return ::pthread_atfork(nullptr, nullptr, forget) == 0 ? g_current : nullptr;
}

}  // namespace

std::uint64_t forkGeneration() {
  static Number* const current = watch();
  if (!current) return 0;
  std::uint64_t number = current->load(std::memory_order_acquire);
  if (number != 0) return number;
  const std::uint64_t next = g_last.fetch_add(1) + 1;
  return current->compare_exchange_strong(number, next) ? next : number;
}

}  // namespace host
