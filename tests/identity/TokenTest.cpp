#include "identity/KaIdVerificationUtility.h"
#include "tests/identity/SigningVectors.h"
#include "tests/service/ServiceFixture.h"

#include <QDateTime>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

using enum KaResultCode;
const QString kNonce = u"3F2504E0-4F89-11D3-9A0C-0305E82C3301"_s;

/// Blanks after JSON spare it the padding.
QString encoded(const QByteArray &json) {
  const QByteArray whole = json.leftJustified((json.size() + 2) / 3 * 3, ' ');
  return QString::fromLatin1(whole.toBase64(QByteArray::Base64UrlEncoding));
}

TEST(Token, isDecodedStrictlyAndHasAHeaderThatNamesAlgorithmAndKey) {
  EXPECT_EQ(KaIdVerificationUtility::base64UrlSafeDecode(u"-_-_YQ"_s), "\xfb\xff\xbf\x61");
  for (const QString &bad : {u"YWI"_s, u"YWJjZ"_s, u"YW Jj"_s, u"YWJj\nYWJ"_s, u"YW写j"_s, u"YQ==YWJj"_s})
    EXPECT_EQ(KaIdVerificationUtility::base64UrlSafeDecode(bad), std::nullopt) << qPrintable(bad);
  for (const auto &[json, valid, kid] : {std::tuple(R"({"alg":"RS256","kid":"k"})", true, u"k"_s),
                                         {R"({"alg":"rs256","kid":"k"})", false, u"k"_s},
                                         {R"({"alg":"RS256","kid":7})", true, u""_s},
                                         {R"(["RS256"])", false, u""_s}}) {
    const auto header = KaIdVerificationUtility::validateHeader(encoded(json));
    EXPECT_TRUE(header.valid == valid && header.kid == kid) << json;
  }
}

struct Verification : ServiceTest {
  KaResultCode verdictOn(const std::optional<QString> &token, bool checkNonce = true,
                         const std::optional<QString> &nonce = kNonce) {
    const KaTokenVerdict verdict = KaIdVerificationUtility::validateJWT(request, token, checkNonce, nonce);
    mayPass = verdict.mayPass;
    cause = verdict.cause;
    return verdict.result;
  }
  bool payloadHolds(const QString &payload) {
    return KaIdVerificationUtility::validatePayload(request, payload, /*checkNonce=*/true, kNonce);
  }

  bool mayPass = false; ///< of the last verdict
  KaFaultCause cause = KaFaultCause::Unknown;
  const QJsonValue vectors = signingVectors()["idTokens"_L1];
};

TEST_F(Verification, judgesTokensOfAnotherImplementation) {
  const QStringList whole = vectors["valid"_L1].toString().split(u'.');
  QStringList parts = whole;
  const auto holdsFor = [&parts](const QString &exponent, const QString &modulus) {
    return KaIdVerificationUtility::verify(exponent, modulus, parts[2], parts[0], parts[1]);
  };
  const QString modulus = vectors["jwks"_L1]["keys"_L1][1]["n"_L1].toString();
  EXPECT_TRUE(holdsFor(u"AQAB"_s, modulus));
  for (const QString &exponent : {u"Aw"_s, u""_s, u"AAAA"_s})
    EXPECT_FALSE(holdsFor(exponent, modulus)) << qPrintable(exponent);
  const QString other = vectors["jwks"_L1]["keys"_L1][0]["n"_L1].toString();
  const QByteArray padded = QByteArray(3000, '\0') + *KaIdVerificationUtility::base64UrlSafeDecode(modulus);
  for (const QString &bad : {other, u"not base64"_s, encoded(QByteArray(255, '\0')), encoded(QByteArray(2100, '\xff')),
                             QString::fromLatin1(padded.toBase64(QByteArray::Base64UrlEncoding))})
    EXPECT_FALSE(holdsFor(u"AQAB"_s, bad)) << bad.size();
  for (const int part : {0, 1, 2}) {
    parts = whole;
    parts[part][5] = parts[part][5] == u'A' ? u'B' : u'A';
    EXPECT_FALSE(holdsFor(u"AQAB"_s, modulus)) << part;
  }

  platform::standardUserDefaults().setString(u"idTokenHostName"_s, vectors["issuerHost"_L1].toString());
  const QByteArray configuration = R"({"clientId":")" + vectors["audience"_L1].toString().toUtf8() + R"("})";
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::Body, .body = configuration});
  EXPECT_TRUE(payloadHolds(whole[1]));
  for (const auto bad : {"expired"_L1, "audienceArray"_L1, "payloadLengthThreeModuloFour"_L1})
    EXPECT_FALSE(payloadHolds(vectors[bad].toString().section(u'.', 1, 1))) << bad.data();

  EXPECT_EQ(KaIdVerificationUtility::parseUserUUID(whole.join(u'.')), u"u-1"_s);
  EXPECT_EQ(KaIdVerificationUtility::ParseNonce(whole.join(u'.')), kNonce);
  for (const QString &none : {u"a.b"_s, u"a.b.c.d"_s, u"a.!!!.c"_s, u"a."_s + encoded(R"({"sub":7})") + u".c"_s})
    EXPECT_EQ(KaIdVerificationUtility::parseUserUUID(none), std::nullopt) << qPrintable(none);
}

