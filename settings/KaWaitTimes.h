#pragma once

#include <chrono>

/// The download thread's waits.
struct KaWaitTimes {
  std::chrono::milliseconds pollingNormal = std::chrono::seconds(1800);
  std::chrono::milliseconds pollingError = std::chrono::seconds(180);
  std::chrono::milliseconds reCheck = std::chrono::seconds(60);
  std::chrono::milliseconds exifRetry = std::chrono::seconds(5);

  friend bool operator==(const KaWaitTimes &, const KaWaitTimes &) = default;
};
