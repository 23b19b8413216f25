#pragma once

namespace platform {

/// Names the calling thread for debuggers and process lists. @param name  at most 15 characters.
void nameThisThread(const char *name);

} // namespace platform
