#pragma once

#include "engine/KaWaitClock.h"
#include "platform/Mutex.h"
#include "platform/ThreadAnnotations.h"

#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <utility>

/// What one thread sleeps on until another one signals it. A signal without a waiter is lost, but for what a wait is
/// told to keep; the end of the program never is.
class KaWaitCondition {
public:
  /// Whether there is nothing to wait for. Whoever makes it true signals afterwards.
  using Kept = std::function<bool()>;

  /// @param endAppFlag  outlives this object; whoever sets it signals afterwards.
  explicit KaWaitCondition(const std::atomic<bool> &endAppFlag, KaWaitClock measuredBy = {})
      : ended(endAppFlag), clock(std::move(measuredBy)) {}
  KaWaitCondition(const KaWaitCondition &) = delete;
  KaWaitCondition &operator=(const KaWaitCondition &) = delete;

  /// Until signalled, kept or the end.
  void wait(const Kept &kept) KA_EXCLUDES(lock);
  /// The same for at most @p longest, by the clock.
  void wait(std::chrono::milliseconds longest, const Kept &kept = {}) KA_EXCLUDES(lock);
  void signal() KA_EXCLUDES(lock);
  /// Ends no wait by itself: each looks again whether its time is over or what it keeps has come true.
  void lookAgain() KA_EXCLUDES(lock);

  /// Returns once some thread has begun to wait here, or retire() was called.
  void awaitWaiter() KA_EXCLUDES(lock);
  /// No thread will wait here any more.
  void retire() KA_EXCLUDES(lock);

private:
  /// @return the number of signals before this wait.
  quint64 beginWait() KA_REQUIRES(lock);
  [[nodiscard]] bool isOver(quint64 signalsBefore, const Kept &kept) const KA_REQUIRES(lock);

  const std::atomic<bool> &ended;
  const KaWaitClock clock;
  platform::Mutex lock;
  std::condition_variable_any changed;
  quint64 signalCount KA_GUARDED_BY(lock) = 0;
  bool waitedOn KA_GUARDED_BY(lock) = false;
};
