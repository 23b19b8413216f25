#include "ui/KaNotifyIcon.h"

#include "app/KaModelFacade.h"
#include "app/ResultMeaning.h"
#include "log/ExceptionGuard.h"
#include "platform/Sight.h"
#include "platform/ThreadBound.h"
#include "ui/HelpPages.h"
#include "ui/KaDownloadFolderSettingView.h"
#include "ui/KaStatusView.h"
#include "ui/KaVersionInformationView.h"
#include "ui/LoginItemQuestion.h"
#include "ui/OpenOrSay.h"
#include "ui/ShowInFront.h"
#include "ui/Texts.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QString labelOf(ClickEffect effect) {
  switch (effect) {
  case ClickEffect::OpenParentFolder:
  case ClickEffect::OpenParent10GFolder:
    return localised("STATUS_OPEN_FOLDER"_L1);
  case ClickEffect::Link:
    return localised("MENU_LOGIN"_L1);
  case ClickEffect::LookNow:
    return localised("MENU_DOWNLOAD"_L1);
  case ClickEffect::None:
    return {};
  }
  return {};
}

} // namespace

KaNotifyIcon::KaNotifyIcon(KaModelFacade &facade, KaStatusItemView &view, const KaNotifyIconTimes &waits)
    : model(facade), statusItem(view), times(waits) {
  platform::assertMainThread();
  connect(&statusItem, &KaStatusItemView::entryTriggered, this, &KaNotifyIcon::perform);
  connect(&statusItem, &KaStatusItemView::notificationActivated, this, &KaNotifyIcon::notificationActivated);
  connect(&iconDrawTimer, &QTimer::timeout, this, &KaNotifyIcon::iconDraw);
  iconDrawTimer.start(times.tick);

  model.setDlDelegate(this);
  attachment.reset(&model);
  model.loadDownloadFolderSetting();
  model.initializeLinkageSetting();
  // After the status that was just reported, so that a linked agent never shows the broken link.
  mailbox.post([this] { iconDraw(); });
}

KaNotifyIcon::~KaNotifyIcon() {
  delete dialog;
}

void KaNotifyIcon::Detach::operator()(KaModelFacade *facade) const {
  facade->setDlDelegate(nullptr);
}

void KaNotifyIcon::onChangeStatus(KaModelFacade &facade, KaAppStatus statusMode) {
  // One storage may be well and the other not; and without a network it only says that the next run waits for one.
  const KaSnapshot now = facade.snapshot();
  const bool isWell = statusMode == KaAppStatus::Normal && now.hasNetwork && !now.fault;
  mailbox.post([this, statusMode, isWell, isAllHere = now.stillToCome == 0] {
    appStatus = statusMode;
    if (isWell) withdraw(endedByListing(isAllHere));
  });
}

void KaNotifyIcon::onProcessingResult(KaModelFacade &facade, KaResultCode result, bool userTrigger) {
  // A good result says nothing of what failed in the same run, of the other storage. Looked at here, on the telling
  // thread: until it is applied, more may be told.
  const bool endsOthers = meaningOf(result) != ResultMeaning::Good || !facade.snapshot().fault;
  mailbox.post([this, fault = KaFault{result, facade.faultCause()}, endsOthers, userTrigger] {
    applyResult(fault, endsOthers, userTrigger);
  });
}

void KaNotifyIcon::onSavingTrouble(KaResultCode cause) {
  mailbox.post([this, cause] { reportResult({cause}, resultEffect(cause).messageKey, /*userTrigger=*/false); });
}

void KaNotifyIcon::onCompleteLinkageSetting() {
  platform::assertMainThread();
  guarded([this] { confirmFolders(); });
}

void KaNotifyIcon::onSetEnableLogginMenu(bool enable) {
  bLogginEnabled = enable;
}

void KaNotifyIcon::onFinishDownloadProcess() {
  const platform::MutexLock scope(finishLock);
  hasFinished = true;
  // Under the lock: the waiting side may destroy the condition as soon as it has seen the flag.
  appcnd.notify_all();
}

