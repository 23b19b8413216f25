#include "log/KaLogUtility.h"
#include "platform/JsonValue.h"
#include "service/KaApplicationConstants.h"
#include "service/KaServerRequest.h"
#include "service/SignatureV4.h"

#include <QDateTime>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kContentType = "application/x-amz-json-1.1"_L1;
constexpr qsizetype kLongestErrorCode = 200;
constexpr auto kTarget = "Logs_20140328.PutLogEvents"_L1;

QString authorizationFor(const KaCredential &credential, const QString &timestamp, const QString &host,
                         const QString &logMessage) {
  return signRequests(credential,
                      {.timestamp = timestamp,
                       .region = KaApplicationConstants::awsRegion(),
                       .service = u"logs"_s,
                       .method = u"POST"_s,
                       .canonicalUri = u"/"_s,
                       .canonicalQuery = {},
                       .canonicalHeaders = u"content-type:"_s + kContentType + u"\nhost:"_s + host + u"\nx-amz-date:"_s
                                           + timestamp + u"\nx-amz-security-token:"_s + credential.sessionToken
                                           + u"\nx-amz-target:"_s + kTarget + u'\n',
                       .signedHeaders = u"content-type;host;x-amz-date;x-amz-security-token;x-amz-target"_s,
                       .payload = logMessage});
}

void writeFailureLog(const ServerAnswer &answer) {
  QStringList lines{httpLine(answer.statusCode)};
  const auto error = platform::jsonString(platform::parseJsonObject(answer.data).value_or(QJsonObject()), "error"_L1);
  // One line, whatever the service sends.
  if (error) lines << u"ErrorCode="_s + error->left(kLongestErrorCode).simplified();
  KaLogUtility::writeInfoLog(u"notifyDownloadCompletion"_s, lines);
}

} // namespace

ServerAnswer KaServerRequest::notifyDownloadCompletion(const KaCredential &credential, const QString &logMessage) {
  const QString host = KaApplicationConstants::awsLogsHostName();
  const QString timestamp = signature_v4::getCurrentTimeStampUTCFormat(QDateTime::currentDateTimeUtc());
  ServerAnswer answer =
      exchange({.method = "POST",
                .url = u"https://"_s + host,
                .headers = {{"x-amz-date", timestamp.toUtf8()},
                            {"x-amz-security-token", credential.sessionToken.toUtf8()},
                            {"x-amz-target", kTarget.data()},
                            {"content-type", kContentType.data()},
                            {"Authorization", authorizationFor(credential, timestamp, host, logMessage).toUtf8()}},
                .body = logMessage.toUtf8()},
               EmptyBody::IsSuccess);
  if (answer.result != KaResultCode::Success) writeFailureLog(answer);
  return answer;
}
