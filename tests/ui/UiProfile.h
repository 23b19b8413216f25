#pragma once

#include "tests/support/TestProfile.h"

#include <QApplication>
#include <QMenu>

/// A home of the test's own, with an application that has neither display nor session bus.
class UiProfile : public TestProfile {
public:
  UiProfile() { QApplication::setQuitOnLastWindowClosed(false); }

  /// The open windows of a kind, and menus.
  template <class Window> [[nodiscard]] static QList<Window *> windows() {
    QList<Window *> found;
    for (QWidget *const widget : QApplication::topLevelWidgets())
      if (auto *const window = qobject_cast<Window *>(widget);
          window && (window->isVisible() || qobject_cast<QMenu *>(widget)))
        found << window;
    return found;
  }
  [[nodiscard]] QString autostartEntry() const {
    return configFolder() + QStringLiteral("/autostart/com.norvale.Downloaderpictora.desktop");
  }
  /// Makes every wish to start at login fail, for root too, until the returned file is removed.
  [[nodiscard]] QString blockAutostart() const {
    const QString obstacle = configFolder() + QStringLiteral("/autostart");
    writeFile(obstacle, {});
    return obstacle;
  }

private:
  const bool hasEnvironment =
      (qgetenv("QT_QPA_PLATFORM").startsWith("offscreen:") || qputenv("QT_QPA_PLATFORM", "offscreen"))
      && qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  int noArguments = 0;
  QApplication application{noArguments, nullptr};
};
