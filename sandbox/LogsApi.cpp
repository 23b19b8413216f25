#include "sandbox/LogsApi.h"

#include "sandbox/SignatureCheck.h"
#include "sandbox/Tokens.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

constexpr char kContentType[] = "application/x-amz-json-1.1";

ServedAnswer refusal(int status, const QString &type, const QString &message) {
  return {.status = status,
          .contentType = kContentType,
          .body = compactJson({{u"__type"_s, type}, {u"message"_s, message}})};
}

/// The log service has names of its own for what the storage service calls otherwise.
QString typeOf(const QByteArray &code) {
  if (code == "InvalidAccessKeyId" || code == "InvalidToken") return u"UnrecognizedClientException"_s;
  if (code == "ExpiredToken") return u"ExpiredTokenException"_s;
  if (code == "AccessDenied") return u"MissingAuthenticationTokenException"_s;
  return u"InvalidSignatureException"_s;
}

/// @return nullopt when the document is no PutLogEvents call.
std::optional<QList<LogEvent>> parsedEvents(const QByteArray &body) {
  const QJsonObject call = QJsonDocument::fromJson(body).object();
  const QString group = call[u"logGroupName"_s].toString();
  const QString stream = call[u"logStreamName"_s].toString();
  const QJsonArray events = call[u"logEvents"_s].toArray();
  if (group.isEmpty() || stream.isEmpty() || events.isEmpty()) return std::nullopt;
  QList<LogEvent> result;
  for (const QJsonValue &value : events) {
    const QJsonObject event = value.toObject();
    if (!event[u"timestamp"_s].isDouble() || !event[u"message"_s].isString()) return std::nullopt;
    result.append({.group = group,
                   .stream = stream,
                   .timestamp = event[u"timestamp"_s].toInteger(),
                   .message = event[u"message"_s].toString()});
  }
  return result;
}

} // namespace

ServedAnswer LogsApi::answer(const ReceivedRequest &request, const QDateTime &now) {
  if (request.method != "POST" || request.header("x-amz-target") != "Logs_20140328.PutLogEvents")
    return refusal(400, u"UnknownOperationException"_s, u"Only events can be put here"_s);
  const SignatureVerdict verdict = checkSignatureV4(request, region, "logs", credentials, now);
  if (verdict.refusal && !verdict.refusal->region.isEmpty())
    return refusal(400, u"InvalidSignatureException"_s, u"Credential should be scoped to a valid region."_s);
  if (verdict.refusal)
    return refusal(400, typeOf(verdict.refusal->code), QString::fromLatin1(verdict.refusal->message));
  const auto events = parsedEvents(request.body);
  if (!events) return refusal(400, u"SerializationException"_s, u"The document is no list of log events"_s);
  kept.with([&](auto &all) { all.append(*events); });
  return {.contentType = kContentType,
          .body = compactJson(
              {{u"nextSequenceToken"_s, QString::number(kept.with([](const auto &all) { return all.size(); }))}})};
}

QList<LogEvent> LogsApi::events() const {
  return kept.with([](const auto &all) { return all; });
}

} // namespace sandbox
