#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>

#include <optional>

namespace platform {

/// One line of the kernel's mount table.
struct Mount {
  unsigned major = 0;
  unsigned minor = 0;
  QByteArray mountPoint;
  QString type; ///< the file system's name
  QString source;

  friend bool operator==(const Mount &, const Mount &) = default;
};

/// The mounts of this process, read anew only when the kernel tells that they have changed: its table is dear for
/// something asked before every picture. One thread.
class MountTable {
public:
  /// Empty when the system does not tell.
  [[nodiscard]] const QList<Mount> &mounts();

private:
  [[nodiscard]] bool hasChanged();

  QFile file{QStringLiteral("/proc/self/mountinfo")};
  QList<Mount> known;
};

/// @param text  in the form of /proc/self/mountinfo; lines of another form are passed over.
[[nodiscard]] QList<Mount> parseMountTable(const QByteArray &text);

/// The mount that holds @p path, an absolute path without symbolic links.
[[nodiscard]] std::optional<Mount> mountOf(const QList<Mount> &mounts, const QByteArray &path);

/// Whether a file system of that name lies on another machine.
[[nodiscard]] bool isNetworkFileSystem(const QString &type);

/// Whether desktops mount there what users may take away: /media, /run/media and the user's gvfs folder.
[[nodiscard]] bool isUnmountablePlace(const QByteArray &mountPoint);

} // namespace platform
