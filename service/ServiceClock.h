#pragma once

#include <QByteArray>

#include <chrono>
#include <utility>
#include <vector>

/// The service's clock, as its answers tell it. It is looked at and never followed: what is signed and judged here goes
/// by this computer's. Any thread.
class ServiceClock {
public:
  ServiceClock() = delete;

  /// By more than this the service refuses what is signed.
  static constexpr std::chrono::minutes kTolerance{15};

  /// Takes the "Date" of an answer that has just come. One that cannot be read tells nothing, nor does that of an
  /// answer out of a cache on the way.
  static void noteAnswer(const std::vector<std::pair<QByteArray, QByteArray>> &headers);

  /// So far this computer's clock is ahead of the service's now; negative: behind. 0 before any answer, and below a
  /// minute: answers take their time.
  [[nodiscard]] static std::chrono::seconds computerAhead();
  /// Whether that is beyond the tolerance.
  [[nodiscard]] static bool isFarOff();
};
