#include "sandbox/StsApi.h"

#include <QRegularExpression>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

constexpr char kNamespace[] = " xmlns=\"https://sts.amazonaws.com/doc/2011-06-15/\"";

QByteArray requestId() {
  return QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
}

ServedAnswer refusal(int status, const QByteArray &code, const QByteArray &message) {
  const QByteArray document = QByteArray("<ErrorResponse") + kNamespace + ">\n  <Error>\n    <Type>Sender</Type>\n"
                              + "    <Code>" + code + "</Code>\n    <Message>" + escaped(message)
                              + "</Message>\n  </Error>\n  <RequestId>" + requestId()
                              + "</RequestId>\n</ErrorResponse>\n";
  return {.status = status, .contentType = "text/xml", .body = document};
}

bool matches(const QByteArray &text, const QString &pattern) {
  const QRegularExpression whole(QRegularExpression::anchoredPattern(pattern));
  return whole.match(QString::fromUtf8(text)).hasMatch();
}

/// What is wrong with the parameters beside the token; no code when nothing is.
std::optional<ServedAnswer> parameterFlaw(const QueryParameters &query) {
  if (!query.contains("Action")) return refusal(400, "MissingAction", "No action was supplied with this request");
  if (query.text("Action") != "AssumeRoleWithWebIdentity" || query.text("Version") != "2011-06-15")
    return refusal(400, "InvalidAction", "Could not find operation for the requested version");
  if (!matches(query.text("RoleArn"), uR"(arn:aws:iam::\d{12}:role/[\w+=,.@/-]{1,512})"_s))
    return refusal(400, "ValidationError", "RoleArn is not a valid role ARN");
  if (!matches(query.text("RoleSessionName"), uR"([\w+=,.@-]{2,64})"_s))
    return refusal(400, "ValidationError", "RoleSessionName does not satisfy its pattern");
  return std::nullopt;
}

ServedAnswer tokenRefusal(TokenFlaw flaw) {
  switch (flaw) {
  case TokenFlaw::Expired:
    return refusal(400, "ExpiredTokenException", "Token expired");
  case TokenFlaw::WrongIssuer:
    return refusal(403, "AccessDenied", "Not authorized to perform sts:AssumeRoleWithWebIdentity");
  case TokenFlaw::WrongAudience:
    return refusal(400, "InvalidIdentityToken", "Incorrect token audience");
  case TokenFlaw::Malformed:
  case TokenFlaw::WrongAlgorithm:
  case TokenFlaw::UnknownKey:
  case TokenFlaw::BadSignature:
    return refusal(400, "InvalidIdentityToken", "The ID Token provided is not a valid JWT");
  }
  Q_UNREACHABLE();
}

QByteArray field(const char *name, const QString &value) {
  return QByteArray("      <") + name + '>' + escaped(value.toUtf8()) + "</" + name + ">\n";
}

QByteArray credentialsXml(const TemporaryCredential &credential) {
  const QDateTime expiration = QDateTime::fromSecsSinceEpoch(credential.expiration, Qt::UTC);
  return "    <Credentials>\n" + field("AccessKeyId", credential.accessKeyId)
         + field("SecretAccessKey", credential.secretAccessKey) + field("SessionToken", credential.sessionToken)
         + field("Expiration", expiration.toString(u"yyyy-MM-dd'T'HH:mm:ss'Z'"_s)) + "    </Credentials>\n";
}

QByteArray resultXml(const TemporaryCredential &credential, const QJsonObject &payload, const QByteArray &role) {
  return QByteArray("<AssumeRoleWithWebIdentityResponse") + kNamespace + ">\n  <AssumeRoleWithWebIdentityResult>\n"
         + "    <SubjectFromWebIdentityToken>" + escaped(payload[u"sub"_s].toString().toUtf8())
         + "</SubjectFromWebIdentityToken>\n    <Audience>" + escaped(payload[u"aud"_s].toString().toUtf8())
         + "</Audience>\n    <AssumedRoleUser>\n" + field("Arn", QString::fromUtf8(role))
         + field("AssumedRoleId", u"AROASANDBOX:downloaderpictora"_s) + "    </AssumedRoleUser>\n"
         + credentialsXml(credential) + "    <Provider>" + escaped(payload[u"iss"_s].toString().toUtf8())
         + "</Provider>\n  </AssumeRoleWithWebIdentityResult>\n  <ResponseMetadata>\n    <RequestId>" + requestId()
         + "</RequestId>\n  </ResponseMetadata>\n</AssumeRoleWithWebIdentityResponse>\n";
}

} // namespace

ServedAnswer StsApi::answer(const ReceivedRequest &request, const QDateTime &now) {
  const QueryParameters query = request.method == "POST" ? QueryParameters(request.body) : request.query();
  if (auto flaw = parameterFlaw(query)) return *flaw;
  const Tokens::Checked checked = tokens.check(query.text("WebIdentityToken"), now);
  if (checked.flaw) return tokenRefusal(*checked.flaw);
  const QString subject = checked.payload[u"sub"_s].toString();
  if (subject.isEmpty()) return refusal(400, "InvalidIdentityToken", "Missing a required claim: sub");
  const TemporaryCredential credential = issue(subject, now);
  return {.contentType = "text/xml", .body = resultXml(credential, checked.payload, query.text("RoleArn"))};
}

TemporaryCredential StsApi::issue(const QString &userId, const QDateTime &now) {
  return credentials.issue(userId, now.addSecs(lifetime.load().count()));
}

} // namespace sandbox
