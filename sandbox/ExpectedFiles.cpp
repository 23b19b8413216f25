#include "sandbox/SampleLibrary.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

constexpr qsizetype kLongestName = 255;

/// A file name's two halves; the extension without its dot.
struct NameParts {
  QString stem{};
  QString extension{};

  explicit NameParts(const QString &name) {
    const auto dot = name.lastIndexOf(u'.');
    stem = dot > 0 ? name.left(dot) : name;
    extension = dot > 0 ? name.mid(dot + 1) : QString();
  }
  /// The name with @p suffix after a stem that leaves room for everything.
  [[nodiscard]] QString joined(const QString &suffix) const {
    const QString tail = extension.isEmpty() ? suffix : suffix + u'.' + extension;
    if (stem.size() + tail.size() <= kLongestName) return stem + tail;
    return stem.left(kLongestName - 1 - suffix.size() - extension.size()) + tail;
  }
};

QDateTime uploadHour(const LibraryObject &object) {
  const QDateTime moment = QDateTime::fromString(object.date + object.hour, u"yyyyMMddHH"_s);
  return QDateTime(moment.date(), moment.time(), Qt::UTC);
}

/// The metadata that the agent reads: the expand document where it asks for it and there is one.
QJsonObject metadataOf(const LibraryObject &object, const ExpectedOptions &options) {
  const bool expand = options.createSubfolder && object.expandMetadataDocument;
  const auto &document = expand ? object.expandMetadataDocument : object.metadataDocument;
  return QJsonDocument::fromJson(document.value_or(QByteArray())).object();
}

/// The agent takes captured instants for local time written as if it were UTC, and moves them by today's offset.
QDateTime captureMoment(const LibraryObject &object, const QJsonObject &metadata, const QTimeZone &zone) {
  const QString text = metadata[u"captureTime"_s].toString();
  const QDateTime captured = QDateTime::fromString(text, Qt::ISODateWithMs);
  if (!captured.isValid()) return uploadHour(object);
  return captured.toUTC().addSecs(-zone.offsetFromUtc(QDateTime::currentDateTimeUtc()));
}

QString dateFolder(const QDateTime &local, int childFolder) {
  const QString day = local.toString(u"yyyy_MM_dd"_s);
  const QString year = local.toString(u"yyyy"_s);
  const QString month = local.toString(u"MM"_s);
  switch (childFolder) {
  case 0:
    return day + u'/';
  case 1:
    return year + u'/' + month + u'/';
  case 2:
    return year + u'/' + day + u'/';
  case 3:
    return year + u'/' + month + u'/' + day + u'/';
  default:
    return {};
  }
}

QString ruleFolder(const QJsonObject &metadata, const ExpectedOptions &options) {
  const QJsonArray rules = metadata[u"sortation"_s][u"matchedRules"_s].toArray();
  return options.createSubfolder && !rules.isEmpty() ? rules.first().toString() + u'/' : QString();
}

/// The name inside the header, or the day as a name when there is none that can be used.
QString fileName(const LibraryObject &object, const QDateTime &local) {
  const NameParts keyName(object.fileName);
  const QString day = local.toString(u"yyyy-MM-dd"_s);
  const QString fallback = keyName.extension.isEmpty() ? day : day + u'.' + keyName.extension;
  if (!object.fileNameMetadata) return fallback;
  const auto decoded = QByteArray::fromBase64Encoding(
      *object.fileNameMetadata, QByteArray::Base64UrlEncoding | QByteArray::AbortOnBase64DecodingErrors);
  if (!decoded) return fallback;
  const QString name = QString::fromUtf8(*decoded).replace(u'/', u'-').trimmed();
  return name.isEmpty() || name == u"." ? fallback : name;
}

/// Collects files the way they land: a name that is taken gets a counter.
class Landing {
public:
  void add(const QString &folder, const QString &name, const QByteArray &body, const QDateTime &moment) {
    const QString path = freeName(folder, name);
    taken.insert(path);
    files.append({.relativePath = path,
                  .sha256 = QCryptographicHash::hash(body, QCryptographicHash::Sha256).toHex(),
                  .size = body.size(),
                  .modificationTime = moment.toSecsSinceEpoch()});
  }

  QList<ExpectedFile> files;

private:
  [[nodiscard]] QString freeName(const QString &folder, const QString &name) const {
    const NameParts parts(name);
    for (int counter = 0;; ++counter) {
      const QString candidate = folder + parts.joined(counter == 0 ? QString() : u"_%1"_s.arg(counter));
      if (!taken.contains(candidate)) return candidate;
    }
  }

  QSet<QString> taken;
};

void addObjects(Landing &landing, QList<LibraryObject> objects, const ExpectedOptions &options) {
  const auto order = [](const LibraryObject &object) {
    return object.date + u'/' + object.hour + u'/' + object.fileName;
  };
  std::sort(objects.begin(), objects.end(),
            [&](const LibraryObject &left, const LibraryObject &right) { return order(left) < order(right); });
  for (const LibraryObject &object : objects) {
    const QJsonObject metadata = metadataOf(object, options);
    const QDateTime captured = captureMoment(object, metadata, options.zone);
    const QDateTime local = captured.toTimeZone(options.zone);
    landing.add(ruleFolder(metadata, options) + dateFolder(local, options.childFolder), fileName(object, local),
                options.downloadMetadata && object.expandBody ? *object.expandBody : object.body, captured);
  }
}

void addPreviews(Landing &landing, const ExpectedOptions &options) {
  for (const SamplePreview &preview : samplePreviews()) {
    if (!isUploadedBefore(preview.uploadTime, options.uploadedBefore)) continue;
    const QDateTime shot = QDateTime::fromString(preview.shootingTime, Qt::ISODate);
    const QDateTime uploaded = QDateTime::fromString(preview.uploadTime, u"yyyyMMdd/HH"_s);
    const QDateTime moment = shot.isValid() ? QDateTime(shot.date(), shot.time(), options.zone)
                                            : QDateTime(uploaded.date(), uploaded.time(), Qt::UTC);
    landing.add(dateFolder(moment.toTimeZone(options.zone), options.childFolder),
                QString(preview.fileName).replace(u'/', u'-'), preview.body, moment);
  }
}

QList<LibraryObject> uploadedObjects(const ExpectedOptions &options) {
  QList<LibraryObject> objects = sampleObjects();
  objects.removeIf([&](const LibraryObject &each) { return !isUploadedBefore(each.date, options.uploadedBefore); });
  return objects;
}

} // namespace

QList<ExpectedFile> expectedFiles(const QList<LibraryObject> &objects, const ExpectedOptions &options) {
  Landing landing;
  addObjects(landing, objects, options);
  return landing.files;
}

QList<ExpectedFile> expectedSampleFiles(const ExpectedOptions &options) {
  QList<LibraryObject> objects = uploadedObjects(options);
  objects.removeIf([](const LibraryObject &object) { return object.deviceId == sampleAliasDevice(); });
  return expectedFiles(objects, options);
}

QList<ExpectedFile> expectedLongTermSampleFiles(const ExpectedOptions &options) {
  ExpectedOptions plain = options;
  plain.createSubfolder = false;
  plain.downloadMetadata = false;
  QList<LibraryObject> objects = uploadedObjects(options);
  objects.removeIf([](const LibraryObject &object) { return object.tags.value(storagePeriodTag()) == u"30"; });
  Landing landing;
  addObjects(landing, objects, plain);
  addPreviews(landing, plain);
  return landing.files;
}

} // namespace sandbox
