#include "tests/support/PrivateBus.h"

#include "tests/support/TestProfile.h"

#include <QFile>

#include <csignal>
#include <stdexcept>

using namespace Qt::StringLiterals;

PrivateBus::PrivateBus(const char *named, const QByteArray &agent) : variable(named) {
  const QString configPath = folder.filePath(u"bus.conf"_s);
  const QString services = folder.filePath(u"services"_s);
  if (!agent.isEmpty())
    writeFile(services + u"/com.norvale.Downloaderpictora.service"_s,
              "[D-BUS Service]\nName=com.norvale.Downloaderpictora\nExec=" + agent);
  writeFile(configPath,
            "<busconfig><type>session</type><listen>unix:path=" + QFile::encodeName(folder.filePath(u"bus"_s))
                + "</listen><servicedir>" + QFile::encodeName(services)
                + "</servicedir><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                  "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>");
  daemon.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  daemon.start(u"dbus-daemon"_s, {u"--config-file="_s + configPath, u"--nofork"_s, u"--print-address=1"_s});
  // The address appears once the bus takes connections.
  if (!daemon.waitForReadyRead(20'000)) throw std::runtime_error("no bus");
  qputenv(variable, daemon.readLine().trimmed());
}

void PrivateBus::hang() {
  ::kill(static_cast<pid_t>(daemon.processId()), SIGSTOP);
}

PrivateBus::~PrivateBus() {
  daemon.kill();
  daemon.waitForFinished();
  qunsetenv(variable);
}
