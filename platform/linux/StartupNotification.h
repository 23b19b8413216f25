#pragma once

#include <QString>

class QWindow;

namespace platform {

/// Tells an X11 desktop that what it has started is there: until then it shows a busy cursor. Qt does so with a first
/// window, which an agent may never have. Does nothing on other displays. Main thread.
/// @param id  what the desktop calls the start.
void completeStartup(const QString &id);

/// Has an X11 desktop bring @p window in front as of the moment at which the user started something, which the id
/// tells. Qt asks as of its own last event, which may be older than what the user did elsewhere: then windows stay
/// behind, on Xwayland above all. Does nothing otherwise.
void activateByStartup(const QWindow &window, const QString &id);

} // namespace platform
