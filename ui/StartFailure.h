#pragma once

#include <QString>

/// Tells why the program cannot start: in a line on the error stream, and in a window, for whoever started it without a
/// terminal. Returns once that is closed, or when the program is told to end. Main thread.
/// @param detail  what the system or a library says, if anything.
void showStartFailure(QLatin1StringView messageKey, const QString &detail = {});
