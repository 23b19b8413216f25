#include "tests/support/AgentProcess.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>
#include <QProcessEnvironment>

#include <csignal>

using namespace Qt::StringLiterals;

#if defined(__SANITIZE_THREAD__)
// A child that QProcess starts runs in this process's memory until it executes, and the thread sanitizer takes that
// last call, which never returns, for one of ours: from then on it no longer sees this thread's locks and reports races
// that are none. What these tests are about, the agent's own process, is watched all the same.
extern "C" const char *__tsan_default_options();
extern "C" const char *__tsan_default_options() {
  return "report_bugs=0";
}
#endif

static const QString kName = u"com.norvale.Downloaderpictora"_s;

AgentProcess::AgentProcess(const QStringList &arguments, const QString &display, const std::function<void()> &inChild) {
  auto environment = QProcessEnvironment::systemEnvironment();
  environment.insert(u"QT_QPA_PLATFORM"_s, display);
  process.setProcessEnvironment(environment);
  // Whoever runs the tests may ignore these, as a shell does for what it starts in the background.
  process.setChildProcessModifier([inChild] {
    for (const int number : {SIGINT, SIGHUP})
      std::signal(number, SIG_DFL);
    if (inChild) inChild();
  });
  process.start(QString::fromUtf8(program()), arguments);
  process.waitForStarted();
}

AgentProcess::~AgentProcess() {
  kill9();
}

bool AgentProcess::waitUntilServing() {
  return waitFor([] { return QDBusConnection::sessionBus().interface()->isServiceRegistered(kName).value(); });
}

static bool callApplication(const QString &method, const QVariantList &arguments) {
  auto message = QDBusMessage::createMethodCall(kName, u"/com/norvale/Downloaderpictora"_s,
                                                u"org.freedesktop.Application"_s, method);
  message.setArguments(arguments);
  message << QVariantMap();
  return QDBusConnection::sessionBus().call(message).type() == QDBusMessage::ReplyMessage;
}

bool AgentProcess::requestAction(const QString &action) {
  return callApplication(u"ActivateAction"_s, {action, QVariantList()});
}

bool AgentProcess::open(const QString &url) {
  return callApplication(u"Open"_s, {QStringList{url}});
}

QByteArray AgentProcess::program() {
  return KA_AGENT;
}

void AgentProcess::signal(int number) const {
  const auto id = static_cast<pid_t>(process.processId());
  if (id > 0) ::kill(id, number); // 0, of one that has ended, would be this whole group
}

void AgentProcess::kill9() {
  process.kill();
  process.waitForFinished();
}

std::optional<int> AgentProcess::waitForEnd(std::chrono::milliseconds deadline) {
  const bool hasEnded =
      process.state() == QProcess::NotRunning || process.waitForFinished(static_cast<int>(deadline.count()));
  if (!hasEnded || process.exitStatus() != QProcess::NormalExit) return std::nullopt;
  return process.exitCode();
}

QByteArray AgentProcess::commandLine() const {
  return contentOf(u"/proc/%1/cmdline"_s.arg(process.processId()));
}
