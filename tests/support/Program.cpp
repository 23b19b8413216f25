#include "tests/support/Program.h"

#include <QCoreApplication>
#include <QFile>

#include <sys/prctl.h>

#include <csignal>
#include <stdexcept>

using namespace Qt::StringLiterals;

Program::Program(const QString &name, const QStringList &arguments) {
  process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
  process.start(name, arguments);
  if (!process.waitForStarted()) throw std::runtime_error("no " + name.toStdString());
}

Program::~Program() {
  kill9();
}

QByteArray Program::firstLine() {
  return process.waitForReadyRead(20'000) ? process.readLine().trimmed() : QByteArray();
}

void Program::kill9() {
  process.kill();
  process.waitForFinished();
}

Screen::Screen()
    : display(u":%1"_s.arg(100 + QCoreApplication::applicationPid() % 50'000)),
      server(u"Xvfb"_s, (display + u" -displayfd 1 -screen 0 1024x768x24"_s).split(u' ')) {
  if (server.firstLine().isEmpty()) throw std::runtime_error("no screen");
  qputenv("DISPLAY", display.toLatin1());
  // It does not belong to the session of whoever runs the tests.
  qunsetenv("WAYLAND_DISPLAY");
  qputenv("XDG_SESSION_TYPE", "x11");
}

Compositor::Compositor(const TestProfile &profile)
    : server(u"weston"_s, u"--backend=headless-backend.so --socket=test --idle-time=0 --no-config"_s.split(u' ')) {
  if (!waitFor([&] { return QFile::exists(profile.path(u"run/test"_s)); })) throw std::runtime_error("no display");
  qputenv("WAYLAND_DISPLAY", "test");
}
