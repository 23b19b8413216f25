// A date: of a picture's metadata, of a list of previews, of credentials. On a clock that has summer time.
#include "engine/KaImageMetadata.h"
#include "engine/OutputFolder.h"
#include "fuzz/FixedAnswers.h"
#include "fuzz/Fuzz.h"
#include "service/KaServerRequest.h"

#include <QRegularExpression>

#include <chrono>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// Whole seconds since 1970, cut to 32 bits, by another way than the agent's; 0 for what is no date.
qint32 secondsOf(const QByteArray &text) {
  static const QRegularExpression form(u"\\A[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z\\z"_s);
  if (!form.match(QString::fromUtf8(text)).hasMatch()) return 0;
  const auto number = [&](qsizetype at, qsizetype size) { return text.mid(at, size).toInt(); };
  const std::chrono::year_month_day day{std::chrono::year(number(0, 4)), std::chrono::month(unsigned(number(5, 2))),
                                        std::chrono::day(unsigned(number(8, 2)))};
  if (!day.ok() || number(0, 4) == 0 || number(11, 2) > 23 || number(14, 2) > 59 || number(17, 2) > 59) return 0;
  const qint64 days = std::chrono::sys_days(day).time_since_epoch().count();
  return static_cast<qint32>(days * 86'400 + number(11, 2) * 3600 + number(14, 2) * 60 + number(17, 2));
}

QString expiry(const QByteArray &text) {
  answerWith([&](const HttpRequest &) {
    return answered("<R><Expiration>" + QString::fromUtf8(text).toHtmlEscaped().toUtf8() + "</Expiration></R>");
  });
  KaServerRequest request;
  const auto credential = request.getAwsTemporaryCredential(u"token"_s).credential;
  return credential ? credential->expireUnixTime : u"0"_s; // some characters no document can hold
}

void requireFolders(const QDateTime &date) {
  static const QRegularExpression form(u"\\A(/-?[0-9]{4,})?(/[0-9]{2})?(/-?[0-9]{4,}_[0-9]{2}_[0-9]{2})?\\z"_s);
  for (const qint64 child : {0, 1, 2, 3})
    require(form.match(getOutputDateFolderString(date, child)).hasMatch(), "a date folder has the form of a date");
}

} // namespace

void tryInput(const QByteArray &input) {
  static const bool isFarWest = qputenv("TZ", "America/St_Johns");
  require(isFarWest, "a zone with summer time");
  const QString text = QString::fromUtf8(input);
  if (const auto taken = getDateTimeFromString(text, KaDateFormat::CaptureTime)) {
    require(text.startsWith(taken->toString(u"yyyy-MM-ddTHH:mm:ss")), "a capture time is written as it is read");
    requireFolders(captureDate({.document = {{u"captureTime"_s, text}}}, KaImageKey()));
  }
  if (const auto shot = getDateTimeFromString(text, KaDateFormat::ShootingTime)) {
    require(text.startsWith(shot->toString(u"yyyy-MM-ddT")), "a shooting time keeps its day");
    const bool isGap = !QDateTime(shot->date(), QTime::fromString(text.section(u'T', 1))).isValid();
    require(isGap || text == shot->toString(u"yyyy-MM-ddTHH:mm:ss"), "and is written as it is read");
    requireFolders(*shot);
  }
  require(expiry(input) == QString::number(secondsOf(input)), "an expiry counts the seconds since 1970");
}
