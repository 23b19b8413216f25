#pragma once

#include "engine/KaAppStatus.h"
#include "engine/KaTargetStorage.h"
#include "identity/KaLink.h"
#include "service/KaFaultCause.h"
#include "service/KaResultCode.h"
#include "settings/KaDownloadOption.h"
#include "settings/KaLedger.h"
#include "settings/KaWaitTimes.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

/// What the download processor needs from above. Called on the download thread only; implementations guard what other
/// threads touch.
class KaDownloadProcessorDelegate {
public:
  KaDownloadProcessorDelegate() = default;
  KaDownloadProcessorDelegate(const KaDownloadProcessorDelegate &) = delete;
  KaDownloadProcessorDelegate &operator=(const KaDownloadProcessorDelegate &) = delete;
  virtual ~KaDownloadProcessorDelegate() = default;

  /// @name Settings
  /// @{
  [[nodiscard]] virtual KaDownloadOption downloadOption() const = 0;
  [[nodiscard]] virtual KaResultCode verifyDownloadOptionParentFolder(const QString &path) const = 0;
  /// @p builtIn with each wait replaced that the settings override.
  [[nodiscard]] virtual KaWaitTimes loadWaitTimeInfo(KaWaitTimes builtIn) const = 0;
  /// @}

  /// Whether a run may get anywhere: the system has a network, or the service needs none. Blocks for less
  /// than half a second.
  [[nodiscard]] virtual bool hasNetwork() const = 0;

  /// @name Bookkeeping, by target key. Unknown keys change nothing and read as absent.
  /// @{
  virtual void setDownloadDataUUID(const QString &key) = 0; ///< makes a fresh record when there is none
  virtual void setDownloadDataAddContent(const QString &key, const QString &contentId) = 0;
  virtual void setDownloadDataNewDate(const QString &key, const QString &lastDateTime, const QString &contentId) = 0;
  [[nodiscard]] virtual std::optional<QString> downloadDataLastDateTime(const QString &key) const = 0;
  [[nodiscard]] virtual std::optional<QStringList> downloadDataContentIds(const QString &key) const = 0;
  [[nodiscard]] virtual bool loadGetImageInfo(const QString &fileName) = 0;
  [[nodiscard]] virtual bool saveGetImageInfo(const QString &fileName, const QString &uuidKey) = 0;
  [[nodiscard]] virtual KaLoadedLedger loadLedger(const QString &account) const = 0;
  /// @p ledger has the number of its new generation afterwards.
  [[nodiscard]] virtual bool saveLedger(const QString &account, KaLedger &ledger) = 0;
  /// @}

  /// @name Reports
  /// @{
  /// Whether the service's settings offer the 10G storage now. What the user chose of it stays. Must not call back into
  /// the link.
  virtual void setOffers10GStorage(bool offers) = 0;
  virtual void setAppStatus(KaAppStatus status) = 0;
  virtual void setProcessingResult(KaResultCode result, bool userTrigger) = 0;
  /// Why, and where, the failure came that setProcessingResult tells next; without it the cause is unknown.
  virtual void noteFaultCause(KaFaultCause, KaTargetStorage) {}
  /// Before a storage is said to be done, and at the end of a run: so many files could not be had so far, and are tried
  /// again.
  virtual void setStillToCome(qsizetype count) = 0;
  /// Pictures are still to come, for which there was no room (DiskFull) or no folder (FileNotSaved). A message alone.
  virtual void notifySavingTrouble(KaResultCode cause, KaTargetStorage storage) = 0;
  virtual void setEnableLoggin(bool enable) = 0;
  /// A failed refresh was told of @p link, and now one has succeeded. Must not call back into the link.
  virtual void notifyLinkHolds(KaLinkNumber link) = 0;
  virtual void notifyDownloadProcessFinish() = 0; ///< the thread's last call
  /// @}

  /// @name What the thread is at, for who looks on. Nothing depends on them; they must be quick, and must not call back
  /// into the link.
  /// @{
  virtual void noteLooking() {}       ///< begins to ask what there is, or waits to ask once more in the same run
  virtual void noteLooked() {}        ///< the service has said what there is
  virtual void notePass(qsizetype) {} ///< a pass over so many files begins
  /// A file of the pass is behind it. @p saved  where it was saved just now; empty when nothing new was made.
  virtual void noteFile(const QString & /*saved*/) {}
  /// A wait between runs begins, for so long at most; absent: for a link, a login or a network.
  virtual void noteWait(std::optional<std::chrono::milliseconds>) {}
  virtual void noteNothingNew() {} ///< a storage was looked through, all was well, and nobody is told
  virtual void noteUnanswered() {} ///< a storage of the run gave no answer; nobody is told
  virtual void noteUnsaved() {}    ///< the link cannot be kept on disk still; the user was told before
  /// @}
};
