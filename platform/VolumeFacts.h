#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace platform {

struct VolumeFacts {
  bool removable = false;   ///< a removable or hot-pluggable device
  bool writable = true;     ///< not mounted read-only
  bool unmountable = false; ///< mounted where desktops mount what users may unmount
  bool network = false;
  QString description; ///< the mount's source
  QString type;        ///< the file system's name
};

/// The volume that holds @p path; absent when the path does not exist.
[[nodiscard]] std::optional<VolumeFacts> fileSystemInfo(const QString &path);

/// Bytes that a plain user can still write below @p path; absent when the path does not exist.
[[nodiscard]] std::optional<qint64> freeSpace(const QString &path);

} // namespace platform
