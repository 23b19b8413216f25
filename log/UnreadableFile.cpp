#include "log/UnreadableFile.h"

#include "log/KaLogUtility.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

void writeUnreadableFileLog(const QString &path) {
  const QFileInfo file(path);
  if (file.exists()) KaLogUtility::writeErrorLog(file.fileName() + u" cannot be read and counts as absent"_s);
}
