#include "engine/DiskSpace.h"

#include "log/KaLogUtility.h"
#include "platform/Folders.h"
#include "platform/VolumeFacts.h"

#include <QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

bool checkDiskSpace(float fileSize, const QString &saveFolderPath) {
  const auto freeSize = static_cast<float>(platform::freeSpace(saveFolderPath).value_or(0));
  return leavesMargin(freeSize, fileSize, checkDriveIsBoot(saveFolderPath));
}

bool hasRoomFor(qint64 fileSize, const QString &saveFolderPath) {
  const bool room = checkDiskSpace(static_cast<float>(fileSize), saveFolderPath);
  if (!room) KaLogUtility::writeErrorLog(u"ERR_DISK_FULL : No diskspace for save image"_s);
  return room;
}

bool checkDriveIsBoot(const QString &path) {
  const QString cleaned = QDir::cleanPath(path);
  const QStringList roots = platform::externalVolumeRoots();
  return std::none_of(roots.begin(), roots.end(),
                      [&](const QString &root) { return cleaned == root || cleaned.startsWith(root + u'/'); });
}

bool leavesMargin(float freeSize, float fileSize, bool bootDrive) {
  constexpr float kBootMargin = 262'144'000; // 250 MiB: the system needs room to breathe
  constexpr float kOtherMargin = 10'485'760; // 10 MiB
  const float needed = fileSize + (bootDrive ? kBootMargin : kOtherMargin);
  return freeSize - needed > 0;
}
