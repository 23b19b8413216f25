#include "platform/VolumeFacts.h"

#include "platform/linux/MountTable.h"

#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

QByteArray readAll(const QString &path) {
  QFile file(path);
  return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

bool isRemovableDevice(const Mount &mount) {
  const QString device = QFileInfo(u"/sys/dev/block/%1:%2"_s.arg(mount.major).arg(mount.minor)).canonicalFilePath();
  if (device.isEmpty()) return false;
  // A partition has no such flag; its disk, the folder above, has.
  for (const QString &flag : {device + u"/removable"_s, device + u"/../removable"_s}) {
    if (readAll(flag).trimmed() == "1") return true;
  }
  return isHotPluggable(device);
}

} // namespace

std::optional<VolumeFacts> fileSystemInfo(const QString &path) {
  const QString canonical = QFileInfo(path).canonicalFilePath();
  if (canonical.isEmpty()) return std::nullopt;
  const auto mount = mountOf(parseMountTable(readAll(u"/proc/self/mountinfo"_s)), QFile::encodeName(canonical));
  if (!mount) return std::nullopt;
  return VolumeFacts{.removable = isRemovableDevice(*mount),
                     .writable = !mount->readOnly,
                     .unmountable = isUnmountablePlace(mount->mountPoint),
                     .network = isNetworkFileSystem(mount->type),
                     .description = mount->source,
                     .type = mount->type};
}

std::optional<qint64> freeSpace(const QString &path) {
  if (!QFileInfo::exists(path)) return std::nullopt;
  const QStorageInfo storage(path);
  if (!storage.isValid()) return std::nullopt;
  return storage.bytesAvailable();
}

} // namespace platform
