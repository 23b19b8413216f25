#include "platform/BootClock.h"

#include <ctime>

namespace platform {

BootClock::time_point BootClock::now() noexcept {
  timespec passed{};
  // It fails for a clock that the system does not know, and every Linux knows this one.
  (void)::clock_gettime(CLOCK_BOOTTIME, &passed);
  return time_point(std::chrono::seconds(passed.tv_sec) + std::chrono::nanoseconds(passed.tv_nsec));
}

} // namespace platform
