#pragma once

#include <QString>

#include <functional>

namespace platform {

/// Opens with the desktop's handler, as xdg-open does. Blocks up to half a second to learn of failures; runs no event
/// loop. Any thread.
/// @return false when nothing could be started.
[[nodiscard]] bool openUrl(const QString &url);
/// Shows a folder in the file manager, which may take its time to start. Main thread.
/// @param onFailure  called when it is no folder or cannot be shown, perhaps later.
void openFolder(const QString &path, const std::function<void()> &onFailure);

} // namespace platform
