#include "platform/ActivationToken.h"

#include "platform/NoDestructor.h"
#include "platform/ThreadBound.h"
#include "platform/linux/StartupNotification.h"

#include <QByteArray>
#include <QWindow>

#include <chrono>
#include <utility>

namespace platform {
namespace {

using Clock = std::chrono::steady_clock;

/// Qt's Wayland part looks there when a window is to be activated, and its tray item leaves there what the panel gives.
constexpr auto kToken = "XDG_ACTIVATION_TOKEN";
/// Its elder on X11.
constexpr auto kStartupId = "DESKTOP_STARTUP_ID";
/// Far beyond any desktop's.
constexpr qsizetype kLongest = 1024;

struct Kept {
  QString token;
  Clock::time_point end;
};

Kept &kept() {
  static NoDestructor<Kept> one;
  return *one;
}

/// One that the panel gave without a click on anything following, such as with a menu that was closed again.
void dropTrayToken() {
  qunsetenv(kToken);
}

QString fromEnvironment(const char *name) {
  const QString value = qEnvironmentVariable(name);
  if (!value.isNull()) qunsetenv(name);
  return value;
}

} // namespace

void adoptLaunchToken() {
  const QString token = fromEnvironment(kToken);
  const QString startupId = fromEnvironment(kStartupId);
  keepActivationToken(token.isEmpty() ? startupId : token);
}

void keepActivationToken(const QString &token, std::chrono::milliseconds life) {
  assertMainThread();
  dropTrayToken();
  const bool isLikely = token.size() <= kLongest;
  kept() = {isLikely ? token : QString(), Clock::now() + life};
  completeStartup(kept().token);
}

void keepTrayToken() {
  const QString token = fromEnvironment(kToken);
  if (!token.isEmpty()) keepActivationToken(token);
}

QString activationToken() {
  assertMainThread();
  dropTrayToken();
  if (Clock::now() >= kept().end) kept().token.clear();
  return kept().token;
}

void tellLauncherOfStart() {
  assertMainThread();
  completeStartup(activationToken());
  // Other threads will read the environment while this one puts a token there. From now on it is the last entry, and
  // there is room for it: nothing that they may be looking at moves.
  qputenv(kToken, "-");
  qunsetenv(kToken);
}

QString takeActivationToken() {
  const QString token = activationToken();
  kept().token.clear();
  return token;
}

ActivationScope::ActivationScope() : token(takeActivationToken()) {
  if (!token.isEmpty()) qputenv(kToken, token.toUtf8());
}

ActivationScope::~ActivationScope() {
  qunsetenv(kToken);
}

void ActivationScope::activate(QWindow &window) const {
  window.requestActivate();
  activateByStartup(window, token);
}

} // namespace platform
