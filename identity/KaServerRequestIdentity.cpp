#include "service/KaServerRequest.h"

#include "platform/JsonValue.h"
#include "service/KaApplicationConstants.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <chrono>

using namespace Qt::StringLiterals;

namespace {

/// The service counts the newest token code alone: one whose answer is not waited for is lost, and the link with it.
constexpr std::chrono::milliseconds kTokenCodeGrace(500);

QByteArray compactJson(const QJsonObject &object) {
  return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

/// The "tokenCode" of an answer that came well.
TokenCodeAnswer tokenCodeOf(const QByteArray &body) {
  const QJsonDocument document = QJsonDocument::fromJson(body);
  if (document.isNull()) return {.result = KaResultCode::Offline};
  const auto tokenCode = platform::jsonString(document.object(), "tokenCode"_L1);
  if (!tokenCode) return {.result = KaResultCode::NoBody};
  return {.tokenCode = *tokenCode};
}

} // namespace

TokenCodeAnswer KaServerRequest::getTokenCode(const QString &codeVerifier, const QString &linkage) {
  HttpRequest request;
  request.method = "POST";
  request.url = u"https://"_s + KaApplicationConstants::strataHostName() + u"/getTokenCode"_s;
  // "userid" takes the whole ID token, whatever its name says.
  request.headers = {{"Content-Type", "application/json"}, {"strataclient", "pc_2.0"}, {"userid", linkage.toUtf8()}};
  request.body = compactJson({{u"codeVerifier"_s, codeVerifier}});
  request.endGrace = kTokenCodeGrace;

  const ServerAnswer answer = exchange(request);
  if (answer.result != KaResultCode::Success) return {.result = answer.result};
  return tokenCodeOf(answer.data);
}

RefreshAnswer KaServerRequest::refreshIdToken(const QString &oldIdToken, const QString &nonce,
                                              const std::optional<QString> &tokenCode) {
  QJsonObject body{{u"idToken"_s, oldIdToken}, {u"nonce"_s, nonce}};
  if (tokenCode) body.insert(u"tokenCode"_s, *tokenCode);

  HttpRequest request;
  request.method = "POST";
  request.url = u"https://"_s + KaApplicationConstants::strataHostName() + u"/refreshToken"_s;
  request.headers = {{"Content-Type", "application/json"}};
  request.body = compactJson(body);
  request.endGrace = kTokenCodeGrace;

  const ServerAnswer answer = exchange(request);
  const auto [result, newCode] =
      answer.result == KaResultCode::Success ? tokenCodeOf(answer.data) : TokenCodeAnswer{.result = answer.result};
  return {.result = result, .statusCode = answer.statusCode, .data = answer.data, .tokenCode = newCode};
}

ServerAnswer KaServerRequest::requestJWKS(const QString &url) {
  HttpRequest request;
  request.url = url;
  return exchange(request);
}
