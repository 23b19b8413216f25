#pragma once

#include <functional>

/// Whether the desktop starts the agent at login: the user default "LaunchAtLogin", the login item that it speaks of,
/// and the question that the very first launch asks. Main thread.

[[nodiscard]] bool isLaunchedAtLogin();

/// @return whether it took effect; what is stored stays as it was when it did not.
bool setLaunchedAtLogin(bool enable);

/// What became of the first launch's question, if this is one.
enum class FirstLaunch {
  GoesOn,
  Unheeded, ///< goes on, but what was answered did not take effect
  Ends      ///< the program is to end
};

/// On the very first launch asks whether to start at login, in an event loop of its own, and does what is answered; no
/// later launch asks again, whether that took effect or not.
/// @param isTerminating  asked when the question has closed: the end of the program closes it unanswered, so the next
/// launch asks again.
[[nodiscard]] FirstLaunch askAtFirstLaunch(const std::function<bool()> &isTerminating);
