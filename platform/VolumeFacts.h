#pragma once

#include <QString>

#include <optional>

namespace platform {

/// What tells whether a volume may be gone tomorrow.
struct VolumeFacts {
  bool removable = false;   ///< a removable or hot-pluggable device, unless the system runs from it
  bool unmountable = false; ///< mounted where desktops mount what users may unmount
  bool network = false;     ///< on another machine
};

/// The volume that holds @p path; absent when the path does not exist. Any thread. Cheap enough to ask before every
/// picture.
[[nodiscard]] std::optional<VolumeFacts> fileSystemInfo(const QString &path);

/// Bytes that a plain user can still write below @p path; absent when the path does not exist. Any thread.
[[nodiscard]] std::optional<qint64> freeSpace(const QString &path);

/// Bytes that a name in the folder @p path may have; never more than 255, which also stands where the file system does
/// not tell. Any thread.
[[nodiscard]] qsizetype longestName(const QString &path);

} // namespace platform
