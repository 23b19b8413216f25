#include "engine/KaLookBack.h"

#include "engine/KaBookkeeping.h"
#include "platform/UserDefaults.h"
#include "settings/KaDownloadData.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int kMostRounds = 3;
constexpr int kMostUnsureRuns = 5;
constexpr int kMostSilentRuns = 2;
constexpr auto kLongestPause = 24h;
constexpr int kMostDoublings = 16;
constexpr int kDaysBack = 31;
constexpr qint64 kIntervalSeconds = 6 * 3600;
/// Keeps an absurd setting within what clocks can count.
constexpr qint64 kLongestIntervalSeconds = 365LL * 24 * 3600;

std::chrono::seconds intervalFromUserDefaults() {
  const qint64 seconds = platform::standardUserDefaults().integerValue(u"lookBackInterval"_s);
  return std::chrono::seconds(seconds > 0 ? std::min(seconds, kLongestIntervalSeconds) : kIntervalSeconds);
}

bool isOfTheDisk(KaResultCode result) {
  return result == KaResultCode::DiskFull || result == KaResultCode::FileNotSaved;
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
  isAnswered = false;
  isUnasked = false;
  isLeftInRun = false;
}

void KaLookBack::takeUp(const QString &account) {
  thread.check();
  if (std::exchange(owner, account) == account) return;
  ordinary.clear();
  longTerm.clear();
  ordinaryUnasked = longTermUnasked = 0;
  isLeftUndone = false;
  begun = with.clock.now();
  lastDone.reset();
}

void KaLookBack::endRun() {
  thread.check();
  isLeftUndone = (isLeftUndone && !isDone) || isLeftInRun;
  for (Troubles *const troubles : {&ordinary, &longTerm})
    for (Trouble &trouble : *troubles)
      close(trouble);
}

/// What it has failed in this run decides when it is tried again.
void KaLookBack::close(Trouble &trouble) const {
  // Where others get an answer, silence is no fault of the line; nor is it where listings are answered again and again.
  const bool isSilent = trouble.last == KaResultCode::NoHttpStatus && !isAnswered;
  if (trouble.rounds > 0 && isSilent) ++trouble.silentRuns;
  const bool isItsOwn = !isOfTheDisk(trouble.last) && (!isSilent || trouble.silentRuns > kMostSilentRuns);
  if (trouble.rounds > 0 && isItsOwn) {
    trouble.nextRun = run + (qint64(1) << std::min(trouble.runs, kMostDoublings));
    trouble.nextTry = with.clock.now() + kLongestPause;
    ++trouble.runs;
    if (trouble.isUnsure) ++trouble.unsureRuns;
  }
  trouble.rounds = 0;
  trouble.isUnsure = false;
}

KaListedImages KaLookBack::worthAsking(KaListedImages images, KaTargetStorage targetStorage) const {
  thread.check();
  const Troubles &troubles = targetStorage == KaTargetStorage::LongTerm10G ? longTerm : ordinary;
  if (troubles.isEmpty()) return images;
  std::erase_if(images, [&, now = with.clock.now()](const KaListedImage &image) {
    const auto found = troubles.constFind(image.key.path());
    return found != troubles.cend() && !isWorthAsking(*found, now);
  });
  return images;
}

KaListedImages KaLookBack::worthAskingSilentLast(KaListedImages images) const {
  images = worthAsking(std::move(images), KaTargetStorage::Days30);
  std::stable_partition(images.begin(), images.end(), [this](const KaListedImage &image) {
    return ordinary.value(image.key.path()).last != KaResultCode::NoHttpStatus;
  });
  return images;
}

bool KaLookBack::isWorthAsking(const Trouble &trouble, TimePoint now) const {
  // A copy of a wrong size would only replace its like.
  if (trouble.rounds >= kMostRounds || trouble.isUnsure || trouble.unsureRuns >= kMostUnsureRuns) return false;
  return isAskedFor || run >= trouble.nextRun || now >= trouble.nextTry;
}

