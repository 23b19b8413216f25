#pragma once

#include "app/KaSnapshotKeeper.h"
#include "engine/KaDownloadProcessorDelegate.h"
#include "identity/KaLink.h"
#include "platform/Mailbox.h"
#include "platform/Mutex.h"
#include "platform/ThreadAnnotations.h"
#include "settings/KaDownloadData.h"
#include "settings/KaDownloadOption.h"

#include <QHash>
#include <QString>

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

class KaDownloadDelegate;
class KaDownloadProcessor;
struct KaTokenVerdict;

namespace platform {
template <class T> class NoDestructor;
}

/// The one object through which the user interface and the download engine meet: it owns the settings, the bookkeeping,
/// the link, the login in progress and the download processor. Made on the main thread, and never destroyed.
class KaModelFacade final : public KaDownloadProcessorDelegate {
public:
  [[nodiscard]] static KaModelFacade &sharedInstance();
  ~KaModelFacade() override;

  /// Receiver of all reports; not owned, may be null. Any thread.
  void setDlDelegate(KaDownloadDelegate *delegate) { dlDelegate = delegate; }

  /// How the agent stands now. Any thread; asks no network and no disk.
  [[nodiscard]] KaSnapshot snapshot() const;

  /// @name Settings. Any thread.
  /// @{
  [[nodiscard]] KaDownloadOption downloadOption() const override; ///< a consistent snapshot
  /// Saves them at once. @return whether that succeeded; until the end of the process they count either way.
  bool setDownloadOption(const KaDownloadOption &option);
  [[nodiscard]] QString downloadOptionParentFolder() const;
  [[nodiscard]] QString downloadOptionParent10GFolder() const;
  [[nodiscard]] QString checkBox10GDownload() const; ///< the user's choice, whether the service offers it or not
  /// Whether the service offers the 10G storage and the previews, by its settings as they were last read; true before.
  [[nodiscard]] bool offers10GStorage() const { return bOffers10GStorage; }
  [[nodiscard]] QString checkBoxCreateSubfolder() const;
  [[nodiscard]] QString checkBoxDownloadMetadata() const;
  [[nodiscard]] qint64 downloadOptionChildFolder() const;
  bool saveDownloadFolderSetting() const; ///< @return as above
  bool loadDownloadFolderSetting();       ///< always false
  [[nodiscard]] KaResultCode verifyDownloadOptionParentFolder(const QString &path) const override;
  [[nodiscard]] KaWaitTimes loadWaitTimeInfo(KaWaitTimes builtIn) const override;
  [[nodiscard]] bool hasNetwork() const override; ///< blocks for a moment: never on the main thread
  /// @}

  /// @name Bookkeeping, by target key. Any thread.
  /// @{
  void setDownloadDataUUID(const QString &key) override;
  void setDownloadDataLastDateTime(const QString &key, const QString &lastDateTime);
  void setDownloadDataAddContent(const QString &key, const QString &contentId) override;
  void setDownloadDataRemoveContents(const QString &key);
  void setDownloadDataNewDate(const QString &key, const QString &lastDateTime, const QString &contentId) override;
  void setDownloadData(const QString &key, const QString &lastDateTime, const QStringList &contentIds);
  [[nodiscard]] std::optional<QString> downloadDataLastDateTime(const QString &key) const override;
  [[nodiscard]] std::optional<QStringList> downloadDataContentIds(const QString &key) const override;
  [[nodiscard]] std::optional<KaDownloadData> downloadData(const QString &key) const;
  [[nodiscard]] bool saveGetImageInfo(const QString &fileName, const QString &uuidKey) override;
  [[nodiscard]] bool loadGetImageInfo(const QString &fileName) override;
  [[nodiscard]] KaLoadedLedger loadLedger(const QString &account) const override;
  [[nodiscard]] bool saveLedger(const QString &account, KaLedger &ledger) override;
  /// @}

  /// @name Reports, forwarded to the delegate on the caller's thread but for one.
  /// @{
  void setOffers10GStorage(bool offers) override { bOffers10GStorage = offers; } ///< kept alone: nobody is told
  void setAppStatus(KaAppStatus status) override;
  void setProcessingResult(KaResultCode result, bool userTrigger) override;
  void noteFaultCause(KaFaultCause cause, KaTargetStorage storage = KaTargetStorage::Days30) override;
  /// While onProcessingResult is being told, on its thread: why the failure came.
  [[nodiscard]] KaFaultCause faultCause() const;
  void notifySavingTrouble(KaResultCode cause, KaTargetStorage storage) override;
  void setEnableLoggin(bool enable) override;
  /// On the main thread, unless the link is over by then.
  void notifyLinkHolds(KaLinkNumber number) override;
  void notifyDownloadProcessFinish() override;
  /// @}