TEST_F(Verification, refusesSpoiltTokensAndFetchesTheKeysForEach) {
  const QString token = service.issueIdToken(kNonce);
  for (const auto &none : {std::optional<QString>(), {u""_s}, {u"a.b"_s}, {token + u".x"_s}, {u"!.!.!"_s}})
    EXPECT_TRUE(verdictOn(none) == LinkInvalid && !mayPass);
  using enum sandbox::TokenFault;
  for (const auto fault :
       {AlgorithmHs256, AlgorithmNone, WrongAudience, WrongIssuer, Expired, WrongNonce, UnknownKeyId, BadSignature}) {
    service.setTokenFault(fault);
    const QString spoilt = service.issueIdToken(kNonce);
    EXPECT_EQ(verdictOn(spoilt), LinkInvalid) << int(fault);
    EXPECT_TRUE(mayPass == (fault == Expired) && cause == KaFaultCause::NotAccepted) << int(fault);
    if (fault == WrongNonce) continue; // what a refresh brings has another
    EXPECT_EQ(verdictOn(spoilt, /*checkNonce=*/false), LinkInvalid) << int(fault);
    EXPECT_EQ(cause, fault == Expired ? KaFaultCause::NoAnswer : KaFaultCause::Refused) << int(fault);
  }
  EXPECT_EQ(service.requests().size(), 1 + 4 * 2) << "the keys for each of the last two, the client id once";
  EXPECT_EQ(verdictOn(token), Success);
  EXPECT_EQ(verdictOn(token, /*checkNonce=*/true, u"another"_s), LinkInvalid);
  EXPECT_EQ(verdictOn(token, /*checkNonce=*/true, std::nullopt), LinkInvalid);
  EXPECT_EQ(verdictOn(token, /*checkNonce=*/false, u"another"_s), Success);
}

TEST_F(Verification, refusesTokensUntilTheServiceRecovers) {
  const Fault faults[] = {
      {.status = 403},
      {.kind = Fault::Kind::Body, .body = R"({"clientId":{},"jwks_uri":7,"keys":{"kid":"k"}})"},
      {.kind = Fault::Kind::Body, .body = R"({"clientId":"","keys":[7,{},{"kid":7},{"kid":"sandbox-key-1"}]})"},
  };
  for (const auto endpoint : {Endpoint::Configuration, Endpoint::Discovery, Endpoint::Keys})
    for (const Fault &fault : faults) {
      service.order(endpoint, fault);
      EXPECT_EQ(verdictOn(service.issueIdToken(kNonce)), LinkInvalid) << int(endpoint) << ' ' << fault.body.constData();
      EXPECT_TRUE(mayPass && cause == KaFaultCause::NoAnswer) << int(endpoint) << ' ' << fault.body.constData();
    }
  EXPECT_EQ(verdictOn(service.issueIdToken(kNonce)), Success);
}

TEST_F(Verification, countsATokenValidInTheSecondOfItsExpiry) {
  const QByteArray claims = R"({"iss":")" + service.issuer().toUtf8() + R"(","aud":")" + service.clientId().toUtf8()
                            + R"(","nonce":")" + kNonce.toUtf8() + R"(","exp":)";
  for (const char *bad : {"-1e300", R"("4102444800")", "null"})
    EXPECT_FALSE(payloadHolds(encoded(claims + bad + '}'))) << bad;
  // Read at the start of a second, so that the verdict falls into the same one.
  const qint64 now = QDateTime::currentSecsSinceEpoch() + 1;
  EXPECT_TRUE(waitFor([now] { return QDateTime::currentSecsSinceEpoch() == now; }));
  EXPECT_TRUE(payloadHolds(encoded(claims + QByteArray::number(now) + '}')));
  EXPECT_FALSE(payloadHolds(encoded(claims + QByteArray::number(now - 1) + '}')));
}

} // namespace
