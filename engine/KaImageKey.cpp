#include "engine/KaImageKey.h"

#include "engine/OutputFolder.h"

#include <QStringList>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

/// The component that is the variant, from the front.
constexpr int kVariant = 1;

bool isNumber(QStringView text, qsizetype digits) {
  return text.size() == digits
         && std::all_of(text.begin(), text.end(), [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
}

/// Not by a format: every listed object comes through here.
QDate dayOf(QStringView date) {
  if (!isNumber(date, 8)) return {};
  return QDate(date.first(4).toInt(), date.sliced(4, 2).toInt(), date.sliced(6, 2).toInt());
}

QTime timeOf(QStringView hour) {
  return isNumber(hour, 2) ? QTime(hour.toInt(), 0) : QTime();
}

} // namespace

KaImageKey::KaImageKey(const QString &path) : text(path) {
  if (text.size() > std::numeric_limits<quint16>::max()) return; // no key of the storage's
  fileNameAt = placeOf(getFolderNameFromPath(text, kFileNameLevel));
  hourAt = placeOf(getFolderNameFromPath(text, kHourFolderLevel));
  dateAt = placeOf(getFolderNameFromPath(text, kDateFolderLevel));
}

KaImageKey::Place KaImageKey::placeOf(QStringView part) const {
  const QStringView whole(text);
  // A path that is too short has no component of that level, and the name of the root lies elsewhere.
  if (part.isEmpty() || part.begin() < whole.begin() || part.end() > whole.end()) return {};
  return {static_cast<quint16>(part.begin() - whole.begin()), static_cast<quint16>(part.size())};
}

/// Where the extension's dot is in the file name; a leading dot starts no extension and a trailing one has none.
qsizetype KaImageKey::extensionDot() const {
  const qsizetype dot = fileName().lastIndexOf(u'.');
  return dot > 0 && dot < fileName().size() - 1 ? dot : -1;
}

QString KaImageKey::contentId() const {
  const qsizetype dot = extensionDot();
  return (dot < 0 ? fileName() : fileName().first(dot)).toString();
}

QString KaImageKey::extension() const {
  const qsizetype dot = extensionDot();
  return dot < 0 ? QString() : fileName().sliced(dot + 1).toString();
}

bool KaImageKey::hasUploadHour() const {
  return dayOf(date()).isValid() && timeOf(hour()).isValid();
}

QDateTime KaImageKey::uploadHour() const {
  return ::uploadHour(date(), hour());
}

KaImageKey KaImageKey::expandImagePathFromImagePath() const {
  QStringList components = text.split(u'/');
  if (components.size() > kVariant) components[kVariant] = u"expand_"_s + components[kVariant];
  return KaImageKey(components.join(u'/'));
}

QString KaImageKey::exifPathFromImagePath(bool expand) const {
  QStringList components = text.split(u'/');
  components[0] = u"metadata"_s;
  if (components.size() > kVariant) components[kVariant] = expand ? u"expand_exif"_s : u"exif"_s;
  components.last() = contentId() + u".json"_s;
  return components.join(u'/');
}

QDateTime uploadHour(QStringView date, QStringView hour) {
  const QDate day = dayOf(date);
  const QTime time = timeOf(hour);
  return day.isValid() && time.isValid() ? QDateTime(day, time, Qt::UTC) : QDateTime();
}
