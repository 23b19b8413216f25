#include "log/UnreadableFile.h"

#include "log/KaLogUtility.h"

#include <QDebug>
#include <QFileInfo>

using namespace Qt::StringLiterals;

void writeUnreadableFileLog(const QString &path) {
  const QFileInfo file(path);
  if (!file.exists()) return;
  const QString message = file.fileName() + u" cannot be read and counts as absent"_s;
  KaLogUtility::writeErrorLog(message);
  // The log is off when the program starts, which is when most files are read.
  qWarning("%s", qPrintable(message));
}
