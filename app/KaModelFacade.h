#pragma once

#include "engine/KaDownloadProcessorDelegate.h"
#include "platform/Mailbox.h"
#include "platform/Mutex.h"
#include "platform/ThreadAnnotations.h"
#include "settings/KaDownloadData.h"
#include "settings/KaDownloadOption.h"

#include <QHash>
#include <QString>

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

class KaDownloadDelegate;
class KaDownloadProcessor;

/// The one object through which the user interface and the download engine meet: it owns the settings, the bookkeeping,
/// the cached ID token, the login in progress and the download processor. Made on the main thread.
class KaModelFacade final : public KaDownloadProcessorDelegate {
public:
  [[nodiscard]] static KaModelFacade &sharedInstance();
  ~KaModelFacade() override;

  /// Receiver of all reports; not owned, may be null. Any thread.
  void setDlDelegate(KaDownloadDelegate *delegate) { dlDelegate = delegate; }

  /// @name Settings. Any thread.
  /// @{
  [[nodiscard]] KaDownloadOption downloadOption() const override;  ///< a consistent snapshot
  void setDownloadOption(const KaDownloadOption &option) override; ///< saved at once
  [[nodiscard]] QString downloadOptionParentFolder() const;
  [[nodiscard]] QString downloadOptionParent10GFolder() const;
  [[nodiscard]] QString checkBox10GDownload() const;
  [[nodiscard]] QString checkBoxCreateSubfolder() const;
  [[nodiscard]] QString checkBoxDownloadMetadata() const;
  [[nodiscard]] qint64 downloadOptionChildFolder() const;
  void saveDownloadFolderSetting() const;
  bool loadDownloadFolderSetting(); ///< always false
  [[nodiscard]] KaResultCode verifyDownloadOptionParentFolder(const QString &path) const override;
  void loadWaitTimeInfo(KaWaitTimes &waitTimes) const override;
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
  /// @}

  /// @name Reports, forwarded to the delegate on the caller's thread.
  /// @{
  void setAppStatus(KaAppStatus status) override;
  void setProcessingResult(KaResultCode result, bool userTrigger) override;
  void setEnableLoggin(bool enable) override;
  void notifyDownloadProcessFinish() override;
  /// @}

  /// @name The download thread. Main thread.
  /// @{
  /// @param initialAccess  also wakes a thread that waits for a link, for the first run of that link.
  void downloadNow(bool initialAccess);
  void cancelPollingWait();
  void endDownloadProcess();
  /// @}

  /// @name The log
  /// @{
  void switchLogMode();
  [[nodiscard]] std::optional<QString> getOutputLogFilePath() const;
  /// @}

  /// @name Linkage. Main thread, but for those that the download thread reads.
  /// @{
  bool saveLinkageSetting(const QString &idToken) override;
  [[nodiscard]] std::optional<QString> loadLinkageSetting() const override;
  [[nodiscard]] bool bLoggedIn() const override { return loggedIn; }
  void initializeLinkageSetting();
  void setupLinkage();
  /// Takes the login in progress; the token is verified on a thread of its own and its effects come back to this one.
  void setIdCode(const QString &token);
  void closeLinkage();
  /// @}

private:
  KaModelFacade();

  class LoginVerification;

  void dropLogins();
  void endLogin(LoginVerification &ended, KaResultCode verdict);
  void finishLogin(const QString &token, KaResultCode verdict);

  mutable platform::Mutex optionLock;
  KaDownloadOption dOption KA_GUARDED_BY(optionLock);
  mutable platform::Mutex dataLock;
  QHash<QString, KaDownloadData> dData KA_GUARDED_BY(dataLock);
  platform::Guarded<std::optional<QString>> dIdToken; ///< guards no more than its own copying
  std::optional<QString> nonce;                       ///< main thread
  std::atomic<bool> loggedIn = false;
  std::atomic<KaDownloadDelegate *> dlDelegate = nullptr;
  platform::Mailbox mailbox;
  /// Main thread, in the order of the callbacks; dropped ones stay until their thread has ended. All end before the
  /// processor.
  std::vector<std::unique_ptr<LoginVerification>> logins;
  std::unique_ptr<KaDownloadProcessor> dlProc;
};
