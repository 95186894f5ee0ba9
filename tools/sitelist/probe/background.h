#ifndef TOOLS_SITELIST_PROBE_BACKGROUND_H
#define TOOLS_SITELIST_PROBE_BACKGROUND_H

#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <thread>

namespace tool {

// Runs a function in a thread of its own. The caller need not wait for the function. A blocking
// system call therefore cannot delay the end of the process. The function must own all that it
// uses, and may throw only std::bad_alloc. `wakeUp` is called after its end, in the same thread.
template <typename Result>
class Background {
 public:
  Background(std::function<Result()> function, std::function<void()> wakeUp) {
    std::thread([shared = m_shared, function = std::move(function), wakeUp = std::move(wakeUp)] {
      try {
        Result result = function();
        const std::lock_guard<std::mutex> lock(shared->mutex);
        shared->result = std::move(result);
      } catch (const std::bad_alloc&) {
        const std::lock_guard<std::mutex> lock(shared->mutex);
        shared->isOutOfMemory = true;
      }
      wakeUp();
    }).detach();
  }

  // Returns the result, or nothing if the function has not ended.
  std::optional<Result> result() const {
    const std::lock_guard<std::mutex> lock(m_shared->mutex);
    if (m_shared->isOutOfMemory) throw std::bad_alloc();
    return m_shared->result;
  }

 private:
  struct Shared {
    std::mutex mutex;
    std::optional<Result> result;
    bool isOutOfMemory = false;
  };

  std::shared_ptr<Shared> m_shared = std::make_shared<Shared>();
};

}  // namespace tool

#endif
