#pragma once

#include "engine/KaContentListing.h"
#include "engine/KaPass.h"
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
  QHash<QString, KaResultCode> asked; ///< some request was made for it, or for its room or folder; what it came to
  QSet<QString> declined;             ///< is not of the storage, so says its tag
  QSet<QString> unsure;               ///< a copy is there whose size or name could not be confirmed
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
  /// The run works for @p account: what was remembered of another one is forgotten.
  void takeUp(const QString &account);
  void endRun();

  /// Leaves out what has failed in three rounds of this run, and what has failed in so many runs that this is not yet
  /// the next one to try it in.
  [[nodiscard]] KaListedImages worthAsking(KaListedImages images, KaTargetStorage targetStorage) const;
  /// The same of the ordinary storage, those last that got no answer before: they must not keep the others waiting.
  [[nodiscard]] KaListedImages worthAskingSilentLast(KaListedImages images) const;
  /// A pass over @p offered is over.
  void noteRound(const KaListedImages &offered, const KaPassTrace &trace, const KaPassOutcome &outcome,
                 KaTargetStorage targetStorage);
  /// A listing of the ordinary storage did not bring all that it should have.
  void noteLeftUndone() { isLeftInRun = true; }

  /// Why pictures could not be saved, where the disk was the cause, and where.
  struct SavingTrouble {
    KaResultCode cause = KaResultCode::DiskFull; ///< or FileNotSaved
    KaTargetStorage storage = KaTargetStorage::Days30;
  };
  /// The same of this run, and of the ordinary storage before the other.
  [[nodiscard]] std::optional<SavingTrouble> savingTrouble() const;
  /// How many files of both storages are still to come: that could not be had so far and will be tried again, or that
  /// the last round was broken off before. For the runs to come once this one has ended.
  [[nodiscard]] qsizetype countStillToCome() const;

  /// Whether a look-back is due at the end of this run: the first of a process that knows the account already, one that
  /// was asked for, one after something was left undone or in which it is to be tried again, one whose last round did
  /// not come to all, and every six hours ("lookBackInterval", seconds).
  [[nodiscard]] bool isDue() const;
  /// Of the listing: 31 days before the last hour recorded or @p now, whichever is earlier. The storage keeps 30.
  [[nodiscard]] QString startAfter(const QDateTime &now) const;
  /// The whole storage was listed, by a look-back where it is the ordinary one; @p images are all that is still to
  /// come.
  void noteListed(const KaListedImages &images, KaTargetStorage targetStorage);

private:
  using TimePoint = platform::BootClock::time_point;
  /// An image that could not be had.
  struct Trouble {
    int rounds = 0;                            ///< that it has failed in, of this run
    KaResultCode last = KaResultCode::Success; ///< what the last of them came to
    bool isUnsure = false;                     ///< in this run
    int runs = 0;                              ///< that it has failed in by itself
    int silentRuns = 0;                        ///< in which nothing else got an answer either
    int unsureRuns = 0;                        ///< of those with a copy that could not be confirmed
    qint64 nextRun = 0;                        ///< to try it in, or the first from then on:
    TimePoint nextTry{};
  };
  using Troubles = QHash<QString, Trouble>; ///< by listed key

  [[nodiscard]] Troubles &of(KaTargetStorage targetStorage);
  [[nodiscard]] qsizetype &unaskedOf(KaTargetStorage targetStorage);
  [[nodiscard]] bool isWorthAsking(const Trouble &trouble, TimePoint now) const;
  void close(Trouble &trouble) const;

  const Parts with;
  const std::chrono::seconds interval;
  const platform::ThreadBound thread;
  QString owner;
  Troubles ordinary;
  Troubles longTerm;
  qsizetype ordinaryUnasked = 0; ///< by the last round, and not in trouble
  qsizetype longTermUnasked = 0;
  qint64 run = 0;
  bool isAskedFor = false;
  bool isDone = false;       ///< a look-back, in this run
  bool isAnswered = false;   ///< some request of this run
  bool isUnasked = false;    ///< something of the ordinary storage, in the last round
  bool isLeftInRun = false;  ///< something of the ordinary storage, by this run
  bool isLeftUndone = false; ///< by the runs before
  TimePoint begun;
  std::optional<TimePoint> lastDone;
};