void KaNotifyIcon::onChangeLinkage(bool linked) {
  platform::assertMainThread();
  if (linked) return noteLinkHolds();
  linkHolds = false;
}

void KaNotifyIcon::noteLinkHolds() {
  linkHolds = true;
  withdraw(endedByLink());
}

void KaNotifyIcon::onPageNotOpened(const QString &url) {
  platform::assertMainThread();
  guarded([&] { showNotOpened(Openable::Page, url); });
}

void KaNotifyIcon::setIdCode(const QString &token) {
  platform::assertMainThread();
  model.setIdCode(token);
}

template <class Dialog, class... Arguments> void KaNotifyIcon::openDialog(Arguments &...arguments) {
  if (!dialog) {
    dialog = new Dialog(arguments...);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    // A modal window would take the menu of the status item away on some desktops, and with it the way to quit.
    dialog->setModal(false);
    // The closed window goes away later; from here on it is no longer the one that is open.
    connect(dialog, &QDialog::finished, this, [this] { dialog = nullptr; });
  }
  showInFront(*dialog);
}

void KaNotifyIcon::openSettings() {
  // They say how things stand, and ask for the folders of a new link: no window is in their place.
  if (qobject_cast<KaVersionInformationView *>(dialog)) dialog->reject();
  openDialog<KaDownloadFolderSettingView>(model);
  const auto *const settings = static_cast<KaDownloadFolderSettingView *>(dialog.data());
  connect(settings, &QDialog::accepted, this, &KaNotifyIcon::foldersSaved,
          static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection));
  connect(settings, &KaDownloadFolderSettingView::notSaved, this, &KaNotifyIcon::foldersNotSaved, Qt::UniqueConnection);
  connect(&settings->statusView(), &KaStatusView::remedyRequested, this, &KaNotifyIcon::performRemedy,
          Qt::UniqueConnection);
  connect(&settings->statusView(), &KaStatusView::openFolderRequested, this, &KaNotifyIcon::openFolder,
          Qt::UniqueConnection);
}

/// Where there was no room, or no folder, there may be now.
void KaNotifyIcon::foldersSaved() {
  const auto fault = model.snapshot().fault;
  if (fault && meaningOf(fault->result) == ResultMeaning::Saving) model.newsFromOutside();
}

void KaNotifyIcon::foldersNotSaved() {
  statusItem.alert(localised("MSG_ERR_SETTINGS_NOT_SAVED"_L1));
}

void KaNotifyIcon::performRemedy(StatusRemedy remedy) {
  switch (remedy) {
  // Also where the menu, after an error, does not offer them.
  case StatusRemedy::LogIn:
    if (bLogginEnabled) menuAction_Link();
    return;
  case StatusRemedy::LookNow:
    if (model.linkState() == KaLinkState::Linked) menuAction_Download();
    return;
  case StatusRemedy::OpenHelp:
    return perform(StatusEntry::Help);
  case StatusRemedy::ChooseFolder: // the window's own business
  case StatusRemedy::Choose10GFolder:
  case StatusRemedy::None:
    return;
  }
}

void KaNotifyIcon::openFolder(const QString &path) {
  guarded([&] { openFolderOrSay(path); });
}

void KaNotifyIcon::confirmFolders() {
  if (platform::isUnseen()) return foldersConfirmed(); // nobody would see the window, and no picture would come
  openSettings();
  connect(dialog, &QDialog::finished, this, &KaNotifyIcon::foldersConfirmed, Qt::UniqueConnection);
}

/// Once the user has seen where the pictures go, whatever the answer, the first run begins.
void KaNotifyIcon::foldersConfirmed() {
  // An error shown meanwhile was not this link's.
  noteLinkHolds();
  QTimer::singleShot(times.startDelay, this, [this] { guarded([this] { startInitialRun(); }); });
}

void KaNotifyIcon::confirmDialog() {
  guarded([this] {
    if (auto *const settings = qobject_cast<KaDownloadFolderSettingView *>(dialog)) settings->confirm();
  });
}

