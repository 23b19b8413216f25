#include "identity/KaIdVerificationUtility.h"

#include "identity/RsaSignature.h"
#include "log/ExceptionGuard.h"
#include "log/KaLogUtility.h"
#include "platform/JsonValue.h"
#include "platform/Mutex.h"
#include "platform/NoDestructor.h"
#include "service/KaApplicationConstants.h"
#include "service/KaServerRequest.h"
#include "service/ServiceClock.h"

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

/// What a check comes to.
enum class Check {
  Holds,
  Fails,
  Undecided, ///< for a reason that may pass
  OutOfTime, ///< by the local clock, for which the same holds
};

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

Check checkExpiry(const QJsonObject &payload) {
  const QJsonValue expiry = payload.value("exp"_L1);
  if (!expiry.isDouble()) return Check::Fails;
  const bool unexpired = std::trunc(expiry.toDouble()) >= static_cast<double>(QDateTime::currentSecsSinceEpoch());
  // A clock that is wrong after a start is set right within minutes.
  return unexpired ? Check::Holds : Check::OutOfTime;
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

/// The provider's signing keys, fetched afresh: a key that was withdrawn must not go on counting. Absent if they could
/// not be had.
std::optional<QJsonArray> fetchKeys(KaServerRequest &request) {
  const QString discovery =
      u"https://"_s + KaApplicationConstants::idTokenHostName() + u"/.well-known/openid-configuration"_s;
  const auto configuration = fetchDocument(request, discovery);
  const auto keysUrl = configuration ? platform::jsonString(*configuration, "jwks_uri"_L1) : std::nullopt;
  const auto keySet = keysUrl ? fetchDocument(request, *keysUrl) : std::nullopt;
  const QJsonValue keys = keySet ? keySet->value("keys"_L1) : QJsonValue();
  if (!keys.isArray()) return std::nullopt;
  return keys.toArray();
}

Check checkPayload(KaServerRequest &request, const QString &payload, bool checkNonce,
                   const std::optional<QString> &nonce) {
  KaIdVerificationUtility::initializeAppId(request);
  const auto claims = decodePart(payload);
  if (!claims) return Check::Fails;
  if (platform::jsonString(*claims, "iss"_L1) != u"https://"_s + KaApplicationConstants::idTokenHostName())
    return Check::Fails;
  const QString audience = appId().get();
  if (audience.isEmpty()) return Check::Undecided;
  if (platform::jsonString(*claims, "aud"_L1) != audience) return Check::Fails;
  if (const Check expiry = checkExpiry(*claims); expiry != Check::Holds) return expiry;
  const bool rightNonce = !checkNonce || (nonce && platform::jsonString(*claims, "nonce"_L1) == *nonce);
  return rightNonce ? Check::Holds : Check::Fails;
}

Check checkSignature(KaServerRequest &request, const QStringList &parts, const QString &kid) {
  const auto keys = fetchKeys(request);
  if (!keys) return Check::Undecided;
  for (const QJsonValue &value : *keys) {
    const QJsonObject key = value.toObject();
    if (platform::jsonString(key, "kid"_L1) != kid) continue;
    const auto exponent = platform::jsonString(key, "e"_L1);
    const auto modulus = platform::jsonString(key, "n"_L1);
    if (!exponent || !modulus) return Check::Undecided;
    const bool right = KaIdVerificationUtility::verify(*exponent, *modulus, parts[2], parts[0], parts[1]);
    return right ? Check::Holds : Check::Fails;
  }
  return Check::Fails;
}

Check checkToken(KaServerRequest &request, const QString &token, bool checkNonce, const std::optional<QString> &nonce) {
  const QStringList parts = token.split(u'.');
  if (parts.size() != kTokenParts) return Check::Fails;
  const auto header = KaIdVerificationUtility::validateHeader(parts[0]);
  if (!header.valid) return Check::Fails;
  const Check payload = checkPayload(request, parts[1], checkNonce, nonce);
  return payload == Check::Holds ? checkSignature(request, parts, header.kid) : payload;
}

/// A token that has run out while the clock is right is, at the end of a login, that of a page left over from earlier.
/// Brand-new from the service it makes no sense: whoever answered, the next answer may.
KaFaultCause causeOf(Check check, bool isOfALogin) {
  if (check == Check::OutOfTime && ServiceClock::isFarOff()) return KaFaultCause::WrongClock;
  if (check == Check::Undecided || (check == Check::OutOfTime && !isOfALogin)) return KaFaultCause::NoAnswer;
  return isOfALogin ? KaFaultCause::NotAccepted : KaFaultCause::Refused;
}

} // namespace

KaTokenVerdict KaIdVerificationUtility::validateJWT(KaServerRequest &request, const std::optional<QString> &token,
                                                    bool checkNonce, const std::optional<QString> &nonce) {
  // What was thrown says nothing of the token.
  const Check check = token
                          ? guardedOr(Check::Undecided, [&] { return checkToken(request, *token, checkNonce, nonce); })
                          : Check::Fails;
  if (check == Check::Holds) return {};
  return {.result = KaResultCode::LinkInvalid,
          .mayPass = check == Check::OutOfTime || check == Check::Undecided,
          .cause = causeOf(check, /*isOfALogin=*/checkNonce)};
}

KaIdVerificationUtility::Header KaIdVerificationUtility::validateHeader(const QString &header) {
  const auto fields = decodePart(header);
  if (!fields) return {};
  return {.valid = platform::jsonString(*fields, "alg"_L1) == u"RS256"_s,
          .kid = platform::jsonString(*fields, "kid"_L1).value_or(QString())};
}

bool KaIdVerificationUtility::validatePayload(KaServerRequest &request, const QString &payload, bool checkNonce,
                                              const std::optional<QString> &nonce) {
  return checkPayload(request, payload, checkNonce, nonce) == Check::Holds;
}

bool KaIdVerificationUtility::validateSignature(KaServerRequest &request, const QString &signature,
                                                const QString &header, const QString &payload, const QString &kid) {
  return checkSignature(request, {header, payload, signature}, kid) == Check::Holds;
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
