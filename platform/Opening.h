#pragma once

#include <QString>

#include <chrono>
#include <functional>

class QObject;

namespace platform {

/// What became of what was to be opened: told once, from the event loop of the main thread, unless the receiver is
/// gone.
using OpeningVerdict = std::function<void(bool opened)>;

/// How long each of those is waited for that an opening depends on.
struct OpeningWaits {
  /// Long enough for the slowest opener to fail: one that is still at work has found something to show.
  std::chrono::milliseconds opener{10'000};
  /// A file manager that has not answered by then, though the bus may have had to start it, is passed over.
  std::chrono::milliseconds fileManager{5'000};
  /// A folder on a disk that does not answer counts as none.
  std::chrono::milliseconds disk{5'000};
};

/// Opens with the desktop's handler, as xdg-open does, and returns at once. What it starts outlives this process. Main
/// thread.
void openUrl(const QString &url, const QObject *receiver, const OpeningVerdict &verdict,
             const OpeningWaits &waits = {});
/// Shows a folder in the file manager; what is no folder fails. As above otherwise: no disk is waited for either.
void openFolder(const QString &path, const QObject *receiver, const OpeningVerdict &verdict,
                const OpeningWaits &waits = {});

} // namespace platform
