#include "platform/VolumeFacts.h"

#include "platform/linux/BlockDevice.h"
#include "platform/linux/MountTable.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <climits>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

QString deviceFolder(unsigned major, unsigned minor) {
  return QFileInfo(u"/sys/dev/block/%1:%2"_s.arg(major).arg(minor)).canonicalFilePath();
}

/// Btrfs and its like mount under a number that is no device's: there the source names the device.
QString deviceOf(const Mount &mount) {
  const QString folder = deviceFolder(mount.major, mount.minor);
  if (!folder.isEmpty() || !mount.source.startsWith(u"/dev/")) return folder;
  struct stat facts = {};
  if (::stat(QFile::encodeName(mount.source).constData(), &facts) != 0 || !S_ISBLK(facts.st_mode)) return {};
  return deviceFolder(major(facts.st_rdev), minor(facts.st_rdev));
}

/// The disk that the system runs from stays, even where it sits in a card slot or on a cable.
bool isRemovable(const Mount &mount, const std::optional<Mount> &root) {
  if (root && mount.mountPoint == root->mountPoint) return false;
  const QStringList systemDisks = root ? disksOf(deviceOf(*root)) : QStringList();
  const QStringList disks = disksOf(deviceOf(mount));
  return std::any_of(disks.cbegin(), disks.cend(),
                     [&](const QString &disk) { return !systemDisks.contains(disk) && isRemovableDisk(disk); });
}

} // namespace

std::optional<VolumeFacts> fileSystemInfo(const QString &path) {
  const QString canonical = QFileInfo(path).canonicalFilePath();
  if (canonical.isEmpty()) return std::nullopt;
  thread_local MountTable table; // NOLINT(clang-diagnostic-exit-time-destructors): one of each thread, gone with it
  const QList<Mount> &mounts = table.mounts();
  const auto mount = mountOf(mounts, QFile::encodeName(canonical));
  // Inside a changed root the table lacks the mount that holds it; nothing speaks against such a folder.
  if (!mount) return VolumeFacts{};
  return VolumeFacts{.removable = isRemovable(*mount, mountOf(mounts, "/")),
                     .unmountable = isUnmountablePlace(mount->mountPoint),
                     .network = isNetworkFileSystem(mount->type)};
}

std::optional<qint64> freeSpace(const QString &path) {
  struct statvfs facts = {};
  if (::statvfs(QFile::encodeName(path).constData(), &facts) != 0) return std::nullopt;
  return static_cast<qint64>(facts.f_bavail) * static_cast<qint64>(facts.f_frsize);
}

qsizetype longestName(const QString &path) {
  struct statvfs facts = {};
  const bool isTold = ::statvfs(QFile::encodeName(path).constData(), &facts) == 0 && facts.f_namemax > 0;
  // Some count for a name of the greatest length in characters, each of the greatest length in bytes.
  return isTold ? std::min<qsizetype>(static_cast<qsizetype>(facts.f_namemax), NAME_MAX) : NAME_MAX;
}

} // namespace platform
