#pragma once

#include <QString>

namespace platform {

/// Tells an X11 desktop that what it has started is there: until then it shows a busy cursor. Qt does so with a first
/// window, which an agent may never have. Does nothing on other displays. Main thread.
/// @param id  what the desktop calls the start.
void completeStartup(const QString &id);

} // namespace platform
