#include "app/KaSnapshotKeeper.h"

#include "app/ResultMeaning.h"

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

/// Longer waits would overflow the clock.
constexpr milliseconds kLongestWait = 24h * 365;

/// Two clocks read one after the other must not make it another time each time.
QDateTime inWholeSeconds(const QDateTime &time) {
  return time.addMSecs(-time.time().msec());
}

} // namespace

KaSnapshotKeeper::KaSnapshotKeeper(KaSnapshotClocks measuredBy) : clocks(std::move(measuredBy)) {
}

void KaSnapshotKeeper::begin(KaSnapshot::Doing doing, qsizetype files) {
  kept.doing = doing;
  kept.fetched = 0;
  kept.toFetch = files;
  looksAgain.reset();
}

void KaSnapshotKeeper::noteLooking() {
  const platform::MutexLock scope(lock);
  begin(KaSnapshot::Doing::Looking);
}

void KaSnapshotKeeper::noteLooked() {
  const QDateTime now = clocks.wall();
  const platform::MutexLock scope(lock);
  kept.lastLook = now;
}

void KaSnapshotKeeper::notePass(qsizetype files) {
  const platform::MutexLock scope(lock);
  begin(KaSnapshot::Doing::Fetching, files);
}

void KaSnapshotKeeper::noteFile(const QString &saved) {
  const QDate today = saved.isEmpty() ? QDate() : clocks.wall().date();
  const platform::MutexLock scope(lock);
  ++kept.fetched;
  if (saved.isEmpty()) return;
  if (std::exchange(cameOn, today) != today) kept.cameToday = 0;
  ++kept.cameToday;
  if (kept.lastFiles.size() == KaSnapshot::kLastFiles) kept.lastFiles.removeLast();
  kept.lastFiles.prepend(saved);
}

void KaSnapshotKeeper::noteWait(std::optional<milliseconds> longest) {
  const auto now = clocks.boot();
  const platform::MutexLock scope(lock);
  begin(KaSnapshot::Doing::Waiting);
  if (longest) looksAgain = now + std::min(*longest, kLongestWait);
}

void KaSnapshotKeeper::setStillToCome(qsizetype count) {
  const platform::MutexLock scope(lock);
  kept.stillToCome = count;
}

void KaSnapshotKeeper::noteResult(const KaFault &told) {
  const ResultMeaning meaning = meaningOf(told.result);
  if (meaning == ResultMeaning::NoVerdict) return;
  if (meaning == ResultMeaning::Good) return noteGoodEnd();
  const platform::MutexLock scope(lock);
  kept.fault = told;
  hasRunFailed = true;
}

void KaSnapshotKeeper::noteRun() {
  const platform::MutexLock scope(lock);
  hasRunFailed = false;
}

void KaSnapshotKeeper::noteGoodEnd() {
  const platform::MutexLock scope(lock);
  if (!hasRunFailed) kept.fault.reset();
}

void KaSnapshotKeeper::noteLinkHolds() {
  const platform::MutexLock scope(lock);
  const ResultMeaning meaning = kept.fault ? meaningOf(kept.fault->result) : ResultMeaning::NoVerdict;
  if (meaning != ResultMeaning::Login && meaning != ResultMeaning::Service) return;
  kept.fault.reset();
  hasRunFailed = false;
}

void KaSnapshotKeeper::forgetLink() {
  const platform::MutexLock scope(lock);
  begin(KaSnapshot::Doing::Waiting);
  hasRunFailed = false;
  kept.fault.reset();
}

void KaSnapshotKeeper::forgetAccount() {
  const platform::MutexLock scope(lock);
  kept = {};
  cameOn = {};
  looksAgain.reset();
}

KaSnapshot KaSnapshotKeeper::snapshot() const {
  const QDateTime now = clocks.wall();
  const auto sinceBoot = clocks.boot();
  const platform::MutexLock scope(lock);
  KaSnapshot made = kept;
  if (cameOn != now.date()) made.cameToday = 0;
  if (looksAgain) {
    const auto rest = std::chrono::duration_cast<milliseconds>(*looksAgain - sinceBoot);
    made.nextLook = inWholeSeconds(now.addMSecs(std::max(rest, 0ms).count()));
  }
  return made;
}
