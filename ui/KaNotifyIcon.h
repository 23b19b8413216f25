#pragma once

#include "app/KaDownloadDelegate.h"
#include "app/KaSnapshot.h"
#include "platform/Mailbox.h"
#include "platform/Mutex.h"
#include "platform/ThreadAnnotations.h"
#include "ui/KaStatusItemView.h"
#include "ui/StatusItemState.h"
#include "ui/StatusSummary.h"

#include <QDialog>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>

struct KaNotifyIconTimes {
  std::chrono::milliseconds tick{800};
  std::chrono::milliseconds startDelay{1000}; ///< from a completed login to its first run
};

/// The controller of the status item: turns what the facade reports into icon, tooltip, menu, notifications and alerts,
/// and what the user chooses into calls of the facade. Made and used on the main thread; only the delegate's operations
/// come from any thread.
class KaNotifyIcon final : public QObject, public KaDownloadDelegate {
  Q_OBJECT

public:
  /// Becomes the facade's delegate, loads the settings and the link, so the first run may begin. @p model and
  /// @p statusItem outlive this object; destroy it only after appFinalize.
  KaNotifyIcon(KaModelFacade &model, KaStatusItemView &statusItem, const KaNotifyIconTimes &times = {});
  ~KaNotifyIcon() override;

  void onChangeStatus(KaModelFacade &facade, KaAppStatus statusMode) override;
  void onProcessingResult(KaModelFacade &facade, KaResultCode result, bool userTrigger) override;
  void onSavingTrouble(KaResultCode cause) override;
  void onCompleteLinkageSetting() override;
  void onSetEnableLogginMenu(bool enable) override;
  void onFinishDownloadProcess() override;
  void onChangeLinkage(bool linked) override;
  void onPageNotOpened(const QString &url) override;

  /// Answers the open settings window with its OK, as a desktop tool may when there is nobody to press it.
  void confirmDialog();

  /// The token of a login that came back from the browser.
  void setIdCode(const QString &token);

  /// @name What the menu's entries do. None lets an exception out.
  /// @{
  void perform(StatusEntry entry); ///< nothing, if the menu does not offer it or has it greyed
  void menuAction_Download();
  void menuAction_DispSetting();
  void menuAction_Link();
  void menuAction_Logout();
  void menuAction_Help();
  void menuAction_About();
  void menuAction_LaunchSetting();
  void menuAction_ExitApp();
  /// @}

  /// Saves the folder settings, ends the download thread and waits for its end; no wait when it has ended before.
  /// Needs no event loop. @return false when the thread still runs after @p finishWait.
  [[nodiscard]] bool appFinalize(std::chrono::milliseconds finishWait = std::chrono::seconds(10));

private:
  struct Detach {
    void operator()(KaModelFacade *facade) const;
  };

  /// Whether the user may ask for a run: linked, and no error result since.
  [[nodiscard]] bool bLinkage() const;
  /// Whether the menu shows @p entry, and not greyed.
  [[nodiscard]] bool isOffered(StatusEntry entry) const;
  void iconDraw();
  void startMenu(bool linked);
  /// @param endsOthers  it makes untrue what was told before.
  void applyResult(const KaFault &told, bool endsOthers, bool userTrigger);
  void reportResult(const KaFault &told, QLatin1StringView messageKey, bool userTrigger);
  [[nodiscard]] QString newestPicture() const;
  void withdraw(NotificationKinds kinds);
  void noteLinkHolds();
  /// Opens a window of its own, or brings the one before the user that is open.
  template <class Dialog, class... Arguments> void openDialog(Arguments &...arguments);
  void openSettings();
  void foldersSaved();
  void foldersNotSaved();
  void performRemedy(StatusRemedy remedy);
  void openFolder(const QString &path);
  void confirmFolders();
  void foldersConfirmed();
  void startInitialRun();
  void notificationActivated(const QString &processingResult);
  [[nodiscard]] bool waitForFinish(std::chrono::steady_clock::time_point deadline);
  void guarded(const std::function<void()> &action);

  KaModelFacade &model;
  KaStatusItemView &statusItem;
  const KaNotifyIconTimes times;

  // Main thread.
  KaAppStatus appStatus = KaAppStatus::NotLinked;
  KaErrorStatus errSubStatus = KaErrorStatus::Offline;
  KaFaultCause validationFault = KaFaultCause::Unknown; ///< of the last login that could not be checked
  QTimer iconDrawTimer;
  qint32 animationCount = 0;
  /// The link that was told of, until an error result: what it says clears bLinkage although the link itself is kept.
  bool linkHolds = false;
  bool isLoginAskedFor = false; ///< the user was told to log in, and nothing has made that untrue since
  StatusItemState shown;
  QPointer<QDialog> dialog; ///< the settings or the about window, one at a time; deletes itself

  std::atomic<bool> bLogginEnabled = true;

  platform::Mutex finishLock;
  std::condition_variable_any appcnd; ///< with finishLock: the download thread has ended
  bool hasFinished KA_GUARDED_BY(finishLock) = false;

  platform::Mailbox mailbox;
  /// Takes this back from the facade in the end, and also when a constructor that throws has given it away.
  std::unique_ptr<KaModelFacade, Detach> attachment;
};
