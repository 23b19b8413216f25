#include "engine/ObjectKey.h"

#include "engine/OutputFolder.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Where the extension's dot is; a leading dot starts no extension and a trailing one has none.
qsizetype extensionDot(const QString &fileName) {
  const qsizetype dot = fileName.lastIndexOf(u'.');
  return dot > 0 && dot < fileName.size() - 1 ? dot : -1;
}

bool isNumber(const QString &text, qsizetype digits) {
  return text.size() == digits
         && std::all_of(text.begin(), text.end(), [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
}

} // namespace

QString contentIdFromPath(const QString &imagePath) {
  const QString fileName = getFolderNameFromPath(imagePath, 0);
  return fileName.left(extensionDot(fileName));
}

QString extensionFromPath(const QString &imagePath) {
  const QString fileName = getFolderNameFromPath(imagePath, 0);
  const qsizetype dot = extensionDot(fileName);
  return dot < 0 ? QString() : fileName.mid(dot + 1);
}

QDateTime uploadHourFromPath(const QString &imagePath) {
  return uploadHour(getFolderNameFromPath(imagePath, 2), getFolderNameFromPath(imagePath, 1));
}

QDateTime uploadHour(const QString &date, const QString &hour) {
  if (!isNumber(date, 8) || !isNumber(hour, 2)) return {};
  // Not by a format: every listed object comes through here.
  const QDate day(date.left(4).toInt(), date.mid(4, 2).toInt(), date.mid(6, 2).toInt());
  const QTime time(hour.toInt(), 0);
  return day.isValid() && time.isValid() ? QDateTime(day, time, Qt::UTC) : QDateTime();
}

QString expandImagePathFromImagePath(const QString &imagePath) {
  QStringList components = imagePath.split(u'/');
  if (components.size() > 1) components[1] = u"expand_"_s + components[1];
  return components.join(u'/');
}

QString exifPathFromImagePath(const QString &imagePath, bool expand) {
  QStringList components = imagePath.split(u'/');
  components[0] = u"metadata"_s;
  if (components.size() > 1) components[1] = expand ? u"expand_exif"_s : u"exif"_s;
  components.last() = contentIdFromPath(imagePath) + u".json"_s;
  return components.join(u'/');
}
