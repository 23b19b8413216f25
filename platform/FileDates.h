#pragma once

#include <QDateTime>
#include <QString>

namespace platform {

/// Sets the creation date, where the system can, and the modification date. @return whether the latter is set.
bool setFileDates(const QString &path, const QDateTime &instant);

} // namespace platform
