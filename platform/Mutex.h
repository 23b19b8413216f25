#pragma once

#include "platform/ThreadAnnotations.h"

#include <mutex>
#include <utility>

namespace platform {

/// std::mutex with a name for the analysis. Waits take it with std::condition_variable_any.
class KA_CAPABILITY("mutex") Mutex {
public:
  void lock() KA_ACQUIRE() { mutex.lock(); }
  void unlock() KA_RELEASE() { mutex.unlock(); }
  bool try_lock() KA_TRY_ACQUIRE(true) { return mutex.try_lock(); }

private:
  std::mutex mutex;
};

/// Holds a Mutex for a scope.
class KA_SCOPED_CAPABILITY MutexLock {
public:
  explicit MutexLock(Mutex &lock) KA_ACQUIRE(lock) : held(lock) { held.lock(); }
  ~MutexLock() KA_RELEASE() { held.unlock(); }
  MutexLock(const MutexLock &) = delete;
  MutexLock &operator=(const MutexLock &) = delete;

private:
  Mutex &held;
};

/// A value that guards its own copying and nothing more: readers get a copy, writers replace it.
template <class T> class Guarded {
public:
  Guarded() = default;
  explicit Guarded(T initial) : value(std::move(initial)) {}

  [[nodiscard]] T get() const {
    const MutexLock scope(lock);
    return value;
  }
  void set(T newValue) {
    const MutexLock scope(lock);
    value = std::move(newValue);
  }

private:
  mutable Mutex lock;
  T value KA_GUARDED_BY(lock){};
};

} // namespace platform
