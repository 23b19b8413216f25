#pragma once

#include <QDateTime>
#include <QString>

namespace platform {

/// Sets the creation date, where the system can, and the modification date, to the millisecond; of what a symbolic link
/// at @p path leads to. Any thread.
/// @return whether the modification date is set; false, too, for an invalid @p instant.
bool setFileDates(const QString &path, const QDateTime &instant);

} // namespace platform
