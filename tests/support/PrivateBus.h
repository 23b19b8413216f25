#pragma once

#include <QProcess>
#include <QTemporaryDir>

/// A session bus of a test's own, on which nothing can be started by itself. Make it before anything connects.
class PrivateBus {
public:
  PrivateBus();
  ~PrivateBus();

  /// From now on it takes calls and answers none.
  void hang();

private:
  QTemporaryDir folder;
  QProcess daemon;
};
