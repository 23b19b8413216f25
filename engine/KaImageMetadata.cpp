#include "engine/KaImageMetadata.h"

#include "engine/KaDownloadSession.h"
#include "engine/KaDownloadState.h"
#include "engine/ObjectKey.h"
#include "log/KaLogUtility.h"
#include "platform/JsonValue.h"
#include "service/KaServerRequest.h"

#include <QJsonArray>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

constexpr int kLastAttempt = 3;
constexpr qint64 kNotFound = 404;

QString statusLine(const ServerAnswer &answer) {
  return u"StatusCode=%1"_s.arg(answer.statusCode);
}

} // namespace

KaMetadata KaImageMetadata::getExif(const QString &imagePath) {
  return read(imagePath, Kind::Plain);
}

KaMetadata KaImageMetadata::getExpandExif(const QString &imagePath) {
  return read(imagePath, Kind::Expand);
}

KaResultCode KaImageMetadata::getExifList(bool) {
  return KaResultCode::Success;
}

KaMetadata KaImageMetadata::read(const QString &imagePath, Kind kind) {
  const bool expand = kind == Kind::Expand;
  const QString path = exifPathFromImagePath(imagePath, expand);
  const QString pathLine = (expand ? u"ExpandExifPath="_s : u"ExifPath="_s) + path;
  const QString failureLine = expand ? u"ContentId="_s + contentIdFromPath(imagePath) : pathLine;
  const QString url = session.contentURL(path);

  for (int attempt = 0;; ++attempt) {
    if (attempt > 0) KaLogUtility::writeInfoLog(u"Retry CheckExif"_s, {u"RetryCount=%1"_s.arg(attempt)});
    const ServerAnswer answer = request.getAwsS3KeyList(url, session.access().credential);
    if (answer.result == KaResultCode::Success) {
      if (!expand || answer.statusCode != kNotFound) return taken(answer, pathLine, kind);
      KaLogUtility::writeInfoLog(u"GetExpandExif:NotFound"_s, {pathLine, statusLine(answer)});
      return getExif(imagePath);
    }

    KaLogUtility::writeConnectionResultLog(KaLogStep::GetExif, false, {failureLine, statusLine(answer)});
    if (attempt == kLastAttempt) {
      KaLogUtility::writeInfoLog(u"Use Upload Datetime"_s);
      return {answer.result};
    }
    state.waitcnd.wait(state.waitTimes.exifRetry);
    if (state.endAppFlag) return {answer.result};
  }
}

KaMetadata KaImageMetadata::taken(const ServerAnswer &answer, const QString &pathLine, Kind kind) {
  const QJsonObject document = parseJsonObject(answer.data).value_or(QJsonObject());
  if (const auto captureTime = jsonString(document, "captureTime"_L1)) {
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetExif, true, {pathLine, u"CaptureTime="_s + *captureTime});
    return {KaResultCode::Success, document};
  }
  // The two kinds have always been logged unlike, stray "%" included.
  const bool expand = kind == Kind::Expand;
  KaLogUtility::writeConnectionResultLog(
      KaLogStep::GetExif, expand,
      {pathLine, statusLine(answer), expand ? u"CaptureTime=nil"_s : u"CaptureTime=%nil"_s});
  return {KaResultCode::CaptureTimeMissing, document};
}

std::optional<QDateTime> getDateTimeFromString(const QString &text, KaDateFormat format) {
  static const QRegularExpression captureTime(uR"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}(Z|[+-]\d\d:\d\d)\z)"_s);
  static const QRegularExpression shootingTime(uR"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\z)"_s);
  const QRegularExpression &form = format == KaDateFormat::CaptureTime ? captureTime : shootingTime;
  if (!form.match(text).hasMatch()) return std::nullopt;

  const QDateTime date = QDateTime::fromString(text, Qt::ISODateWithMs);
  if (!date.isValid()) return std::nullopt;
  return date;
}

QDateTime captureDate(const KaMetadata &metadata, const QString &imagePath) {
  if (metadata.result == KaResultCode::Success) {
    const QString text = jsonString(metadata.document, "captureTime"_L1).value_or(QString());
    if (const auto parsed = getDateTimeFromString(text, KaDateFormat::CaptureTime))
      return parsed->addSecs(-QDateTime::currentDateTime().offsetFromUtc());
  }
  return uploadHourFromPath(imagePath);
}

QStringList matchedRules(const QJsonObject &document) {
  QStringList names;
  for (const QJsonValue &rule : document.value("sortation"_L1).toObject().value("matchedRules"_L1).toArray())
    if (rule.isString()) names << rule.toString();
  return names;
}
