#ifndef TOOLS_SITELIST_FLEET_IN_ORDER_H
#define TOOLS_SITELIST_FLEET_IN_ORDER_H

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace tool {

// Makes results in several threads and takes them in order in the calling thread. At most a fixed
// number of results is in memory.
template <typename Result>
class InOrder {
 public:
  using Make = std::function<Result(std::size_t index)>;
  // Returns whether more results are wanted.
  using Take = std::function<bool(std::size_t index, Result result)>;

  InOrder(std::size_t count, std::size_t threads, Make make)
      : m_count(count), m_make(std::move(make)), m_slots(c_ahead * threads) {
    m_threadCount = threads < count ? threads : count;
  }
  ~InOrder() { stop(); }
  InOrder(const InOrder&) = delete;
  InOrder& operator=(const InOrder&) = delete;

  // Calls `take` for each result. An exception of `make` ends the run and is thrown here.
  void run(const Take& take) {
    start();
    for (std::size_t index = 0; index < m_count; ++index) {
      if (!take(index, m_threads.empty() ? m_make(index) : await(index))) break;
    }
    stop();
  }

 private:
  static constexpr std::size_t c_ahead = 8;  // results that wait for their turn, for each thread

  // With one thread, or if the system gives no thread, the calling thread makes the results.
  void start() {
    if (m_threadCount < 2) return;
    try {
      while (m_threads.size() < m_threadCount) m_threads.emplace_back([this] { work(); });
    } catch (const std::exception&) {
      if (m_threads.empty()) return;
    }
  }

  void work() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
      m_isSpace.wait(lock, [&] {
        return m_isStopped || m_next == m_count || m_next < m_taken + m_slots.size();
      });
      if (m_isStopped || m_next == m_count) return;
      const std::size_t index = m_next++;
      lock.unlock();
      std::optional<Result> result;
      std::exception_ptr failure;
      try {
        result.emplace(m_make(index));
      } catch (...) {
        failure = std::current_exception();
      }
      lock.lock();
      if (failure && !m_failure) m_failure = failure;
      m_slots[index % m_slots.size()] = std::move(result);
      m_isReady.notify_one();
    }
  }

  Result await(std::size_t index) {
    std::unique_lock<std::mutex> lock(m_mutex);
    std::optional<Result>& slot = m_slots[index % m_slots.size()];
    m_isReady.wait(lock, [&] { return slot.has_value() || m_failure; });
    if (m_failure) std::rethrow_exception(m_failure);
    Result result = std::move(*slot);
    slot.reset();
    m_taken = index + 1;
    m_isSpace.notify_one();
    return result;
  }

  void stop() {
    {
      const std::lock_guard<std::mutex> lock(m_mutex);
      m_isStopped = true;
    }
    m_isSpace.notify_all();
    for (std::thread& thread : m_threads) thread.join();
    m_threads.clear();
  }

  std::size_t m_count;
  Make m_make;
  std::size_t m_threadCount = 0;
  std::vector<std::thread> m_threads;
  std::mutex m_mutex;
  std::condition_variable m_isSpace;
  std::condition_variable m_isReady;
  std::vector<std::optional<Result>> m_slots;  // by index, modulo their number
  std::size_t m_next = 0;                      // the next index for a thread
  std::size_t m_taken = 0;
  bool m_isStopped = false;
  std::exception_ptr m_failure;
};

}  // namespace tool

#endif
