#pragma once

#include "tests/support/TestProfile.h"

#include <QProcess>
#include <QString>
#include <QStringList>

#include <chrono>
#include <csignal>
#include <functional>
#include <optional>

/// The installed program as a desktop starts it: a process of its own on this test's home and session bus. Killed with
/// the object if it still runs.
class AgentProcess {
public:
  /// @param display  Qt's name for it; without one unless told otherwise.
  /// @param inChild  what the new process does before it becomes the agent.
  explicit AgentProcess(const QStringList &arguments = {}, const QString &display = QStringLiteral("offscreen"),
                        const std::function<void()> &inChild = {});
  ~AgentProcess();

  /// Until the agent serves its name on the bus.
  [[nodiscard]] bool waitUntilServing();
  /// An action as desktop tools send it, and a URL. Where nobody serves the name the bus may start an agent.
  [[nodiscard]] static bool requestAction(const QString &action);
  [[nodiscard]] static bool open(const QString &url);

  void kill9();
  void signal(int number) const;
  void terminate() const { signal(SIGTERM); }
  /// Looks without waiting; in between the event loop of the test goes on.
  [[nodiscard]] bool isRunning() const { return process.state() != QProcess::NotRunning; }
  [[nodiscard]] static QByteArray program();
  [[nodiscard]] qint64 id() const { return process.processId(); }
  /// What every user of the machine can read of it.
  [[nodiscard]] QByteArray commandLine() const;
  /// @return the exit status, or nothing when the process still ran at the deadline or was killed.
  [[nodiscard]] std::optional<int> waitForEnd(std::chrono::milliseconds deadline);
  [[nodiscard]] QString errorOutput() { return QString::fromUtf8(process.readAllStandardError()); }

private:
  QProcess process;
};
