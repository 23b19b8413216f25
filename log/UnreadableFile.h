#pragma once

#include <QString>

/// One entry of the error log, and a line of the error stream, that names a file of ours which is there but cannot be
/// used, and so counts as absent; nothing for one that is missing. Any thread.
void writeUnreadableFileLog(const QString &path);
