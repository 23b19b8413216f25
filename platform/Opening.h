#pragma once

#include <QString>

namespace platform {

/// Opens with the desktop's handler, as xdg-open does. Blocks shortly to learn of failures; runs no event loop.
/// @return false when nothing could be started.
[[nodiscard]] bool openUrl(const QString &url);
/// Shows a folder in the file manager. @return false when it is none or cannot be shown.
[[nodiscard]] bool openFolder(const QString &path);

} // namespace platform
