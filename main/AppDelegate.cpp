#include "main/AppDelegate.h"

#include "app/KaModelFacade.h"
#include "log/ExceptionGuard.h"
#include "log/KaLogUtility.h"
#include "platform/AppInfo.h"
#include "platform/Sight.h"
#include "platform/ThreadBound.h"
#include "ui/KaDesktopStatusItem.h"
#include "ui/KaNotifyIcon.h"
#include "ui/LoginItemQuestion.h"
#include "ui/ShowInFront.h"
#include "ui/StartFailure.h"
#include "ui/Texts.h"
#include "ui/Thumbnail.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QUrl>
#include <QUrlQuery>

#include <cstdlib>
#include <utility>

using namespace Qt::StringLiterals;

AppDelegate::AppDelegate(StatusItemMaker makeStatusItem, QObject *parent)
    : QObject(parent), newStatusItem(std::move(makeStatusItem)) {
  QCoreApplication::instance()->installEventFilter(this);
}

AppDelegate::~AppDelegate() = default;

QString AppDelegate::getUserAgent() {
  const auto &app = platform::appInfo();
  const auto system = platform::operatingSystemVersion();
  return u"UserAgent=%1/%2(NORVALE;MAC_OS/%3.%4.%5)"_s.arg(app.name, app.version)
      .arg(system.major)
      .arg(system.minor)
      .arg(system.patch);
}

void AppDelegate::applicationDidFinishLaunching() {
  platform::assertMainThread();
  const auto failure = failureOf([this] { launch(); });
  if (!failure) return;
  showStartFailure("MSG_ERR_START"_L1, *failure);
  beginTermination();
  QCoreApplication::exit(EXIT_FAILURE);
}

void AppDelegate::launch() {
  KaLogUtility::initialize();
  limitThumbnails();
  // Logging is off at this point, so this writes nothing.
  KaLogUtility::writeStartLog({getUserAgent()});
  const FirstLaunch first =
      platform::isUnseen() ? FirstLaunch::GoesOn : askAtFirstLaunch([this] { return isTerminating; });
  if (first == FirstLaunch::Ends) return;

  statusItem = newStatusItem ? newStatusItem() : std::make_unique<KaDesktopStatusItem>();
  kaNotify = std::make_unique<KaNotifyIcon>(KaModelFacade::sharedInstance(), *statusItem);
  if (first == FirstLaunch::Unheeded) statusItem->alert(localised("MSG_ERR_LAUNCH_SETTING"_L1));
  // Behind the first state that the status item shows: what it greys is not done for anybody.
  for (const auto &job : std::exchange(kept, {}))
    QMetaObject::invokeMethod(
        kaNotify.get(), [this, job] { job(*kaNotify); }, Qt::QueuedConnection);
  // The icon goes first.
  QTimer::singleShot(0, this, [] { KaModelFacade::sharedInstance().listenForNews(); });
}

void AppDelegate::applicationWillTerminate(std::chrono::milliseconds finishWait) {
  platform::assertMainThread();
  if (std::exchange(hasTerminated, true)) return;
  beginTermination();
  // A thread that has not finished is left to the end of the process.
  if (kaNotify) static_cast<void>(kaNotify->appFinalize(finishWait));
  KaLogUtility::writeEndLog();
  KaLogUtility::terminate();
}

void AppDelegate::handleUrl(const QString &url) {
  whenStarted([url](KaNotifyIcon &notify) {
    // What goes wrong here is logged and the URL dropped.
    (void)runGuarded([&] { notify.setIdCode(idTokenOf(url)); });
  });
}

void AppDelegate::activate() {
  if (platform::isUnseen()) return terminate();
  if (QWidget *const question = QApplication::activeModalWidget(); question && !kaNotify) showInFront(*question);
  whenStarted([](KaNotifyIcon &notify) { notify.perform(StatusEntry::DispSetting); });
}

void AppDelegate::performAction(const QString &action) {
  if (action == u"confirm") return whenStarted([](KaNotifyIcon &notify) { notify.confirmDialog(); });
  const auto entry = entryOfAction(action);
  if (!entry) return;
  if (*entry == StatusEntry::Exit) return terminate();
  whenStarted([entry](KaNotifyIcon &notify) { notify.perform(*entry); });
}

void AppDelegate::whenStarted(std::function<void(KaNotifyIcon &)> job) {
  platform::assertMainThread();
  if (kaNotify) return job(*kaNotify);
  kept.push_back(std::move(job));
}

void AppDelegate::terminate() {
  platform::assertMainThread();
  beginTermination();
  // Not quit(), which asks every window.
  QCoreApplication::exit(EXIT_SUCCESS);
}

void AppDelegate::beginTermination() {
  if (!std::exchange(isTerminating, true)) Q_EMIT terminating();
}

bool AppDelegate::eventFilter(QObject *watched, QEvent *event) {
  // It closes the windows next, and a question that closes so has not been answered.
  if (event->type() == QEvent::Quit) beginTermination();
  return QObject::eventFilter(watched, event);
}

QString idTokenOf(const QString &url) {
  const auto items = QUrlQuery(QUrl(url, QUrl::StrictMode)).queryItems(QUrl::FullyDecoded);
  for (const auto &[name, value] : items)
    if (name == u"idToken") return value;
  return {};
}

QStringList showingActions() {
  // Not "logout", which ends the link first: its page matters less.
  return {u"settings"_s, u"link"_s, u"help"_s, u"about"_s};
}

std::optional<StatusEntry> entryOfAction(const QString &action) {
  if (action == u"download") return StatusEntry::Download;
  if (action == u"settings") return StatusEntry::DispSetting;
  if (action == u"link") return StatusEntry::Link;
  if (action == u"logout") return StatusEntry::Logout;
  if (action == u"help") return StatusEntry::Help;
  if (action == u"about") return StatusEntry::About;
  if (action == u"login-item") return StatusEntry::LaunchSetting;
  if (action == u"quit") return StatusEntry::Exit;
  return std::nullopt;
}
