#include "identity/KaIdVerificationUtility.h"

#include "identity/RsaSignature.h"
#include "log/ExceptionGuard.h"
#include "log/KaLogUtility.h"
#include "platform/JsonValue.h"
#include "platform/Mutex.h"
#include "platform/NoDestructor.h"
#include "service/KaApplicationConstants.h"
#include "service/KaServerRequest.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kTokenParts = 3;

/// The expected audience.
platform::Guarded<QString> &appId() {
  static platform::NoDestructor<platform::Guarded<QString>> known;
  return *known;
}

void logFailedRequest(KaLogStep step, const ServerAnswer &answer) {
  KaLogUtility::writeConnectionResultLog(step, /*connectionResult=*/false, {httpLine(answer.statusCode)});
}

std::optional<QJsonObject> decodePart(const QString &part) {
  const auto bytes = KaIdVerificationUtility::base64UrlSafeDecode(part);
  return bytes ? platform::parseJsonObject(*bytes) : std::nullopt;
}

std::optional<QString> unverifiedClaim(const QString &token, QLatin1StringView name) {
  return guardedOr(std::optional<QString>(), [&]() -> std::optional<QString> {
    const QStringList parts = token.split(u'.');
    if (parts.size() != kTokenParts) return std::nullopt;
    const auto payload = decodePart(parts[1]);
    return payload ? platform::jsonString(*payload, name) : std::nullopt;
  });
}

bool isUnexpired(const QJsonObject &payload) {
  const QJsonValue expiry = payload.value("exp"_L1);
  return expiry.isDouble() && std::trunc(expiry.toDouble()) >= static_cast<double>(QDateTime::currentSecsSinceEpoch());
}

/// A document of the identity provider; absent, and logged when the request failed, if it could not be had.
std::optional<QJsonObject> fetchDocument(KaServerRequest &request, const QString &url) {
  const ServerAnswer answer = request.requestJWKS(url);
  if (answer.result != KaResultCode::Success) {
    logFailedRequest(KaLogStep::GetPublicKey, answer);
    return std::nullopt;
  }
  return platform::parseJsonObject(answer.data);
}

/// The provider's signing keys, fetched afresh: a key that was withdrawn must not go on counting.
QJsonArray fetchKeys(KaServerRequest &request) {
  const QString discovery =
      u"https://"_s + KaApplicationConstants::idTokenHostName() + u"/.well-known/openid-configuration"_s;
  const auto configuration = fetchDocument(request, discovery);
  const auto keysUrl = configuration ? platform::jsonString(*configuration, "jwks_uri"_L1) : std::nullopt;
  const auto keySet = keysUrl ? fetchDocument(request, *keysUrl) : std::nullopt;
  return keySet ? keySet->value("keys"_L1).toArray() : QJsonArray();
}

} // namespace

KaResultCode KaIdVerificationUtility::validateJWT(KaServerRequest &request, const std::optional<QString> &token,
                                                  bool checkNonce, const std::optional<QString> &nonce) {
  if (!token) return KaResultCode::LinkInvalid;
  const bool valid = guardedOr(false, [&] {
    const QStringList parts = token->split(u'.');
    if (parts.size() != kTokenParts) return false;
    const Header header = validateHeader(parts[0]);
    return header.valid && validatePayload(request, parts[1], checkNonce, nonce)
           && validateSignature(request, parts[2], parts[0], parts[1], header.kid);
  });
  return valid ? KaResultCode::Success : KaResultCode::LinkInvalid;
}

KaIdVerificationUtility::Header KaIdVerificationUtility::validateHeader(const QString &header) {
  const auto fields = decodePart(header);
  if (!fields) return {};
  return {.valid = platform::jsonString(*fields, "alg"_L1) == u"RS256"_s,
          .kid = platform::jsonString(*fields, "kid"_L1).value_or(QString())};
}

bool KaIdVerificationUtility::validatePayload(KaServerRequest &request, const QString &payload, bool checkNonce,
                                              const std::optional<QString> &nonce) {
  initializeAppId(request);
  const auto claims = decodePart(payload);
  if (!claims) return false;
  if (platform::jsonString(*claims, "iss"_L1) != u"https://"_s + KaApplicationConstants::idTokenHostName())
    return false;
  const QString audience = appId().get();
  if (audience.isEmpty() || platform::jsonString(*claims, "aud"_L1) != audience) return false;
  if (!isUnexpired(*claims)) return false;
  return !checkNonce || (nonce && platform::jsonString(*claims, "nonce"_L1) == *nonce);
}

bool KaIdVerificationUtility::validateSignature(KaServerRequest &request, const QString &signature,
                                                const QString &header, const QString &payload, const QString &kid) {
  for (const QJsonValue &value : fetchKeys(request)) {
    const QJsonObject key = value.toObject();
    if (platform::jsonString(key, "kid"_L1) != kid) continue;
    const auto exponent = platform::jsonString(key, "e"_L1);
    const auto modulus = platform::jsonString(key, "n"_L1);
    return exponent && modulus && verify(*exponent, *modulus, signature, header, payload);
  }
  return false;
}

bool KaIdVerificationUtility::verify(const QString &exponent, const QString &modulus, const QString &signature,
                                     const QString &header, const QString &payload) {
  const auto exponentBytes = base64UrlSafeDecode(exponent);
  const auto modulusBytes = base64UrlSafeDecode(modulus);
  const auto signatureBytes = base64UrlSafeDecode(signature);
  if (!exponentBytes || !modulusBytes || !signatureBytes) return false;
  const QByteArray message = (header + u'.' + payload).toUtf8();
  return verifyRsaSha256({*modulusBytes, *exponentBytes}, message, *signatureBytes);
}

std::optional<QByteArray> KaIdVerificationUtility::base64UrlSafeDecode(const QString &text) {
  QByteArray bytes = text.toLatin1().replace('-', '+').replace('_', '/');
  // As many "=" as the remainder, which pads right for 2 only; the service's tokens are made to that rule.
  bytes.append(bytes.size() % 4, '=');
  auto decoded = QByteArray::fromBase64Encoding(bytes, QByteArray::AbortOnBase64DecodingErrors);
  if (!decoded) return std::nullopt;
  return std::move(decoded.decoded);
}

std::optional<QString> KaIdVerificationUtility::parseUserUUID(const QString &token) {
  return unverifiedClaim(token, "sub"_L1);
}

std::optional<QString> KaIdVerificationUtility::ParseNonce(const QString &token) {
  return unverifiedClaim(token, "nonce"_L1);
}

void KaIdVerificationUtility::initializeAppId(KaServerRequest &request) {
  if (!appId().get().isEmpty()) return;
  const ServerAnswer answer = request.getKaAppId();
  if (answer.result != KaResultCode::Success) return logFailedRequest(KaLogStep::GetClientId, answer);
  const auto configuration = platform::parseJsonObject(answer.data);
  const auto clientId = configuration ? platform::jsonString(*configuration, "clientId"_L1) : std::nullopt;
  if (clientId) appId().set(*clientId);
}
