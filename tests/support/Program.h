#pragma once

#include "tests/support/TestProfile.h"

#include <QProcess>
#include <QString>
#include <QStringList>

/// A part of the desktop, which ends with the object, or with the test's process should that be killed.
class Program {
public:
  /// Throws std::runtime_error when it cannot be started.
  Program(const QString &name, const QStringList &arguments);
  ~Program();

  [[nodiscard]] QByteArray firstLine();
  void kill9();

private:
  QProcess process;
};

/// A screen of a test's own, which DISPLAY names from then on.
class Screen {
public:
  Screen();
  void kill9() { server.kill9(); }

private:
  // By our own number: servers that look for a free display at the same time may find the same one.
  const QString display;
  Program server;
};

/// A Wayland display of a test's own, without mouse and keys, which WAYLAND_DISPLAY names from then on.
class Compositor {
public:
  explicit Compositor(const TestProfile &profile);
  void kill9() { server.kill9(); }

private:
  Program server;
};
