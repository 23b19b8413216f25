#pragma once

#include <QString>

#include <chrono>

namespace platform {

/// The desktop's leave to come in front of what the user works with. A launcher, a notification, the tray or a browser
/// sends it along with what it asks for; a window that shows without it may open behind the others. Each is for the
/// next window or opener, once, and for a while. It is never logged, and no child inherits it but the
/// opener that it is handed to. Main thread.
/// @{

/// Takes what this process was started with out of its environment. Before there is another thread.
void adoptLaunchToken();
/// @param life  long enough for a login: its callback opens a window once its token has been verified.
/// For what is shown from now on, instead of any before, also if it is empty: those were for something else.
void keepActivationToken(const QString &token, std::chrono::milliseconds life = std::chrono::seconds(30));
/// The one to be used, which stays; empty when there is none.
[[nodiscard]] QString activationToken();
/// The same, and it is used up.
[[nodiscard]] QString takeActivationToken();

/// While it lives, Qt finds the token where it looks for it when a window asks to be activated.
class ActivationScope {
public:
  ActivationScope();
  ~ActivationScope();
  ActivationScope(const ActivationScope &) = delete;
  ActivationScope &operator=(const ActivationScope &) = delete;
};

/// @}

} // namespace platform
