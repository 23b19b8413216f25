#pragma once

#include "app/KaSnapshot.h"
#include "platform/BootClock.h"
#include "platform/Mutex.h"
#include "platform/ThreadAnnotations.h"

#include <QDate>
#include <QDateTime>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>

/// What snapshots tell the time by. Any thread.
struct KaSnapshotClocks {
  std::function<QDateTime()> wall = [] { return QDateTime::currentDateTime(); };
  std::function<platform::BootClock::time_point()> boot = &platform::BootClock::now; ///< what waits go by
};

/// Keeps of what is reported as much as a snapshot tells. Each report costs a lock and a few assignments. Any thread.
class KaSnapshotKeeper {
public:
  explicit KaSnapshotKeeper(KaSnapshotClocks measuredBy = {});
  KaSnapshotKeeper(const KaSnapshotKeeper &) = delete;
  KaSnapshotKeeper &operator=(const KaSnapshotKeeper &) = delete;

  /// @name What the download thread is at, as KaDownloadProcessorDelegate has it
  /// @{
  void noteLooking() KA_EXCLUDES(lock);
  void noteLooked() KA_EXCLUDES(lock);
  void notePass(qsizetype files) KA_EXCLUDES(lock);
  void noteFile(const QString &saved) KA_EXCLUDES(lock);
  void noteWait(std::optional<std::chrono::milliseconds> longest) KA_EXCLUDES(lock);
  void setStillToCome(qsizetype count) KA_EXCLUDES(lock);
  void noteRun() KA_EXCLUDES(lock); ///< one begins
  /// A storage was looked through and all was well, as in a result of that kind.
  void noteGoodEnd() KA_EXCLUDES(lock);
  /// @}

  /// A failure counts until something ends well, but not in the same run: the one storage says nothing of the other.
  void noteResult(const KaFault &told) KA_EXCLUDES(lock);
  /// What has failed was the check of the link, or had no network to make it; nothing else is mended by that.
  void noteLinkHolds() KA_EXCLUDES(lock);
  /// A new link of the same account: what was at work or had failed was the old one's.
  void forgetLink() KA_EXCLUDES(lock);
  void forgetAccount() KA_EXCLUDES(lock);

  /// All but what is asked for at the moment: link, network and clock.
  [[nodiscard]] KaSnapshot snapshot() const KA_EXCLUDES(lock);

private:
  void begin(KaSnapshot::Doing doing, qsizetype files = 0) KA_REQUIRES(lock);

  const KaSnapshotClocks clocks;
  mutable platform::Mutex lock; ///< covers copying
  KaSnapshot kept KA_GUARDED_BY(lock);
  bool hasRunFailed KA_GUARDED_BY(lock) = false;
  QDate cameOn KA_GUARDED_BY(lock); ///< the day that cameToday counts
  std::optional<platform::BootClock::time_point> looksAgain KA_GUARDED_BY(lock);
};
