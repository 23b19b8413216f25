#pragma once

#include <QString>

#include <chrono>

class QWindow;

namespace platform {

/// The desktop's leave to come in front of what the user works with. A launcher, a notification, the tray or a browser
/// sends it along with what it asks for; a window that shows without it may open behind the others. Each is for the
/// next window or opener, once, and for a while. It is never logged, and no child inherits it but the opener that it is
/// handed to. Main thread.
/// @{

/// Takes what this process was started with out of its environment, where the display would look for it.
void adoptLaunchToken();
/// That the program is there, whether or not it shows a window: on X11 a busy cursor ends. Wayland knows no such word:
/// there it ends with a window that uses the token, or when the launcher has waited long enough. Once there is a
/// display, and before threads of ours.
void tellLauncherOfStart();
/// For what is shown from now on, instead of any before, also if it is empty: those were for something else.
/// @param life  long enough for a login: its callback opens a window once its token has been verified.
void keepActivationToken(const QString &token, std::chrono::milliseconds life = std::chrono::seconds(30));
/// Keeps what the tray's panel has given with a click, if anything: to be called at once, as Qt leaves it in the
/// environment, where it would go to children, and would look new long after.
void keepTrayToken();
/// The one to be used, which stays; empty when there is none.
[[nodiscard]] QString activationToken();
/// The same, and it is used up.
[[nodiscard]] QString takeActivationToken();

/// Uses the token up, for a window. While it lives, Qt finds it where it looks for it.
class ActivationScope {
public:
  ActivationScope();
  ~ActivationScope();
  ActivationScope(const ActivationScope &) = delete;
  ActivationScope &operator=(const ActivationScope &) = delete;

  /// Has the desktop bring @p window, which shows, in front.
  void activate(QWindow &window) const;

private:
  const QString token;
};

/// @}

} // namespace platform