  /// @name Reports that are kept for snapshots
  /// @{
  void setStillToCome(qsizetype count) override { keeper.setStillToCome(count); }
  void noteLooking() override { keeper.noteLooking(); }
  void noteLooked() override { keeper.noteLooked(); }
  void notePass(qsizetype files) override { keeper.notePass(files); }
  void noteFile(const QString &saved) override { keeper.noteFile(saved); }
  void noteWait(std::optional<std::chrono::milliseconds> longest) override { keeper.noteWait(longest); }
  void noteNothingNew() override { keeper.noteGoodEnd(); }
  void noteUnsaved() override { keeper.noteResult({KaResultCode::Unexpected}); }
  void noteUnanswered() override { keeper.noteResult({KaResultCode::Offline, KaFaultCause::NoAnswer}); }
  /// @}

  /// @name The download thread. Main thread.
  /// @{
  /// @param initialAccess  the first run of a new link, which ends either wait; else a run that the user asks for now.
  void downloadNow(bool initialAccess);
  void cancelPollingWait();
  /// Has the thread woken by news of the network and of sleep, from the next turn of the event loop to its end. Once.
  void listenForNews();
  /// Such news.
  void newsFromOutside();
  void endDownloadProcess();
  void joinDownloadProcess(); ///< after onFinishDownloadProcess: waits for the last lines of the thread
  /// @}
  // The log.
  void switchLogMode();
  [[nodiscard]] std::optional<QString> getOutputLogFilePath() const;

  /// @name Linkage. Main thread, but for the questions, which any thread may ask. What is told: see KaDownloadDelegate.
  /// @{
  [[nodiscard]] KaLinkState linkState() const { return link.state(); }
  [[nodiscard]] bool bLoggedIn() const { return link.isLinkedOrBeingSetUp(); }
  [[nodiscard]] std::optional<QString> loadLinkageSetting() const { return link.idToken(); }
  /// Takes up the stored link and lets its runs begin. Once, at start, with the delegate in place.
  void initializeLinkageSetting();
  /// Opens the login page, and tells later when it does not open. Drops a login whose token is being verified.
  void setupLinkage();
  /// Verifies a callback's token on a thread of its own; the effects come back to this one. A token that completed the
  /// last login, or is being verified, changes and tells nothing: browsers call twice.
  void setIdCode(const QString &token);
  /// After onCompleteLinkageSetting: the user has seen the folders, so runs of the new link may begin.
  void confirmFolders() { link.confirmFolders(); }
  void closeLinkage();
  /// @}

private:
  friend class platform::NoDestructor<KaModelFacade>;

  KaModelFacade();

  class LoginVerification;
  struct News;

  void takeUpLinkage();
  [[nodiscard]] bool isBeingVerified(const QString &token) const;
  void dropLogins();
  void endLogin(LoginVerification &ended, const KaTokenVerdict &verdict);
  void finishLogin(const QString &token, const KaTokenVerdict &verdict);
  void takeLogin(const QString &token);
  void tellResult(const KaFault &told, bool userTrigger);
  void tellNotOpened(const QString &page, const QString &url);

  mutable platform::Mutex optionLock;
  KaDownloadOption dOption KA_GUARDED_BY(optionLock);
  mutable platform::Mutex dataLock;
  QHash<QString, KaDownloadData> dData KA_GUARDED_BY(dataLock);
  KaLink link;
  bool canKeepFiles = false;   ///< fixed after construction: what the app folder was like at start
  bool hasToldUnsaved = false; ///< main thread: that a login was not stored
  std::atomic<bool> bOffers10GStorage = true;
  mutable std::atomic<bool> isProxyHere = false; ///< so that no network is needed: as the last run found it
  KaSnapshotKeeper keeper;
  KaFault next; ///< download thread: all but the result of what is told next
  std::atomic<KaDownloadDelegate *> dlDelegate = nullptr;
  platform::Mailbox mailbox;
  /// Main thread, in the order of the callbacks; dropped ones stay until their thread has ended. All end before the
  /// processor.
  std::vector<std::unique_ptr<LoginVerification>> logins;
  std::unique_ptr<KaDownloadProcessor> dlProc;
  std::unique_ptr<News> news; ///< main thread
};
