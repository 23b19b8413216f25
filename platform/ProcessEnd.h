#pragma once

#include <functional>

namespace platform {

/// Leaves the process at once: nothing is destroyed and no handler runs, so nothing can hold it up and no thread that
/// is still at work meets what is gone. What is to be kept is on disk before.
[[noreturn]] void leaveProcess(int status);

/// Runs @p job when something else ends the process by exit(), as a library does whose display is gone; then leaves
/// with the status given there. On the thread that calls exit(). Once a process, and after all that has handlers of its
/// own: the last one comes first.
void runBeforeExit(std::function<void()> job);

} // namespace platform
