#include "service/KaServerRequest.h"

#include "identity/KaLinkageUtility.h"
#include "log/KaLogUtility.h"
#include "platform/JsonValue.h"
#include "service/KaApplicationConstants.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

QByteArray compactJson(const QJsonObject &object) {
  return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

/// Keeps the "tokenCode" of an answer for the next refresh.
/// @return Offline when @p body is no JSON, NoBody when it holds no token code.
KaResultCode storeTokenCode(const QByteArray &body) {
  const QJsonDocument document = QJsonDocument::fromJson(body);
  if (document.isNull()) return KaResultCode::Offline;
  const auto tokenCode = jsonString(document.object(), "tokenCode"_L1);
  if (!tokenCode) return KaResultCode::NoBody;

  if (!KaLinkageUtility::saveTokenCode(*tokenCode)) KaLogUtility::writeErrorLog(u"the token code cannot be saved"_s);
  return KaResultCode::Success;
}

} // namespace

KaResultCode KaServerRequest::getTokenCode(const QString &codeVerifier, const QString &linkage) {
  HttpRequest request;
  request.method = "POST";
  request.url = u"https://"_s + KaApplicationConstants::strataHostName() + u"/getTokenCode"_s;
  // "userid" takes the whole ID token, whatever its name says.
  request.headers = {{"Content-Type", "application/json"}, {"strataclient", "pc_2.0"}, {"userid", linkage.toUtf8()}};
  request.body = compactJson({{u"codeVerifier"_s, codeVerifier}});

  const ServerAnswer answer = exchange(request);
  const KaResultCode result = answer.result == KaResultCode::Success ? storeTokenCode(answer.data) : answer.result;
  if (result == KaResultCode::Success) KaLogUtility::writeInfoLog(u"saveTokenCode_complete"_s);
  return result;
}

ServerAnswer KaServerRequest::refreshIdToken(const QString &url, const QString &oldIdToken, const QString &nonce) {
  QJsonObject body{{u"idToken"_s, oldIdToken}, {u"nonce"_s, nonce}};
  if (const auto tokenCode = KaLinkageUtility::loadTokenCode()) body.insert(u"tokenCode"_s, *tokenCode);

  HttpRequest request;
  request.method = "POST";
  request.url = url;
  request.headers = {{"Content-Type", "application/json"}};
  request.body = compactJson(body);

  ServerAnswer answer = exchange(request);
  if (answer.result == KaResultCode::Success) answer.result = storeTokenCode(answer.data);
  return answer;
}

ServerAnswer KaServerRequest::requestJWKS(const QString &url) {
  HttpRequest request;
  request.url = url;
  return exchange(request);
}
