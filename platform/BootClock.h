#pragma once

#include <chrono>

namespace platform {

/// The time since the computer was started, that spent asleep included. Never goes back. Any thread.
struct BootClock {
  using duration = std::chrono::nanoseconds;
  using rep = duration::rep;
  using period = duration::period;
  using time_point = std::chrono::time_point<BootClock>;
  static constexpr bool is_steady = true;

  [[nodiscard]] static time_point now() noexcept;
};

} // namespace platform
