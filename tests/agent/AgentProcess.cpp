#include "tests/agent/AgentProcess.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QProcessEnvironment>

#include <csignal>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

const QString kName = u"com.norvale.Downloaderpictora"_s;

} // namespace

AgentProcess::AgentProcess(const QStringList &arguments) {
  auto environment = QProcessEnvironment::systemEnvironment();
  environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
  process.setProcessEnvironment(environment);
  process.start(QString::fromUtf8(KA_AGENT), arguments);
  process.waitForStarted();
}

AgentProcess::~AgentProcess() {
  if (process.state() == QProcess::NotRunning) return;
  process.kill();
  process.waitForFinished();
}

bool AgentProcess::waitUntilServing() {
  return waitFor([] { return QDBusConnection::sessionBus().interface()->isServiceRegistered(kName).value(); });
}

bool AgentProcess::requestAction(const QString &action) {
  auto message = QDBusMessage::createMethodCall(kName, u"/com/norvale/Downloaderpictora"_s,
                                                u"org.freedesktop.Application"_s, u"ActivateAction"_s);
  message << action << QVariantList() << QVariantMap();
  return QDBusConnection::sessionBus().call(message).type() == QDBusMessage::ReplyMessage;
}

void AgentProcess::kill9() {
  ::kill(static_cast<pid_t>(process.processId()), SIGKILL);
  process.waitForFinished();
}

std::optional<int> AgentProcess::waitForEnd(std::chrono::milliseconds deadline) {
  if (process.state() != QProcess::NotRunning && !process.waitForFinished(static_cast<int>(deadline.count()))) {
    return std::nullopt;
  }
  if (process.exitStatus() != QProcess::NormalExit) return std::nullopt;
  return process.exitCode();
}

NotingBrowser::NotingBrowser(const TestProfile &profile) : notePath(profile.path(u"opened-url"_s)) {
  const QString folder = profile.path(u"bin"_s);
  QDir().mkpath(folder);
  QFile script(folder + u"/xdg-open"_s);
  if (!script.open(QFile::WriteOnly)) throw std::runtime_error("cannot write the browser");
  script.write("#!/bin/sh\nprintf '%s' \"$1\" >\"" + QFile::encodeName(notePath) + ".new\" && mv \""
               + QFile::encodeName(notePath) + ".new\" \"" + QFile::encodeName(notePath) + "\"\n");
  script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  script.close();
  qputenv("PATH", QFile::encodeName(folder) + ':' + qgetenv("PATH"));
}

std::optional<QString> NotingBrowser::waitForUrl() const {
  if (!waitFor([this] { return QFile::exists(notePath); })) return std::nullopt;
  QFile note(notePath);
  if (!note.open(QFile::ReadOnly)) return std::nullopt;
  const QString url = QString::fromUtf8(note.readAll());
  note.remove();
  return url;
}
