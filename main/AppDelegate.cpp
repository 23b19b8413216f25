#include "main/AppDelegate.h"

#include "app/KaModelFacade.h"
#include "log/ExceptionGuard.h"
#include "log/KaLogUtility.h"
#include "platform/AppInfo.h"
#include "platform/LoginItem.h"
#include "platform/UserDefaults.h"
#include "ui/DesktopStatusItem.h"
#include "ui/KaNotifyIcon.h"
#include "ui/Texts.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>
#include <QUrlQuery>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString kFirstLaunch = u"firstLaunch"_s;
const QString kLaunchAtLogin = u"LaunchAtLogin"_s;

bool askWhetherToLaunchAtLogin() {
  QMessageBox question(QMessageBox::Question, localised("APP_SHORT_NAME"_L1), localised("MSG_FIRST_LAUNCH"_L1));
  question.setTextFormat(Qt::PlainText);
  QPushButton *const ok = question.addButton(localised("DLG_COMMON_BUTTON_OK_MAC"_L1), QMessageBox::AcceptRole);
  QPushButton *const cancel = question.addButton(localised("DLG_COMMON_BUTTON_CANCEL"_L1), QMessageBox::RejectRole);
  question.setDefaultButton(ok);
  question.setEscapeButton(cancel);
  question.exec();
  return question.clickedButton() == ok;
}

void setLaunchAtLogin(bool enable) {
  if (platform::setLoginItemEnabled(enable)) platform::standardUserDefaults().setBool(kLaunchAtLogin, enable);
}

} // namespace

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
  if (!runGuarded([this] { launch(); })) terminate();
}

void AppDelegate::launch() {
  KaLogUtility::initialize();
  // Logging is off at this point, so this writes nothing.
  KaLogUtility::writeStartLog({getUserAgent()});
  platform::standardUserDefaults().registerDefaults({{kFirstLaunch, u"YES"_s}});
  if (!askAtFirstLaunch()) return;

  statusItem = std::make_unique<DesktopStatusItem>();
  kaNotify = std::make_unique<KaNotifyIcon>(KaModelFacade::sharedInstance(), *statusItem);
  for (const auto &job : std::exchange(kept, {}))
    job(*kaNotify);
}

/// @return false when the program was told to end meanwhile: nobody has answered then, so the next launch asks again.
bool AppDelegate::askAtFirstLaunch() const {
  auto &defaults = platform::standardUserDefaults();
  if (!defaults.boolValue(kFirstLaunch)) return true;
  const bool accepted = askWhetherToLaunchAtLogin();
  if (isTerminating) return false;
  setLaunchAtLogin(accepted);
  defaults.setBool(kFirstLaunch, false);
  defaults.synchronize();
  return true;
}

bool AppDelegate::applicationWillTerminate() {
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
  if (kaNotify) return job(*kaNotify);
  kept.push_back(std::move(job));
}

void AppDelegate::terminate() {
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
