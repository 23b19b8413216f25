#pragma once

namespace platform {

/// Where the session's bus has started this process and knows no display, makes Qt work without one, so that what it
/// was started for is done all the same. Before the application object is made; main thread.
void workUnseenIfStartedByBus();
/// Whether that is so: nobody can see a window or an icon of this process, nor answer a question.
[[nodiscard]] bool isUnseen();
/// Whether the session is one of Wayland's, though this process may be a client of its X11 part, where the pointer is
/// not told of while it is over others' windows.
[[nodiscard]] bool isWaylandSession();

} // namespace platform
