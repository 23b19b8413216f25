#pragma once

#include "platform/BootClock.h"

#include <chrono>
#include <functional>

/// What waits are measured by. Any thread.
struct KaWaitClock {
  std::function<platform::BootClock::time_point()> now = &platform::BootClock::now;
  /// A wait looks at the clock at least so often: who sleeps does not see that the computer has slept.
  std::chrono::milliseconds lookInterval = std::chrono::minutes(1);
};
