#include "ui/KaDesktopStatusItem.h"

#include "platform/ActivationToken.h"
#include "platform/Sight.h"
#include "platform/ThreadBound.h"
#include "ui/StatusIcons.h"
#include "ui/Texts.h"

#include <QAction>
#include <QCursor>
#include <QSystemTrayIcon>

using namespace Qt::StringLiterals;

namespace {

QIcon iconOf(const StatusItemState &state) {
  return state.frame ? statusIcon(*state.frame) : QIcon();
}

QString tooltipOf(const StatusItemState &state) {
  return state.tooltipKey.isEmpty() ? QString() : localised(state.tooltipKey);
}

} // namespace

KaDesktopStatusItem::KaDesktopStatusItem(QObject *parent)
    : KaStatusItemView(parent), download(addEntry(StatusEntry::Download, "MENU_DOWNLOAD"_L1)) {
  menu.addSeparator();
  addEntry(StatusEntry::DispSetting, "MENU_DISP_SETTING"_L1);
  link = addEntry(StatusEntry::Link, "MENU_LOGIN"_L1);
  logout = addEntry(StatusEntry::Logout, "MENU_LOGOUT"_L1);
  menu.addSeparator();
  addEntry(StatusEntry::Help, "MENU_HELP"_L1);
  addEntry(StatusEntry::About, "MENU_ABOUT"_L1);
  launchSetting = addEntry(StatusEntry::LaunchSetting, "MENU_LAUNCH_SETTING"_L1);
  launchSetting->setCheckable(true);
  menu.addSeparator();
  addEntry(StatusEntry::Exit, "MENU_EXIT_MAC"_L1);
  connect(&host, &platform::TrayHost::appeared, this, &KaDesktopStatusItem::createIcon);
  connect(&notifyCenter, &platform::NotificationCenter::activated, this, &KaStatusItemView::notificationActivated);
  show(shown);
}

KaDesktopStatusItem::~KaDesktopStatusItem() = default;

QAction *KaDesktopStatusItem::addEntry(StatusEntry entry, QLatin1StringView titleKey) {
  QAction *const action = menu.addAction(localised(titleKey));
  connect(action, &QAction::triggered, this, [this, entry] {
    platform::keepTrayToken();
    Q_EMIT entryTriggered(entry);
  });
  return action;
}

void KaDesktopStatusItem::createIcon() {
  icon = std::make_unique<QSystemTrayIcon>(iconOf(shown));
  icon->setToolTip(tooltipOf(shown));
  icon->setContextMenu(&menu);
  // Where the desktop draws the menu for the other button itself, it can be asked neither to do so for this one nor
  // where.
  connect(icon.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
    platform::keepTrayToken();
    if (reason != QSystemTrayIcon::Trigger) return;
    // Nor does a program know on Wayland: its menu would be a window with a title bar in the middle of the screen, or,
    // on its X11 part, where the pointer was last seen.
    if (platform::isWaylandSession()) {
      Q_EMIT entryTriggered(StatusEntry::DispSetting);
    } else {
      menu.popup(QCursor::pos());
    }
  });
  icon->show();
}

void KaDesktopStatusItem::show(const StatusItemState &state) {
  platform::assertMainThread();
  // These do nothing when nothing differs; the check mark may have been changed by the click itself.
  download->setEnabled(state.isDownloadEnabled);
  link->setVisible(!state.isLinked);
  logout->setVisible(state.isLinked);
  link->setEnabled(state.isLogginEnabled);
  logout->setEnabled(state.isLogginEnabled);
  launchSetting->setChecked(state.isLaunchedAtLogin);
  if (icon) showIcon(state);
  shown = state;
}

void KaDesktopStatusItem::showIcon(const StatusItemState &state) {
  if (state.frame != shown.frame) icon->setIcon(iconOf(state));
  if (state.tooltipKey != shown.tooltipKey) icon->setToolTip(tooltipOf(state));
}

void KaDesktopStatusItem::alert(const QString &text) {
  alerts.show(text);
}

void KaDesktopStatusItem::notify(NotificationKind kind, const platform::Notification &notification) {
  notifyCenter.post(static_cast<int>(kind), notification);
}

void KaDesktopStatusItem::withdraw(NotificationKind kind) {
  notifyCenter.withdraw(static_cast<int>(kind));
}

void KaDesktopStatusItem::withdrawAll() {
  notifyCenter.withdrawAll();
}
