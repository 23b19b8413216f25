#pragma once

#include <QObject>

#include <memory>

namespace platform {

/// Tells of SIGTERM, SIGINT and SIGHUP on the main thread. One object per process.
class TerminationSignals : public QObject {
  Q_OBJECT

public:
  explicit TerminationSignals(QObject *parent = nullptr);
  ~TerminationSignals() override;

  /// Whether one has come, which the main thread may not have heard of yet. Any thread.
  [[nodiscard]] static bool hasCome();

Q_SIGNALS:
  void terminationRequested();

private:
  class Private;
  std::unique_ptr<Private> d;
};

} // namespace platform
