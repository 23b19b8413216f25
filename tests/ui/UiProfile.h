#pragma once

#include "tests/support/TestProfile.h"

#include <QApplication>
#include <QFile>

#include <stdexcept>

/// A home of the test's own, with an application that has neither display nor session bus.
class UiProfile : public TestProfile {
public:
  UiProfile() { QApplication::setQuitOnLastWindowClosed(false); }

  [[nodiscard]] QString autostartFolder() const { return configFolder() + QStringLiteral("/autostart"); }
  [[nodiscard]] QString autostartEntry() const {
    return autostartFolder() + QStringLiteral("/com.norvale.Downloaderpictora.desktop");
  }
  /// Makes every wish to start at login fail, for root too.
  void blockAutostart() const {
    QFile file(autostartFolder());
    if (!file.open(QFile::WriteOnly)) throw std::runtime_error("cannot block autostart");
  }

private:
  struct Environment {
    Environment() {
      qputenv("QT_QPA_PLATFORM", "offscreen");
      qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    }
  };

  Environment environment;
  int noArguments = 0;
  QApplication application{noArguments, nullptr};
};
