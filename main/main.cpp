#include "main/AppDelegate.h"
#include "main/CommandLine.h"
#include "platform/AppInfo.h"
#include "platform/SingleInstance.h"
#include "platform/TerminationSignals.h"
#include "platform/UrlScheme.h"
#include "ui/Texts.h"

#include <QApplication>
#include <QIcon>
#include <QSessionManager>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

using namespace Qt::StringLiterals;
using platform::SingleInstance;

namespace {

constexpr int kHandOverFailed = 1;
constexpr int kUsage = 2;

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
  const auto outcome = SingleInstance::handOver(commandLine.url);
  if (outcome == SingleInstance::HandOver::NoAgent || outcome == SingleInstance::HandOver::NoBus) return std::nullopt;
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
  // The agent lives in the status bar: closing its last window ends nothing.
  QApplication::setQuitOnLastWindowClosed(false);
}

int runAgent(int &argc, char **argv, const CommandLine &commandLine) {
  const QApplication application(argc, argv);
  describe();
  // Before anyone can see the agent on the bus: from then on it ends in order.
  const platform::TerminationSignals terminationSignals;
  SingleInstance instance;
  // Another start may have won since the first look.
  if (!instance.becomePrimary()) return statusOf(SingleInstance::handOver(commandLine.url));

  installTexts();
  AppDelegate delegate;
  QObject::connect(&terminationSignals, &platform::TerminationSignals::terminationRequested, &delegate,
                   &AppDelegate::terminate);
  QObject::connect(&instance, &SingleInstance::urlReceived, &delegate, &AppDelegate::handleUrl);
  QObject::connect(&instance, &SingleInstance::activated, &delegate, &AppDelegate::activate);
  QObject::connect(&instance, &SingleInstance::actionRequested, &delegate, &AppDelegate::performAction);
  if (commandLine.url) delegate.handleUrl(*commandLine.url);
  QTimer::singleShot(0, &delegate, &AppDelegate::applicationDidFinishLaunching);
  platform::registerUrlScheme(QApplication::applicationFilePath());
  QApplication::exec();

  // A thread that does not end cannot be joined either.
  if (!delegate.applicationWillTerminate()) std::_Exit(EXIT_SUCCESS);
  return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv) {
  CommandLine commandLine;
  if (const auto status = handOverToRunningAgent(argc, argv, commandLine)) return *status;
  // The URL holds a token, and every user of the machine can read command lines.
  for (; argc > 1; --argc)
    std::memset(argv[argc - 1], 0, std::strlen(argv[argc - 1]));
  return runAgent(argc, argv, commandLine);
}
