#include "platform/linux/BlockDevice.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace platform {

QStringList disksOf(const QString &device) {
  if (device.isEmpty()) return {};
  QStringList disks;
  const QDir parts(device + u"/slaves"_s);
  for (const QString &part : parts.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
    disks += disksOf(QFileInfo(parts.filePath(part)).canonicalFilePath());
  if (!disks.isEmpty()) return disks;
  return {QFile::exists(device + u"/partition"_s) ? QFileInfo(device).path() : device};
}

bool isHotPluggable(const QString &sysfsPath) {
  static const QRegularExpression kBuses(u"/(usb|mmc|firewire|fw|pcmcia|thunderbolt)[0-9]"_s);
  return kBuses.match(sysfsPath).hasMatch();
}

bool isRemovableDisk(const QString &disk) {
  QFile flag(disk + u"/removable"_s);
  const bool isMarked = flag.open(QFile::ReadOnly) && flag.readAll().trimmed() == "1";
  return isMarked || isHotPluggable(disk);
}

} // namespace platform
