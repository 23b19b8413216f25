#pragma once

#include <QObject>
#include <QString>

#include <memory>

namespace platform {

/// Desktop notifications. Nothing here blocks; without a notification service nothing happens. Main thread.
class NotificationCenter : public QObject {
  Q_OBJECT

public:
  explicit NotificationCenter(QObject *parent = nullptr);
  ~NotificationCenter() override;

  /// @param processingResult  handed back with a click.
  void post(const QString &title, const QString &text, const QString &processingResult);

Q_SIGNALS:
  /// The user clicked; the notification has been removed.
  void activated(const QString &processingResult);

private:
  class Private;
  std::unique_ptr<Private> d;
};

} // namespace platform