void KaNotifyIcon::startInitialRun() {
  // The user may have logged out again meanwhile.
  if (model.linkState() == KaLinkState::Unlinked) return;
  // Not before, or the thread could run for this link by itself, and then again for being told of it.
  model.confirmFolders();
  onChangeStatus(model, KaAppStatus::Normal);
  model.downloadNow(/*initialAccess=*/true);
}

bool KaNotifyIcon::bLinkage() const {
  return linkHolds && model.linkState() == KaLinkState::Linked;
}

void KaNotifyIcon::iconDraw() {
  const TickEffect effect = tickEffect(appStatus, animationCount);
  if (effect.restatesMenu) startMenu(*effect.restatesMenu);
  animationCount = effect.animationCount;
  shown.frame = effect.frame;
  shown.tooltipKey = tooltipKey(appStatus, errSubStatus);
  // Unlike the other entries this one is asked for its state whenever the menu opens.
  shown.isDownloadEnabled = bLinkage();
  statusItem.show(shown);
}

void KaNotifyIcon::startMenu(bool linked) {
  shown = {.frame = StatusFrame::Unlink,
           .tooltipKey = {},
           .isLinked = linked,
           .isDownloadEnabled = bLinkage(),
           .isLogginEnabled = bLogginEnabled,
           .isLaunchedAtLogin = isLaunchedAtLogin()};
}

void KaNotifyIcon::applyResult(const KaFault &told, bool endsOthers, bool userTrigger) {
  const ResultEffect effect = resultEffect(told.result, told.cause);
  if (effect.appStatus) appStatus = *effect.appStatus;
  if (effect.errSubStatus) errSubStatus = *effect.errSubStatus;
  if (effect.clearsLinkage) linkHolds = false;
  // What a click on its notification does is decided by the latest of its kind.
  if (told.result == KaResultCode::ValidationFailed) validationFault = told.cause;
  if (endsOthers) withdraw(endedBy(told.result, told.cause));
  // A callback that belongs to no login says nothing of a link that stands.
  const bool isStray = told.cause == KaFaultCause::NotAccepted && model.linkState() == KaLinkState::Linked;
  if (!isStray && notificationKind(told.result, told.cause) == NotificationKind::LoginNeeded) isLoginAskedFor = true;
  reportResult(told, effect.messageKey, userTrigger);
}

void KaNotifyIcon::reportResult(const KaFault &told, QLatin1StringView messageKey, bool userTrigger) {
  const QString message = messageKey.isEmpty() ? QString() : localised(messageKey);
  if (userTrigger) return statusItem.alert(message);
  if (message.isEmpty()) return;
  const NotificationKind kind = notificationKind(told.result, told.cause);
  const bool bringsPictures = kind == NotificationKind::Complete || kind == NotificationKind::Complete10G;
  statusItem.notify(kind, {.title = localised("APP_SHORT_NAME"_L1),
                           .text = message,
                           .processingResult = QString::number(static_cast<qint64>(told.result)),
                           .clickLabel = labelOf(clickEffect(told.result, told.cause)),
                           .topic = notificationTopic(kind),
                           .urgency = notificationUrgency(kind),
                           .imagePath = bringsPictures ? newestPicture() : QString()});
}

/// Of those that came last, and that every notification service can show; empty when there is none.
QString KaNotifyIcon::newestPicture() const {
  const QStringList files = model.snapshot().lastFiles;
  const auto newest = std::find_if(files.begin(), files.end(), [](const QString &file) {
    return file.endsWith(u".jpg", Qt::CaseInsensitive) || file.endsWith(u".png", Qt::CaseInsensitive);
  });
  return newest == files.end() ? QString() : *newest;
}

void KaNotifyIcon::withdraw(NotificationKinds kinds) {
  for (const NotificationKind kind : kinds) {
    statusItem.withdraw(kind);
    if (kind == NotificationKind::LoginNeeded) isLoginAskedFor = false;
  }
}

bool KaNotifyIcon::isOffered(StatusEntry entry) const {
  if (entry == StatusEntry::Download) return shown.isDownloadEnabled;
  if (entry == StatusEntry::Link) return shown.isLogginEnabled && !shown.isLinked;
  if (entry == StatusEntry::Logout) return shown.isLogginEnabled && shown.isLinked;
  return true;
}

