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

Q_SIGNALS:
  void terminationRequested();

private:
  class Private;
  std::unique_ptr<Private> d;
};

} // namespace platform
