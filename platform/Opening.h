#pragma once

#include <QString>

#include <chrono>
#include <functional>

class QObject;

namespace platform {

/// What became of what was to be opened: told once, from the event loop of the main thread, unless the receiver is
/// gone.
using OpeningVerdict = std::function<void(bool opened)>;

/// Long enough for the slowest opener to fail: one that is still at work has found something to show.
inline constexpr std::chrono::milliseconds kOpeningWait(10'000);

/// Opens with the desktop's handler, as xdg-open does, and returns at once. What it starts outlives this process. Main
/// thread.
/// @param wait  an opener that is at work for longer counts as one that opened.
void openUrl(const QString &url, const QObject *receiver, const OpeningVerdict &verdict,
             std::chrono::milliseconds wait = kOpeningWait);
/// Shows a folder in the file manager, which may take its time to start; what is no folder fails. As above otherwise.
void openFolder(const QString &path, const QObject *receiver, const OpeningVerdict &verdict);

} // namespace platform
