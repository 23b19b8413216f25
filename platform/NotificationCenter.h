#pragma once

#include "platform/Notification.h"

#include <QObject>
#include <QString>

#include <chrono>
#include <memory>

namespace platform {

/// Desktop notifications, one of a kind: a kind is the caller's own number. Each stands until it is replaced,
/// withdrawn, or the user has done with it. Those that stand wait for a notification service that starts later, and
/// outlast one that ends, unless that one has shown them for as long as it shows any. Nothing here blocks but
/// withdrawAll; without a session bus nothing happens. Main thread.
class NotificationCenter : public QObject {
  Q_OBJECT

public:
  explicit NotificationCenter(QObject *parent = nullptr);
  ~NotificationCenter() override;

  /// In place of the one of this kind that stands.
  void post(int kind, const Notification &notification);
  /// Does nothing when none of this kind stands.
  void withdraw(int kind);
  /// Before the process ends: once this returns, they are gone or @p patience is over. Needs no event loop.
  void withdrawAll(std::chrono::milliseconds patience = std::chrono::milliseconds(250));

Q_SIGNALS:
  /// The user clicked; the notification has been removed.
  void activated(const QString &processingResult);

private:
  class Private;
  std::unique_ptr<Private> d;
};

} // namespace platform
