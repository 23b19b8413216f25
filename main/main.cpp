#include "main/AppDelegate.h"
#include "main/CommandLine.h"
#include "platform/ActivationToken.h"
#include "platform/AppInfo.h"
#include "platform/ColorScheme.h"
#include "platform/Folders.h"
#include "platform/LoginItem.h"
#include "platform/ProcessEnd.h"
#include "platform/Sight.h"
#include "platform/SingleInstance.h"
#include "platform/TerminationSignals.h"
#include "platform/UrlScheme.h"
#include "platform/UserId.h"
#include "ui/StartFailure.h"
#include "ui/Texts.h"
#include "ui/WindowColors.h"

#include <QApplication>
#include <QIcon>
#include <QSessionManager>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

using namespace Qt::StringLiterals;
using platform::SingleInstance;

namespace {

constexpr int kHandOverFailed = 1;
constexpr int kUsage = 2;

/// A session that ends does not wait longer for its programs.
constexpr std::chrono::milliseconds kDisplayEndWait(1000);

int statusOf(SingleInstance::HandOver outcome) {
  if (outcome == SingleInstance::HandOver::Delivered) return EXIT_SUCCESS;
  std::fputs("downloaderpictora: the running agent does not answer\n", stderr);
  return kHandOverFailed;
}

/// Reaches a running agent without touching the display.
/// @return the exit status when this process has nothing more to do.
std::optional<int> handOverToRunningAgent(int &argc, char **argv, CommandLine &commandLine) {
  const QCoreApplication messenger(argc, argv);
  const auto parsed = parseCommandLine(QCoreApplication::arguments());
  if (!parsed) {
    std::fputs("usage: downloaderpictora [downloaderpictora:URL]\n", stderr);
    return kUsage;
  }
  commandLine = *parsed;
  const auto outcome = SingleInstance::handOver(commandLine.url, platform::activationToken());
  if (outcome == SingleInstance::HandOver::NoAgent) return std::nullopt;
  return statusOf(outcome);
}

void describe() {
  const auto &app = platform::appInfo();
  QApplication::setApplicationName(app.name);
  QApplication::setApplicationVersion(app.version);
  QApplication::setDesktopFileName(QString::fromUtf16(platform::kApplicationId));
  QApplication::setWindowIcon(QIcon::fromTheme(QApplication::desktopFileName(), QIcon(u":/images/img_app_info.svg"_s)));
  // A session that is restored starts the agent at login, if the user wishes, and not with arguments of its own.
  QObject::connect(qApp, &QGuiApplication::saveStateRequest,
                   [](QSessionManager &session) { session.setRestartHint(QSessionManager::RestartNever); });
  // The agent lives in the system tray: closing its last window ends nothing.
  QApplication::setQuitOnLastWindowClosed(false);
}

/// The library aborts the process when it has no display to work with. What it says of that goes before and is dropped.
void endWithoutDisplay(QtMsgType type, const QMessageLogContext & /*where*/, const QString & /*message*/) {
  if (type != QtFatalMsg) return;
  std::fputs("downloaderpictora: there is no display that can be used\n", stderr);
  platform::leaveProcess(EXIT_FAILURE);
}

int refuseStart(QLatin1StringView messageKey) {
  const platform::TerminationSignals endsTheMessage;
  QObject::connect(&endsTheMessage, &platform::TerminationSignals::terminationRequested, qApp,
                   [] { QApplication::exit(EXIT_FAILURE); });
  showStartFailure(messageKey);
  return EXIT_FAILURE;
}

/// What has to hold before there is an agent. @return the exit status when it does not.
std::optional<int> prepareToRun(SingleInstance &instance, const CommandLine &commandLine) {
  switch (instance.claimProfile(commandLine.url)) {
  case SingleInstance::Claim::HandedOver:
    return EXIT_SUCCESS;
  case SingleInstance::Claim::Refused:
    return refuseStart("MSG_ERR_PROFILE_IN_USE"_L1);
  case SingleInstance::Claim::Won:
    break;
  }
  // Now, and not when the first file has to be read: what follows would be a new identity that can read none of them.
  if (platform::stableUserIds().isEmpty()) return refuseStart("MSG_ERR_MACHINE_ID"_L1);
  return std::nullopt;
}

/// An agent that works on another profile may have the session. @return as above.
std::optional<int> serve(SingleInstance &instance, const CommandLine &commandLine) {
  constexpr int kMostAttempts = 20;
  for (int attempt = 0; !instance.serve(); ++attempt) {
    const auto outcome = SingleInstance::handOver(commandLine.url, platform::activationToken());
    // That one may be ending.
    if (outcome != SingleInstance::HandOver::NoAgent || attempt == kMostAttempts) return statusOf(outcome);
  }
  return std::nullopt;
}

void launch(AppDelegate &delegate) {
  delegate.applicationDidFinishLaunching();
  // The last of its kind, since what the download thread uses has handlers of its own.
  platform::runBeforeExit([&delegate] { delegate.applicationWillTerminate(kDisplayEndWait); });
}

int runAgent(int &argc, char **argv, const CommandLine &commandLine) {
  platform::workUnseenIfStartedByBus();
  qInstallMessageHandler(endWithoutDisplay);
  const QApplication application(argc, argv);
  qInstallMessageHandler(nullptr);
  describe();
  installTexts();
  std::optional<platform::ColorScheme> colorScheme;
  if (!platform::isUnseen()) // the bus would start what tells it without a display as well, for the whole session
    QObject::connect(&colorScheme.emplace(), &platform::ColorScheme::told, qApp, &showWindowsDark);
  platform::tellLauncherOfStart();
  SingleInstance instance(showingActions());
  if (const auto status = prepareToRun(instance, commandLine)) return *status;
  // Before anyone can see the agent: from then on it ends in order.
  const platform::TerminationSignals terminationSignals;
  if (const auto status = serve(instance, commandLine)) return *status;

  AppDelegate delegate;
  QObject::connect(&terminationSignals, &platform::TerminationSignals::terminationRequested, &delegate,
                   &AppDelegate::terminate);
  QObject::connect(&delegate, &AppDelegate::terminating, &instance, &SingleInstance::resign);
  QObject::connect(&instance, &SingleInstance::urlReceived, &delegate, &AppDelegate::handleUrl);
  QObject::connect(&instance, &SingleInstance::activated, &delegate, &AppDelegate::activate);
  QObject::connect(&instance, &SingleInstance::actionRequested, &delegate, &AppDelegate::performAction);
  if (commandLine.url) delegate.handleUrl(*commandLine.url);
  QTimer::singleShot(0, &delegate, [&delegate] { launch(delegate); });
  platform::registerUrlScheme(QApplication::applicationFilePath());
  platform::refreshLoginItem();
  const int status = QApplication::exec();

  delegate.applicationWillTerminate();
  // What the libraries would take down now can wait long for others, such as a session bus that hangs.
  platform::leaveProcess(status);
}

} // namespace

int main(int argc, char **argv) {
  platform::dropRelativeBaseFolders();
  platform::adoptLaunchToken();
  CommandLine commandLine;
  if (const auto status = handOverToRunningAgent(argc, argv, commandLine)) return *status;
  // The URL holds a token, and every user of the machine can read command lines.
  for (; argc > 1; --argc)
    std::memset(argv[argc - 1], 0, std::strlen(argv[argc - 1]));
  return runAgent(argc, argv, commandLine);
}
