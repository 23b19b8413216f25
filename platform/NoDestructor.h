#pragma once

#include <new>
#include <utility>

namespace platform {

/// A value for a static of its own that lives until the process is gone. A library may end the process by exit() while
/// a thread of ours still works; what exit() destroys must be nothing that such a thread uses.
template <class T> class NoDestructor {
public:
  template <class... Arguments> explicit NoDestructor(Arguments &&...arguments) {
    new (storage) T(std::forward<Arguments>(arguments)...);
  }
  NoDestructor(const NoDestructor &) = delete;
  NoDestructor &operator=(const NoDestructor &) = delete;

  [[nodiscard]] T &operator*() { return *std::launder(reinterpret_cast<T *>(storage)); }
  [[nodiscard]] const T &operator*() const { return *std::launder(reinterpret_cast<const T *>(storage)); }
  [[nodiscard]] T *operator->() { return &**this; }
  [[nodiscard]] const T *operator->() const { return &**this; }

private:
  alignas(T) unsigned char storage[sizeof(T)];
};

} // namespace platform
