#pragma once

namespace platform {

/// Whether the desktop starts the program at login. @return whether the wish took effect.
[[nodiscard]] bool setLoginItemEnabled(bool enabled);

} // namespace platform
