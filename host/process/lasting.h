#ifndef HOST_PROCESS_LASTING_H
#define HOST_PROCESS_LASTING_H

#include <atomic>
#include <memory>

namespace host {

// One object that is made at its first use and never destroyed, because it may be needed until the
// very end of the process. It is for variables of namespace scope, which are there before any code
// runs.
//
// The first use takes no lock: the guard of a function-local static that another thread holds at a
// fork stays held in the child for ever. Threads that come first together may each make an object;
// one stays. So making one must have no effect beyond itself.
template <typename T>
class Lasting {
 public:
  constexpr Lasting() = default;
  Lasting(const Lasting&) = delete;
  Lasting& operator=(const Lasting&) = delete;

  // The object. Throws what its constructor throws. Any thread.
  T& get() {
    T* const made = find();
    return made ? *made : make();
  }

  // The object, or null before its first use. Any thread.
  T* find() const { return m_object.load(std::memory_order_acquire); }

 private:
  T& make() {
    auto own = std::make_unique<T>();
    T* other = nullptr;
    if (!m_object.compare_exchange_strong(other, own.get(), std::memory_order_acq_rel,
                                          std::memory_order_acquire)) {
      return *other;
    }
    return *own.release();
  }

  std::atomic<T*> m_object{nullptr};
};

}  // namespace host

#endif
