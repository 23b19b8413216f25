#include "platform/Sight.h"

#include <QByteArray>
#include <QGuiApplication>

#include <algorithm>
#include <array>

namespace platform {
namespace {

/// Each leads Qt to something to show windows on.
constexpr std::array kDisplays = {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "WAYLAND_SOCKET", "DISPLAY"};

bool unseen = false;

} // namespace

void workUnseenIfStartedByBus() {
  const bool hasDisplay =
      std::ranges::any_of(kDisplays, [](const char *name) { return !qEnvironmentVariableIsEmpty(name); });
  unseen = !hasDisplay && !qEnvironmentVariableIsEmpty("DBUS_STARTER_BUS_TYPE");
  if (unseen) qputenv("QT_QPA_PLATFORM", "offscreen");
}

bool isUnseen() {
  return unseen;
}

bool isWaylandSession() {
  return QGuiApplication::platformName().startsWith(u"wayland") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
         || qgetenv("XDG_SESSION_TYPE") == "wayland";
}

} // namespace platform
