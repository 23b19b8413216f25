#include "engine/KaLookBack.h"

#include "engine/KaBookkeeping.h"
#include "platform/UserDefaults.h"
#include "settings/KaDownloadData.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int kMostRounds = 3;
constexpr int kMostUnsureRuns = 5;
constexpr auto kLongestPause = 24h;
constexpr int kMostDoublings = 16;
constexpr int kDaysBack = 31;
constexpr qint64 kIntervalSeconds = 6 * 3600;

QString troubleKey(const KaImageKey &listed, KaTargetStorage targetStorage) {
  return uuidKey(listed.path(), targetStorage);
}

std::chrono::seconds intervalFromUserDefaults() {
  const qint64 seconds = platform::standardUserDefaults().integerValue(u"lookBackInterval"_s);
  return std::chrono::seconds(seconds > 0 ? seconds : kIntervalSeconds);
}

} // namespace

KaLookBack::KaLookBack(Parts parts)
    : with(std::move(parts)), interval(intervalFromUserDefaults()), begun(with.clock.now()) {
}

void KaLookBack::beginRun(bool askedFor) {
  thread.check();
  ++run;
  isAskedFor = askedFor;
  isDone = false;
  pending.clear();
}

void KaLookBack::endRun() {
  thread.check();
  isLeftUndone = (isLeftUndone && !isDone) || !pending.isEmpty();
  for (Trouble &trouble : troubles) {
    if (trouble.rounds == 0) continue;
    trouble.nextRun = run + (qint64(1) << std::min(trouble.runs, kMostDoublings));
    trouble.nextTry = with.clock.now() + kLongestPause;
    ++trouble.runs;
    if (trouble.isUnsure) ++trouble.unsureRuns;
    trouble.rounds = 0;
    trouble.isUnsure = false;
  }
}

KaListedImages KaLookBack::worthAsking(KaListedImages images, KaTargetStorage targetStorage) const {
  thread.check();
  if (troubles.isEmpty()) return images;
  const auto now = with.clock.now();
  std::erase_if(images, [&](const KaListedImage &image) {
    const auto found = troubles.constFind(troubleKey(image.key, targetStorage));
    if (found == troubles.cend()) return false;
    // A copy of a wrong size would only replace its like.
    if (found->rounds >= kMostRounds || found->isUnsure || found->unsureRuns >= kMostUnsureRuns) return true;
    return pauses(*found, now);
  });
  return images;
}

bool KaLookBack::pauses(const Trouble &trouble, TimePoint now) const {
  return !isAskedFor && run < trouble.nextRun && now < trouble.nextTry;
}

void KaLookBack::noteRound(const KaListedImages &offered, const KaPassTrace &trace, KaTargetStorage targetStorage) {
  thread.check();
  for (const KaListedImage &image : offered) {
    const QString key = troubleKey(image.key, targetStorage);
    if (with.bookkeeping.isTaken(image.key, targetStorage) || trace.declined.contains(image.key.path())) {
      troubles.remove(key);
      pending.remove(key);
      continue;
    }
    pending.insert(key);
    if (!trace.asked.contains(image.key.path())) continue;
    Trouble &trouble = troubles[key];
    ++trouble.rounds;
    trouble.isUnsure = trace.unsure.contains(image.key.path());
  }
}

bool KaLookBack::isDue() const {
  thread.check();
  if (isAskedFor || isLeftUndone || (!lastDone && with.bookkeeping.knewAccount())) return true;
  const auto now = with.clock.now();
  const auto shallTry = [&](const Trouble &trouble) { return trouble.runs > 0 && !pauses(trouble, now); };
  if (std::any_of(troubles.cbegin(), troubles.cend(), shallTry)) return true;
  return now - lastDone.value_or(begun) >= interval;
}

QString KaLookBack::startAfter(const QDateTime &now) const {
  const QString last = with.bookkeeping.lastDateTime(KaTargetStorage::Days30);
  const QDateTime recorded = uploadHour(QStringView(last).left(8), QStringView(last).mid(9));
  const QDateTime from = recorded.isValid() && recorded < now ? recorded : now;
  const QDateTime start = from.toUTC().addDays(-kDaysBack);
  return start.date().year() < 1970 ? KaDownloadData::defaultLastDateTime() : start.toString(u"yyyyMMdd/HH");
}

void KaLookBack::noteLookBackDone() {
  thread.check();
  lastDone = with.clock.now();
  isDone = true;
}
