#pragma once

namespace platform {

/// Whether the desktop starts the program at login: this executable, by its path of now. Any thread.
/// @return whether the wish took effect.
[[nodiscard]] bool setLoginItemEnabled(bool enabled);

/// At start: lets an entry of ours that leads to where the program was before lead here. Any thread.
void refreshLoginItem();

} // namespace platform
