#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// The names of files that are being written where a file system knows none without a name:
/// ".downloaderpictora-ID.part". The writer holds a lock (flock) on such a file. One that is about to take a name that
/// was reserved for it, by an empty file, tells so: ".downloaderpictora-ID-MARK.part". Any thread.

/// A name that no other file has.
/// @param reservedName  the name that is reserved in the same folder, if any.
[[nodiscard]] QByteArray hiddenPath(const QString &folder, const QByteArray &reservedName = {});

/// Removes what killed processes left in @p folder, with the reservations: nobody holds its lock any more. A process
/// looks once in a folder; folders may hold many thousand files.
void sweepHiddenFiles(const QString &folder);

} // namespace platform
