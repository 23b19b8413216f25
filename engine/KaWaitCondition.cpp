#include "engine/KaWaitCondition.h"

#include <algorithm>

namespace {

/// Longer ones would overflow the clock.
constexpr std::chrono::hours kLongestWait(24 * 365);

} // namespace

void KaWaitCondition::wait(const Kept &kept) {
  const platform::MutexLock scope(lock);
  const quint64 before = beginWait();
  while (!isOver(before, kept))
    changed.wait(lock);
}

void KaWaitCondition::wait(std::chrono::milliseconds longest, const Kept &kept) {
  const auto deadline = clock.now() + std::min<std::chrono::milliseconds>(longest, kLongestWait);
  const platform::MutexLock scope(lock);
  const quint64 before = beginWait();
  while (!isOver(before, kept)) {
    const auto rest = deadline - clock.now();
    if (rest <= rest.zero()) return;
    // The condition's own clock stands still while the computer sleeps.
    changed.wait_for(lock, std::min<platform::BootClock::duration>(rest, clock.lookInterval));
  }
}

void KaWaitCondition::signal() {
  const platform::MutexLock scope(lock);
  ++signalCount;
  changed.notify_all();
}

void KaWaitCondition::lookAgain() {
  const platform::MutexLock scope(lock);
  changed.notify_all();
}

void KaWaitCondition::awaitWaiter() {
  const platform::MutexLock scope(lock);
  while (!waitedOn)
    changed.wait(lock);
}

void KaWaitCondition::retire() {
  const platform::MutexLock scope(lock);
  waitedOn = true;
  changed.notify_all();
}

bool KaWaitCondition::isOver(quint64 signalsBefore, const Kept &kept) const {
  return ended || signalCount != signalsBefore || (kept && kept());
}

quint64 KaWaitCondition::beginWait() {
  waitedOn = true;
  changed.notify_all();
  return signalCount;
}
