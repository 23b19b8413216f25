#include "platform/linux/BlockDevice.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

/// As "usb2": a bus that devices leave at run time.
bool isNumberedBus(const QString &name) {
  constexpr std::array kBuses = {"usb"_L1, "mmc"_L1, "firewire"_L1, "fw"_L1, "pcmcia"_L1, "thunderbolt"_L1};
  return std::ranges::any_of(kBuses, [&name](QLatin1StringView bus) {
    if (!name.startsWith(bus) || name.size() == bus.size()) return false;
    const QChar next = name[bus.size()];
    return next >= u'0' && next <= u'9';
  });
}

} // namespace

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
  const QStringList names = sysfsPath.split(u'/');
  return std::ranges::any_of(names, isNumberedBus);
}

bool isRemovableDisk(const QString &disk) {
  QFile flag(disk + u"/removable"_s);
  const bool isMarked = flag.open(QFile::ReadOnly) && flag.readAll().trimmed() == "1";
  return isMarked || isHotPluggable(disk);
}

} // namespace platform
