#pragma once

#include <QString>

namespace platform {

/// Starts the desktop's own opener on one argument and waits shortly for its verdict; one that takes longer is at work
/// and goes on alone. Runs no event loop.
[[nodiscard]] bool runXdgOpen(const QString &argument);

} // namespace platform