void KaLookBack::noteRound(const KaListedImages &offered, const KaPassTrace &trace, const KaPassOutcome &outcome,
                           KaTargetStorage targetStorage) {
  thread.check();
  Troubles &troubles = of(targetStorage);
  isAnswered = isAnswered || std::any_of(trace.asked.cbegin(), trace.asked.cend(), [](KaResultCode result) {
                 return result != KaResultCode::NoHttpStatus && !isOfTheDisk(result);
               });
  isUnasked = false;
  qsizetype &unasked = unaskedOf(targetStorage);
  unasked = 0;
  for (const KaListedImage &image : offered) {
    const QString &key = image.key.path();
    if (with.bookkeeping.isTaken(image.key, targetStorage) || trace.declined.contains(key)) {
      troubles.remove(key);
      continue;
    }
    if (targetStorage == KaTargetStorage::Days30) isLeftInRun = true;
    const auto asked = trace.asked.constFind(key);
    // No room and no folder are there for those that were not asked for either.
    if (asked == trace.asked.cend() && !isOfTheDisk(outcome.result)) {
      if (targetStorage == KaTargetStorage::Days30) isUnasked = true;
      if (!troubles.contains(key)) ++unasked;
      continue;
    }
    Trouble &trouble = troubles[key];
    ++trouble.rounds;
    trouble.last = asked == trace.asked.cend() ? outcome.result : *asked;
    trouble.isUnsure = trace.unsure.contains(key);
  }
}

std::optional<KaLookBack::SavingTrouble> KaLookBack::savingTrouble() const {
  thread.check();
  for (const auto &[troubles, storage] :
       {std::pair(&ordinary, KaTargetStorage::Days30), {&longTerm, KaTargetStorage::LongTerm10G}})
    for (const Trouble &trouble : *troubles)
      if (trouble.rounds > 0 && isOfTheDisk(trouble.last)) return SavingTrouble{trouble.last, storage};
  return std::nullopt;
}

qsizetype KaLookBack::countStillToCome() const {
  thread.check();
  qsizetype count = ordinaryUnasked + longTermUnasked;
  for (const Troubles *const troubles : {&ordinary, &longTerm})
    count += std::count_if(troubles->cbegin(), troubles->cend(), [](const Trouble &trouble) {
      return trouble.unsureRuns < kMostUnsureRuns; // else its copy is all that this process will have of it
    });
  return count;
}

bool KaLookBack::isDue() const {
  thread.check();
  if (isAskedFor || isLeftUndone || isUnasked || (!lastDone && with.bookkeeping.knewAccount())) return true;
  const auto now = with.clock.now();
  const auto shallTry = [&](const Trouble &trouble) { return trouble.rounds == 0 && isWorthAsking(trouble, now); };
  return std::any_of(ordinary.cbegin(), ordinary.cend(), shallTry) || now - lastDone.value_or(begun) >= interval;
}

QString KaLookBack::startAfter(const QDateTime &now) const {
  const QString last = with.bookkeeping.lastDateTime(KaTargetStorage::Days30);
  const QDateTime recorded = uploadHour(QStringView(last).left(8), QStringView(last).mid(9));
  const QDateTime from = recorded.isValid() && recorded < now ? recorded : now;
  const QDateTime start = from.toUTC().addDays(-kDaysBack);
  return start.date().year() < 1970 ? KaDownloadData::defaultLastDateTime() : start.toString(u"yyyyMMdd/HH");
}

void KaLookBack::noteListed(const KaListedImages &images, KaTargetStorage targetStorage) {
  thread.check();
  if (targetStorage == KaTargetStorage::Days30) {
    lastDone = with.clock.now();
    isDone = true;
  }
  unaskedOf(targetStorage) = 0; // a round over them follows
  Troubles &troubles = of(targetStorage);
  if (troubles.isEmpty()) return;
  Troubles listed;
  for (const KaListedImage &image : images)
    if (const auto found = troubles.constFind(image.key.path()); found != troubles.cend())
      listed.insert(found.key(), *found);
  troubles.swap(listed); // what the storage has no more is settled
}

KaLookBack::Troubles &KaLookBack::of(KaTargetStorage targetStorage) {
  return targetStorage == KaTargetStorage::LongTerm10G ? longTerm : ordinary;
}

qsizetype &KaLookBack::unaskedOf(KaTargetStorage targetStorage) {
  return targetStorage == KaTargetStorage::LongTerm10G ? longTermUnasked : ordinaryUnasked;
}
