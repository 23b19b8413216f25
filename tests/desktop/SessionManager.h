#pragma once

#include <QtGlobal>

#include <memory>

/// A session manager of a test's own for the programs that start while it lives, by the X session management protocol.
class SessionManager {
public:
  SessionManager();
  ~SessionManager();

  /// Until a program has joined the session, and has been asked what there is to restore.
  [[nodiscard]] bool waitForClient();
  /// Whether the program wants not to be started with the next session.
  [[nodiscard]] bool leavesClientAlone() const;
  /// Ends the session as a log-out does: every program is told to save, then to end.
  void endSession();

  class Private;

private:
  std::unique_ptr<Private> d;
};
