#pragma once

#include <QProcess>
#include <QTemporaryDir>

/// A bus of a test's own. Make it before anything connects.
class PrivateBus {
public:
  /// @param named  the variable of the environment that leads to it: the session bus unless told otherwise.
  /// @param agent  the program that the bus starts in the present environment when the agent's name is called; nothing
  /// is started by itself without.
  explicit PrivateBus(const char *named = "DBUS_SESSION_BUS_ADDRESS", const QByteArray &agent = {});
  ~PrivateBus();

  /// From now on it takes calls and answers none.
  void hang();
  [[nodiscard]] QString address() const { return qEnvironmentVariable(variable); }

private:
  const char *const variable;
  QTemporaryDir folder;
  QProcess daemon;
};
