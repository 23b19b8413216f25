// An ID token, on the first line; the provider's discovery document and keys, on the two after it, where they are
// given.
#include "fuzz/FixedAnswers.h"
#include "fuzz/Fuzz.h"
#include "identity/KaIdVerificationUtility.h"
#include "service/KaServerRequest.h"

using Verification = KaIdVerificationUtility;

namespace {

HttpAnswer providerAnswer(const QString &url, const QList<QByteArray> &lines) {
  static const QByteArray keys = sampleToken("jwks");
  if (url.endsWith(u"/configuration")) return answered(R"({"clientId":"client-1"})");
  if (url.endsWith(u"/openid-configuration"))
    return answered(lines.value(1, R"({"jwks_uri":"https://idp.example.test/keys"})"));
  return answered(lines.value(2, keys));
}

bool isSigned(const QString &token) {
  for (const char *const name : {"valid", "payloadLengthThreeModuloFour"})
    if (token.section(u'.', 0, 1) == QString::fromUtf8(sampleToken(name)).section(u'.', 0, 1)) return true;
  return false;
}

} // namespace

void tryInput(const QByteArray &input) {
  const QList<QByteArray> lines = input.split('\n');
  answerWith([&](const HttpRequest &request) { return providerAnswer(request.url, lines); });
  KaServerRequest request;
  const QString token = QString::fromUtf8(lines[0]);
  const bool holds =
      Verification::validateJWT(request, token, /*checkNonce=*/false, {}).result == KaResultCode::Success;
  require(!holds || lines.size() > 2 || isSigned(token), "only what the provider signed holds");
  require(holds || lines.size() > 1 || token != QString::fromUtf8(sampleToken("valid")), "a good token holds");
  require(!holds || Verification::parseUserUUID(token), "a token that holds can be read");

  for (const QString &part : token.split(u'.')) {
    const auto bytes = Verification::base64UrlSafeDecode(part);
    require(!bytes || (part.size() % 4 != 3 && bytes->size() <= part.size() * 3 / 4), "base64 makes three of four");
  }
}
