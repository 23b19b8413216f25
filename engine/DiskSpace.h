#pragma once

#include <QString>

/// Whether @p saveFolderPath has room for a file of @p fileSize bytes and the margin that is kept free. A folder whose
/// free space cannot be told has none.
[[nodiscard]] bool checkDiskSpace(float fileSize, const QString &saveFolderPath);

/// The same for a picture about to be saved; the log tells when there is none.
[[nodiscard]] bool hasRoomFor(qint64 fileSize, const QString &saveFolderPath);

/// Whether @p path, which is absolute, lies on the start-up volume.
[[nodiscard]] bool checkDriveIsBoot(const QString &path);

/// The verdict alone, in bytes. The figures are 32-bit floats, whose rounding is part of the rule.
[[nodiscard]] bool leavesMargin(float freeSize, float fileSize, bool bootDrive);
