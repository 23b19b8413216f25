#include "platform/FileDates.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>

namespace platform {

bool setFileDates(const QString &path, const QDateTime &instant) {
  if (!instant.isValid()) return false;
  const qint64 milliseconds = instant.toMSecsSinceEpoch();
  const qint64 remainder = ((milliseconds % 1000) + 1000) % 1000;
  const timespec modified{(milliseconds - remainder) / 1000, remainder * 1'000'000};
  // No Linux file system lets a program set the creation date.
  const timespec dates[] = {{0, UTIME_OMIT}, modified};
  return ::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), dates, 0) == 0;
}

} // namespace platform
