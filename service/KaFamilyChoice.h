#pragma once

#include <atomic>
#include <chrono>

/// Which addresses name servers are asked for. Some leave questions for those of IPv6 unanswered, and the system waits
/// for them longer than a request may. Any thread.
class KaFamilyChoice {
public:
  [[nodiscard]] bool isIPv4Alone() const { return Clock::now() < ipv4AloneUntil.load(); }
  /// That this question was answered, and not the other one. It is the first one for five minutes.
  void noteAnswered(bool ipv4Alone) {
    ipv4AloneUntil = ipv4Alone ? Clock::now() + std::chrono::minutes(5) : Clock::time_point{};
  }
  void forget() { ipv4AloneUntil = Clock::time_point{}; }

private:
  using Clock = std::chrono::steady_clock;

  std::atomic<Clock::time_point> ipv4AloneUntil{};
};
