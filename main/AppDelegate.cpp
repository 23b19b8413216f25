#include "main/AppDelegate.h"

#include "app/KaModelFacade.h"
#include "log/ExceptionGuard.h"
#include "log/KaLogUtility.h"
#include "platform/AppInfo.h"
#include "platform/ThreadBound.h"
#include "ui/KaDesktopStatusItem.h"
#include "ui/KaNotifyIcon.h"
#include "ui/LoginItemQuestion.h"

#include <QCoreApplication>
#include <QUrl>
#include <QUrlQuery>

#include <utility>

using namespace Qt::StringLiterals;

AppDelegate::AppDelegate(QObject *parent) : QObject(parent) {
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
  if (!runGuarded([this] { launch(); })) terminate();
}

void AppDelegate::launch() {
  KaLogUtility::initialize();
  // Logging is off at this point, so this writes nothing.
  KaLogUtility::writeStartLog({getUserAgent()});
  if (!askAtFirstLaunch([this] { return isTerminating; })) return;

  statusItem = std::make_unique<KaDesktopStatusItem>();
  kaNotify = std::make_unique<KaNotifyIcon>(KaModelFacade::sharedInstance(), *statusItem);
  for (const auto &job : std::exchange(kept, {}))
    job(*kaNotify);
}

bool AppDelegate::applicationWillTerminate() {
  platform::assertMainThread();
  const bool finished = !kaNotify || kaNotify->appFinalize();
  KaLogUtility::writeEndLog();
  KaLogUtility::terminate();
  return finished;
}

void AppDelegate::handleUrl(const QString &url) {
  whenStarted([url](KaNotifyIcon &notify) {
    // What goes wrong here is logged and the URL dropped.
    (void)runGuarded([&] { notify.setIdCode(idTokenOf(url)); });
  });
}

void AppDelegate::activate() {
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
  isTerminating = true;
  QCoreApplication::quit();
}

QString idTokenOf(const QString &url) {
  const auto items = QUrlQuery(QUrl(url, QUrl::StrictMode)).queryItems(QUrl::FullyDecoded);
  for (const auto &[name, value] : items)
    if (name == u"idToken") return value;
  return {};
}

std::optional<StatusEntry> entryOfAction(const QString &action) {
  if (action == u"download") return StatusEntry::Download;
  if (action == u"settings") return StatusEntry::DispSetting;
  if (action == u"link") return StatusEntry::Link;
  if (action == u"logout") return StatusEntry::Logout;
  if (action == u"help") return StatusEntry::Help;
  if (action == u"about") return StatusEntry::About;
  if (action == u"quit") return StatusEntry::Exit;
  return std::nullopt;
}
