#pragma once

#include "engine/KaContentListing.h"
#include "engine/KaTargetStorage.h"
#include "engine/KaWaitClock.h"
#include "platform/ThreadBound.h"

#include <QDateTime>
#include <QHash>
#include <QSet>
#include <QString>

#include <chrono>
#include <optional>

class KaBookkeeping;

/// What a pass made of the images that it was offered, by their listed keys.
struct KaPassTrace {
  QSet<QString> asked;    ///< some request was made for it, or it was found to have no room or folder
  QSet<QString> declined; ///< is not of the storage, so says its tag
  QSet<QString> unsure;   ///< a copy is there whose size or name could not be confirmed
};

/// Remembers what runs have left undone, and says which images are worth asking for and when the ordinary storage is to
/// be looked through once more for what the listings from the last hour on do not bring. Lives as long as the process.
/// Download thread.
class KaLookBack {
public:
  struct Parts {
    const KaBookkeeping &bookkeeping; ///< outlives this object
    KaWaitClock clock{};
  };
  explicit KaLookBack(Parts parts);
  KaLookBack(const KaLookBack &) = delete;
  KaLookBack &operator=(const KaLookBack &) = delete;

  /// @param isAskedFor  by the user: nothing pauses, and a look-back is due.
  void beginRun(bool isAskedFor);
  void endRun();

  /// Leaves out what has failed in three rounds of this run, and what has failed in so many runs that this is not yet
  /// the next one to try it in.
  [[nodiscard]] KaListedImages worthAsking(KaListedImages images, KaTargetStorage targetStorage) const;
  /// A pass over @p offered is over.
  void noteRound(const KaListedImages &offered, const KaPassTrace &trace, KaTargetStorage targetStorage);

  /// Whether a look-back is due at the end of this run: the first of a process that knows the account already, one that
  /// was asked for, one after something was left undone or in which it is to be tried again, and every six hours
  /// ("lookBackInterval", seconds).
  [[nodiscard]] bool isDue() const;
  /// Of the listing: 31 days before the last hour recorded or @p now, whichever is earlier. The storage keeps 30.
  [[nodiscard]] QString startAfter(const QDateTime &now) const;
  void noteLookBackDone();

private:
  using TimePoint = platform::BootClock::time_point;
  struct Trouble {
    int rounds = 0;        ///< that it has failed in, of this run
    int runs = 0;          ///< that it has failed in
    int unsureRuns = 0;    ///< of those with a copy that could not be confirmed
    bool isUnsure = false; ///< in this run
    qint64 nextRun = 0;    ///< to try it in, or the first from then on:
    TimePoint nextTry{};
  };

  [[nodiscard]] bool pauses(const Trouble &trouble, TimePoint now) const;

  const Parts with;
  const std::chrono::seconds interval;
  const TimePoint begun;
  const platform::ThreadBound thread;
  QHash<QString, Trouble> troubles; ///< by storage and key
  QSet<QString> pending;            ///< the same, of this run
  qint64 run = 0;
  bool isAskedFor = false;
  bool isDone = false;       ///< a look-back, in this run
  bool isLeftUndone = false; ///< something, by the runs before
  std::optional<TimePoint> lastDone;
};
