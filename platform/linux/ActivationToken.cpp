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

QString fromEnvironment(const char *name) {
  const QString value = qEnvironmentVariable(name);
  if (!value.isNull()) qunsetenv(name);
  return value;
}

/// What the tray has left since.
void adoptTrayToken() {
  const QString token = fromEnvironment(kToken);
  if (!token.isEmpty()) keepActivationToken(token);
}

} // namespace

void adoptLaunchToken() {
  const QString token = fromEnvironment(kToken);
  const QString startupId = fromEnvironment(kStartupId);
  keepActivationToken(token.isEmpty() ? startupId : token);
}

void keepActivationToken(const QString &token, std::chrono::milliseconds life) {
  assertMainThread();
  qunsetenv(kToken); // the tray's, of some time ago
  const bool isLikely = token.size() <= kLongest;
  kept() = {isLikely ? token : QString(), Clock::now() + life};
  completeStartup(kept().token);
}

QString activationToken() {
  assertMainThread();
  adoptTrayToken();
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
