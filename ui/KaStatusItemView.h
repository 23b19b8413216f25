#pragma once

#include "ui/StatusTables.h"

#include <QObject>
#include <QString>

struct StatusItemState;

/// The entries of the menu, in its order.
enum class StatusEntry { Download, DispSetting, Link, Logout, Help, About, LaunchSetting, Exit };

/// What the status item's controller shows and is told by the user. Main thread; no function
/// blocks but withdrawAll.
class KaStatusItemView : public QObject {
  Q_OBJECT

public:
  using QObject::QObject;

  /// Called on every tick: implementations touch only what differs.
  virtual void show(const StatusItemState &state) = 0;
  /// Puts a message before the user that stays until it is confirmed; @p text may be empty.
  virtual void alert(const QString &text) = 0;
  /// Stands in place of the one of its kind until it is withdrawn; its result comes back with notificationActivated.
  virtual void notify(NotificationKind kind, const platform::Notification &notification) = 0;
  virtual void withdraw(NotificationKind kind) = 0;
  /// Before the process ends, whose event loop has ended. Waits for a moment at most.
  virtual void withdrawAll() = 0;

Q_SIGNALS:
  void entryTriggered(StatusEntry entry);
  void notificationActivated(const QString &processingResult);
};
