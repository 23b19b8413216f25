#pragma once

#include "engine/KaLedgerKeeper.h"
#include "engine/KaTargetStorage.h"
#include "engine/KaWaitClock.h"
#include "platform/ThreadBound.h"

#include <QString>

#include <optional>
#include <utility>

class KaDownloadProcessorDelegate;
class KaDownloadSession;
class KaFilledFolders;
class KaImageKey;

/// What was taken of each storage of the session's user, so that nothing is fetched twice: the records, which say where
/// a listing begins, and the ledger, which says what is fetched. Download thread.
class KaBookkeeping {
public:
  /// What is referred to outlives this object.
  struct Parts {
    KaDownloadProcessorDelegate &delegate;
    const KaDownloadSession &session;
    KaFilledFolders &filledFolders;
    KaWaitClock clock{};
  };
  explicit KaBookkeeping(Parts parts) : with(std::move(parts)), ledger(with.delegate) {}
  KaBookkeeping(const KaBookkeeping &) = delete;
  KaBookkeeping &operator=(const KaBookkeeping &) = delete;

  /// Reads the record of every storage. @return whether each could be read.
  bool load();
  /// Takes up the ledger of the session's user. Before the first listing of a run; needs hasUser().
  void openLedger();
  /// Whether the account had a record when the process met it.
  [[nodiscard]] bool knewAccount() const { return knewAccountBefore; }
  /// Saves the ledger and one record; the names of the files that they count on reach the disk first. Needs hasUser().
  [[nodiscard]] bool save(KaTargetStorage targetStorage);
  /// The same after an item of a pass, when the last time was half a minute ago: so that little is asked for again
  /// after a kill. One that fails is told when the pass is over.
  void saveNowAndThen(KaTargetStorage targetStorage);
  /// Whether it is known whose records these are. Without a user there is nothing new to keep, and an empty record
  /// would replace what an earlier process kept.
  [[nodiscard]] bool hasUser() const;
  /// The user's id; empty while it is not known.
  [[nodiscard]] QString account() const;

  /// "yyyyMMdd/HH" of the newest hour taken, behind which a listing begins; empty when nothing is known. For the 10G
  /// storage, whose record knows no date, the hour before all others.
  [[nodiscard]] QString lastDateTime(KaTargetStorage targetStorage) const;
  /// The index of the last preview taken; 0 before the first.
  [[nodiscard]] qint64 lastPreview() const;

  /// Whether an image of a listing, by its listed key, is not to be fetched (again).
  [[nodiscard]] bool isTaken(const KaImageKey &listed, KaTargetStorage targetStorage) const;
  /// From now on it is not.
  void settle(const KaImageKey &listed, KaTargetStorage targetStorage);
  /// What only listings from before @p dateTime ("yyyyMMdd/HH") could bring is needed no longer.
  void forgetBefore(const QString &dateTime);

  /// Records an image that was saved. One of an older hour than the ordinary storage's record changes nothing.
  void saveImageInfo(const KaImageKey &image, KaTargetStorage targetStorage);
  /// Records a preview that was saved.
  void savePreviewInfo(qint64 index);

private:
  [[nodiscard]] QString recordKey(KaTargetStorage targetStorage) const;

  const Parts with;
  const platform::ThreadBound thread;
  KaLedgerKeeper ledger;
  bool knewAccountBefore = false;
  std::optional<platform::BootClock::time_point> nextSave;
  QString accountBefore; ///< whose ledger was taken up last
};
