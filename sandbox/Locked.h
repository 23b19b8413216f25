#pragma once

#include <mutex>
#include <utility>

namespace sandbox {

/// A value inside its lock: reachable only while the lock is held.
template <class T> class Locked {
public:
  Locked() = default;
  explicit Locked(T initial) : value(std::move(initial)) {}
  Locked(const Locked &) = delete;
  Locked &operator=(const Locked &) = delete;

  /// Calls @p use with the value, the lock held, and returns what it returns.
  template <class Use> auto with(Use use) {
    const std::lock_guard lock(mutex);
    return use(value);
  }
  template <class Use> auto with(Use use) const {
    const std::lock_guard lock(mutex);
    return use(value);
  }

private:
  mutable std::mutex mutex;
  T value{};
};

} // namespace sandbox
