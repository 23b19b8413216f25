#pragma once

namespace sandbox {

/// Wakes every thread that polls its descriptor, for good. Any thread.
class WakeUp {
public:
  /// Throws std::runtime_error when the system has no descriptor left.
  WakeUp();
  ~WakeUp();
  WakeUp(const WakeUp &) = delete;
  WakeUp &operator=(const WakeUp &) = delete;

  void raise() const;
  [[nodiscard]] int descriptor() const { return handle; }

private:
  const int handle;
};

} // namespace sandbox
