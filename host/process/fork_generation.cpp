#include "host/process/fork_generation.h"

#include <sys/mman.h>

#include <atomic>
#include <new>

#include "host/process/lasting.h"

namespace host {
namespace {

using Number = std::atomic<std::uint64_t>;

// The number of this process, in a page of its own, so that the kernel can clear it in a child. It
// is 0 in a child until the first use.
class Current {
 public:
  Current() {
    void* const memory =
        ::mmap(nullptr, sizeof(Number), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return;
    m_number = new (memory) Number(0);
#ifdef MADV_WIPEONFORK
    // The kernel sets the number to 0 in every child, even if no fork handler runs.
    ::madvise(memory, sizeof(Number), MADV_WIPEONFORK);
#endif
  }
  Current(const Current&) = delete;
  Current& operator=(const Current&) = delete;
  ~Current() {
    if (m_number) ::munmap(m_number, sizeof(Number));
  }

  Number* number() const { return m_number; }

 private:
  Number* m_number = nullptr;
};

Lasting<Current> g_current;

// The last number that this process or one of its ancestors used.
Number g_lastGeneration{0};

}  // namespace

std::uint64_t forkGeneration() {
  Number* const current = g_current.get().number();
  if (!current) return 0;
  std::uint64_t number = current->load(std::memory_order_acquire);
  if (number != 0) return number;
  const std::uint64_t next = g_lastGeneration.fetch_add(1) + 1;
  return current->compare_exchange_strong(number, next) ? next : number;
}

void forgetForkGeneration() {
  const Current* const current = g_current.find();
  if (current && current->number()) current->number()->store(0, std::memory_order_relaxed);
}

}  // namespace host
