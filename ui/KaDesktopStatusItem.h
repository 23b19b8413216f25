#pragma once

#include "platform/NotificationCenter.h"
#include "platform/TrayHost.h"
#include "ui/KaAlertQueue.h"
#include "ui/KaStatusItemView.h"
#include "ui/StatusItemState.h"

#include <QMenu>

#include <memory>

class QSystemTrayIcon;

/// The status item on a desktop: one tray icon and one menu for the life of the process. The icon appears as soon as
/// something shows tray icons; until then states are only remembered.
class KaDesktopStatusItem final : public KaStatusItemView {
  Q_OBJECT

public:
  explicit KaDesktopStatusItem(QObject *parent = nullptr);
  ~KaDesktopStatusItem() override;

  void show(const StatusItemState &state) override;
  void alert(const QString &text) override;
  void notify(NotificationKind kind, const platform::Notification &notification) override;
  void withdraw(NotificationKind kind) override;
  void withdrawAll() override;

private:
  QAction *addEntry(StatusEntry entry, QLatin1StringView titleKey);
  void createIcon();
  void showIcon(const StatusItemState &state);

  QMenu menu;
  QAction *const download;
  QAction *link = nullptr;
  QAction *logout = nullptr;
  QAction *launchSetting = nullptr;
  StatusItemState shown;
  platform::TrayHost host;
  std::unique_ptr<QSystemTrayIcon> icon; ///< absent until there is a host
  platform::NotificationCenter notifyCenter;
  KaAlertQueue alerts;
};
