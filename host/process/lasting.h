#ifndef HOST_PROCESS_LASTING_H
#define HOST_PROCESS_LASTING_H

#include <atomic>
#include <memory>

namespace host {

// One object that is created at its first use and never destroyed, because it may be used until the
// process ends. Use it only for variables at namespace scope, which exist before any code runs.
//
// The first use takes no lock. With a function-local static, a thread can hold the guard at a fork,
// and in the child the guard is then never released. Several threads may each create an object at
// the same time; one object remains. The constructor must therefore have no effect outside its
// object.
template <typename T>
class Lasting {
 public:
  constexpr Lasting() = default;
  Lasting(const Lasting&) = delete;
  Lasting& operator=(const Lasting&) = delete;

  // Returns the object. Throws what its constructor throws. Any thread.
  T& get() {
    T* const made = find();
    return made ? *made : make();
  }

  // Returns the object, or null before its first use. Any thread.
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
