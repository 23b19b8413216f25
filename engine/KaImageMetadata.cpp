#include "engine/KaImageMetadata.h"

#include "engine/KaDownloadSession.h"
#include "engine/KaDownloadState.h"
#include "log/KaLogUtility.h"
#include "platform/JsonValue.h"
#include "service/KaStorage.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int kAttempts = 4;

QString statusLine(const StoredDocument &document) {
  return u"StatusCode=%1"_s.arg(document.statusCode);
}

/// Whether @p text is @p form with any digits where that has zeros.
bool hasForm(QStringView text, QLatin1StringView form) {
  const auto fits = [](QChar character, char wanted) {
    return wanted == '0' ? character >= u'0' && character <= u'9' : character == QLatin1Char(wanted);
  };
  return std::equal(text.begin(), text.end(), form.begin(), form.end(), fits);
}

/// A local time of a day on which the clocks leave it out: as far from the day's beginning as they would have shown it,
/// or, where that leads into the next day, from its end. Invalid when it is no such time.
QDateTime besideTheGap(const QString &text) {
  const QDateTime shown = QDateTime::fromString(text + u'Z', Qt::ISODate);
  const qint64 sinceMidnight = shown.time().msecsSinceStartOfDay();
  const QDateTime fromStart = shown.date().startOfDay().addMSecs(sinceMidnight);
  if (!fromStart.isValid() || fromStart.date() == shown.date()) return fromStart;
  return shown.date().endOfDay().addMSecs(sinceMidnight - QTime(23, 59, 59, 999).msecsSinceStartOfDay());
}

} // namespace

KaMetadata KaImageMetadata::getExif(const KaImageKey &image) {
  return read(image, Kind::Plain);
}

KaMetadata KaImageMetadata::getExpandExif(const KaImageKey &image) {
  return read(image, Kind::Expand);
}

KaResultCode KaImageMetadata::getExifList(bool) {
  return KaResultCode::Success;
}

KaMetadata KaImageMetadata::read(const KaImageKey &image, Kind kind) {
  thread.check();
  const bool expand = kind == Kind::Expand;
  const QString path = image.exifPathFromImagePath(expand);
  const QString pathLine = (expand ? u"ExpandExifPath="_s : u"ExifPath="_s) + path;
  const QString failureLine = expand ? u"ContentId="_s + image.contentId() : pathLine;

  for (int attempt = 0;; ++attempt) {
    if (attempt > 0) KaLogUtility::writeInfoLog(u"Retry CheckExif"_s, {u"RetryCount=%1"_s.arg(attempt)});
    const StoredDocument document = with.storage.document(path);
    if (expand && document.state == StoredDocument::State::Missing) {
      KaLogUtility::writeInfoLog(u"GetExpandExif:NotFound"_s, {pathLine, statusLine(document)});
      return getExif(image);
    }
    if (document.state != StoredDocument::State::Failed) return taken(document, pathLine, kind);

    KaLogUtility::writeConnectionResultLog(KaLogStep::GetExif, false, {failureLine, statusLine(document)});
    if (attempt + 1 == kAttempts) {
      KaLogUtility::writeInfoLog(u"Use Upload Datetime"_s);
      return {document.result};
    }
    with.state.waitcnd.wait(with.state.waitTimes.exifRetry, [this] { return with.session.isOver(); });
    if (with.session.isOver()) return {document.result};
  }
}

KaMetadata KaImageMetadata::taken(const StoredDocument &document, const QString &pathLine, Kind kind) {
  const QJsonObject metadata = platform::parseJsonObject(document.content).value_or(QJsonObject());
  if (const auto captureTime = platform::jsonString(metadata, "captureTime"_L1)) {
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetExif, true, {pathLine, u"CaptureTime="_s + *captureTime});
    return {KaResultCode::Success, metadata};
  }
  // The two kinds have always been logged unlike, stray "%" included.
  const bool expand = kind == Kind::Expand;
  KaLogUtility::writeConnectionResultLog(
      KaLogStep::GetExif, expand,
      {pathLine, statusLine(document), expand ? u"CaptureTime=nil"_s : u"CaptureTime=%nil"_s});
  return {KaResultCode::CaptureTimeMissing, metadata};
}

std::optional<QDateTime> getDateTimeFromString(const QString &text, KaDateFormat format) {
  constexpr auto kShooting = "0000-00-00T00:00:00"_L1;
  const QStringView rest = QStringView(text).mid(kShooting.size());
  if (!hasForm(QStringView(text).first(std::min(text.size(), kShooting.size())), kShooting)) return std::nullopt;
  const bool isCaptureTime =
      hasForm(rest, ".000Z"_L1) || hasForm(rest, ".000+00:00"_L1) || hasForm(rest, ".000-00:00"_L1);
  if (format == KaDateFormat::CaptureTime ? !isCaptureTime : !rest.isEmpty()) return std::nullopt;

  // A day ends at 23:59; by ISO 8601 its end may also be written as hour 24.
  if (QStringView(text).mid(kShooting.indexOf(u'T') + 1, 2) == u"24") return std::nullopt;
  QDateTime date = QDateTime::fromString(text, Qt::ISODateWithMs);
  if (!date.isValid() && format == KaDateFormat::ShootingTime) date = besideTheGap(text);
  if (!date.isValid()) return std::nullopt;
  return date;
}

QDateTime captureDate(const KaMetadata &metadata, const KaImageKey &image) {
  if (metadata.result == KaResultCode::Success) {
    const QString text = platform::jsonString(metadata.document, "captureTime"_L1).value_or(QString());
    if (const auto parsed = getDateTimeFromString(text, KaDateFormat::CaptureTime))
      return parsed->addSecs(-QDateTime::currentDateTime().offsetFromUtc());
  }
  return image.uploadHour();
}

QStringList matchedRules(const QJsonObject &document) {
  QStringList names;
  for (const QJsonValue &rule : document.value("sortation"_L1).toObject().value("matchedRules"_L1).toArray())
    if (rule.isString()) names << rule.toString();
  return names;
}
