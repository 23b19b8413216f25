#pragma once

#include <QObject>

#include <memory>

namespace platform {

/// Tells that the computer has woken from sleep. Main thread. Never blocks: it connects from the event loop, however
/// long that takes, and where nobody tells of sleep it stays silent.
class SleepNews : public QObject {
  Q_OBJECT

public:
  explicit SleepNews(QObject *parent = nullptr);
  ~SleepNews() override;

Q_SIGNALS:
  void wokeUp();

private:
  class Private;
  std::unique_ptr<Private> d;
};

} // namespace platform