void KaNotifyIcon::perform(StatusEntry entry) {
  platform::assertMainThread();
  // The desktop's tools may ask for what the menu has greyed.
  if (!isOffered(entry)) {
    if (!platform::isUnseen()) menuAction_DispSetting(); // which says how things stand
    return;
  }
  switch (entry) {
  case StatusEntry::Download:
    return menuAction_Download();
  case StatusEntry::DispSetting:
    return menuAction_DispSetting();
  case StatusEntry::Link:
    return menuAction_Link();
  case StatusEntry::Logout:
    return menuAction_Logout();
  case StatusEntry::Help:
    return menuAction_Help();
  case StatusEntry::About:
    return menuAction_About();
  case StatusEntry::LaunchSetting:
    return menuAction_LaunchSetting();
  case StatusEntry::Exit:
    return menuAction_ExitApp();
  }
}

void KaNotifyIcon::menuAction_Download() {
  guarded([this] { model.downloadNow(/*initialAccess=*/false); });
}

void KaNotifyIcon::menuAction_DispSetting() {
  guarded([this] { openSettings(); });
}

void KaNotifyIcon::menuAction_Help() {
  guarded([] { openPageOrSay(helpPageUrl()); });
}

void KaNotifyIcon::menuAction_About() {
  guarded([this] { openDialog<KaVersionInformationView>(); });
}

void KaNotifyIcon::menuAction_Link() {
  guarded([this] { model.setupLinkage(); });
}

void KaNotifyIcon::menuAction_Logout() {
  guarded([this] {
    model.closeLinkage();
    startMenu(/*linked=*/false);
    statusItem.show(shown);
    model.cancelPollingWait();
  });
}

void KaNotifyIcon::menuAction_LaunchSetting() {
  guarded([this] {
    if (!setLaunchedAtLogin(!isLaunchedAtLogin())) statusItem.alert(localised("MSG_ERR_LAUNCH_SETTING"_L1));
    shown.isLaunchedAtLogin = isLaunchedAtLogin();
    // Shown in either case: the entry has changed its own check mark already.
    statusItem.show(shown);
  });
}

void KaNotifyIcon::menuAction_ExitApp() {
  guarded([] { QCoreApplication::quit(); });
}

void KaNotifyIcon::notificationActivated(const QString &processingResult) {
  guarded([&] {
    switch (clickEffect(static_cast<KaResultCode>(processingResult.toLongLong()), validationFault)) {
    case ClickEffect::OpenParentFolder:
      return openFolderOrSay(model.downloadOption().parentFolder);
    case ClickEffect::OpenParent10GFolder:
      return openFolderOrSay(model.downloadOption().parent10GFolder);
    case ClickEffect::Link:
      // A new login would end a link that holds, and some desktops keep what was withdrawn in a list of past ones.
      if (isLoginAskedFor || model.linkState() == KaLinkState::Unlinked) model.setupLinkage();
      return;
    case ClickEffect::LookNow:
      return model.downloadNow(/*initialAccess=*/false);
    case ClickEffect::None:
      return;
    }
  });
}

void KaNotifyIcon::guarded(const std::function<void()> &action) {
  if (!runGuarded(action)) onProcessingResult(model, KaResultCode::Unexpected, /*userTrigger=*/true);
}

bool KaNotifyIcon::appFinalize(std::chrono::milliseconds finishWait) {
  platform::assertMainThread();
  iconDrawTimer.stop();
  model.saveDownloadFolderSetting();
  model.endDownloadProcess();

  const auto deadline = std::chrono::steady_clock::now() + finishWait;
  // While the thread ends.
  statusItem.withdrawAll();
  const bool finished = waitForFinish(deadline);
  if (finished) model.joinDownloadProcess();
  return finished;
}

bool KaNotifyIcon::waitForFinish(std::chrono::steady_clock::time_point deadline) {
  const platform::MutexLock scope(finishLock);
  while (!hasFinished) {
    if (appcnd.wait_until(finishLock, deadline) == std::cv_status::timeout) break;
  }
  return hasFinished;
}
