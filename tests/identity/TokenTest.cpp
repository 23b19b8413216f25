#include "app/log/KaLogUtility.h"
#include "identity/KaIdVerificationUtility.h"
#include "tests/identity/SigningVectors.h"
#include "tests/log/LogFile.h"
#include "tests/service/ServiceFixture.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;
using sandbox::TokenFault;

namespace {

const QString kNonce = u"3F2504E0-4F89-11D3-9A0C-0305E82C3301"_s;
constexpr auto kValid = KaResultCode::Success;
constexpr auto kInvalid = KaResultCode::LinkInvalid;

/// Blanks after JSON keep clear of the length that the decoder does not pad.
QString encoded(QByteArray bytes) {
  if (bytes.size() % 3 == 2) bytes += ' ';
  return QString::fromLatin1(bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

TEST(Token, isDecodedStrictlyAndUnpaddedForOneRemainderOnly) {
  const auto decoded = [](const QString &text) { return KaIdVerificationUtility::base64UrlSafeDecode(text); };
  EXPECT_EQ(decoded(u"YWJj"_s), "abc");
  EXPECT_EQ(decoded(u"YQ"_s), "a");
  EXPECT_EQ(decoded(u"-_-_"_s), "\xfb\xff\xbf");
  for (const QString &bad : {u"YWI"_s, u"YWJjZ"_s, u"YW Jj"_s, u"YWJj\nYWJ"_s, u"YW*j"_s, u"YW写j"_s, u"YQ==YWJj"_s})
    EXPECT_EQ(decoded(bad), std::nullopt) << qPrintable(bad);
}

TEST(Token, hasAHeaderThatNamesAlgorithmAndKey) {
  const std::tuple<QByteArray, bool, QString> cases[] = {
      {R"({"alg":"RS256","kid":"k"})", true, u"k"_s},
      {R"({"alg":"rs256","kid":"k"})", false, u"k"_s},
      {R"({"kid":"k"})", false, u"k"_s},
      {R"({"alg":"RS256","kid":7})", true, u""_s},
      {R"(["RS256"])", false, u""_s},
      {"RS256", false, u""_s},
  };
  for (const auto &[json, valid, expected] : cases) {
    QString kid;
    EXPECT_EQ(KaIdVerificationUtility::validateHeader(encoded(json), kid), valid) << json.constData();
    EXPECT_EQ(kid, expected) << json.constData();
  }
}

TEST(Token, isSignedByOneKeyAsAnotherImplementationDoesIt) {
  const QJsonValue vectors = signingVectors()["idTokens"_L1];
  const QJsonValue keys = vectors["jwks"_L1]["keys"_L1];
  const QStringList whole = vectors["valid"_L1].toString().split(u'.');
  QStringList parts = whole;
  const auto holdsFor = [&parts](const QString &exponent, const QString &modulus) {
    return KaIdVerificationUtility::verify(exponent, modulus, parts[2], parts[0], parts[1]);
  };
  const QString modulus = keys[1]["n"_L1].toString();
  EXPECT_TRUE(holdsFor(u"AQAB"_s, modulus));
  for (const QString &exponent : {u"Aw"_s, u""_s, u"AAAA"_s})
    EXPECT_FALSE(holdsFor(exponent, modulus)) << qPrintable(exponent);
  for (const QString &other : {keys[0]["n"_L1].toString(), u""_s, u"not base64"_s, encoded(QByteArray(255, '\0')),
                               encoded(QByteArray(2100, '\xff')), encoded(QByteArray(3'000'000, '\xff'))})
    EXPECT_FALSE(holdsFor(u"AQAB"_s, other)) << other.size();
  for (const int part : {0, 1, 2}) {
    parts = whole;
    parts[part][5] = parts[part][5] == u'A' ? u'B' : u'A';
    EXPECT_FALSE(holdsFor(u"AQAB"_s, modulus)) << part;
  }
  parts = {whole[0], whole[1], QString()};
  EXPECT_FALSE(holdsFor(u"AQAB"_s, modulus));

  EXPECT_EQ(KaIdVerificationUtility::parseUserUUID(whole.join(u'.')), u"u-1"_s);
  EXPECT_EQ(KaIdVerificationUtility::ParseNonce(whole.join(u'.')), kNonce);
  for (const QString &none : {u""_s, u"a.b"_s, u"a.b.c.d"_s, u"a.!!!.c"_s, u"a."_s + encoded(R"({"sub":7})") + u".c"_s})
    EXPECT_EQ(KaIdVerificationUtility::parseUserUUID(none), std::nullopt) << qPrintable(none);
}

struct Verification : ServiceTest {
  KaResultCode verdictOn(const std::optional<QString> &token, bool checkNonce = true,
                         const std::optional<QString> &nonce = kNonce) {
    return KaIdVerificationUtility::validateJWT(request, token, checkNonce, nonce);
  }

  KaServerRequest request;
};

TEST_F(Verification, asksNobodyForWhatIsNoTokenAndForTheKeysEveryTime) {
  const QString token = service.issueIdToken(kNonce);
  for (const auto &none : {std::optional<QString>(), std::optional(u""_s), std::optional(u"a.b"_s),
                           std::optional(token + u".x"_s), std::optional(u"!.!.!"_s)})
    EXPECT_EQ(verdictOn(none), kInvalid);
  EXPECT_TRUE(service.requests().isEmpty());
  EXPECT_EQ(verdictOn(token), kValid);
  EXPECT_EQ(verdictOn(token, /*checkNonce=*/true, u"another"_s), kInvalid);
  EXPECT_EQ(verdictOn(token, /*checkNonce=*/true, std::nullopt), kInvalid);
  EXPECT_EQ(verdictOn(token, /*checkNonce=*/false, u"another"_s), kValid);
  EXPECT_EQ(service.requestCount(Endpoint::Configuration), 1);
  EXPECT_EQ(service.requestCount(Endpoint::Keys), 2);
}

TEST_F(Verification, refusesSpoiltTokens) {
  const std::pair<TokenFault, int> cases[] = {
      {TokenFault::AlgorithmHs256, 0}, {TokenFault::AlgorithmNone, 0},
      {TokenFault::WrongAudience, 1},  {TokenFault::AudienceArray, 1},
      {TokenFault::WrongIssuer, 1},    {TokenFault::Expired, 1},
      {TokenFault::WrongNonce, 1},     {TokenFault::PartLengthThreeModuloFour, 1},
      {TokenFault::UnknownKeyId, 3},   {TokenFault::BadSignature, 5}};
  for (const auto &[fault, requestsSoFar] : cases) {
    service.setTokenFault(fault);
    EXPECT_EQ(verdictOn(service.issueIdToken(kNonce)), kInvalid) << int(fault);
    EXPECT_EQ(service.requests().size(), requestsSoFar) << int(fault);
  }
}

TEST_F(Verification, refusesTokensUntilTheServiceRecovers) {
  KaLogUtility::switchLogStatus();
  const std::pair<Fault, int> cases[] = {
      {{.status = 403}, 403},
      {{.status = 404}, -1},
      {{.kind = Fault::Kind::EmptyBody}, 200},
      {{.kind = Fault::Kind::TruncatedBody}, 0},
      {{.kind = Fault::Kind::MalformedBody}, -1},
      {{.kind = Fault::Kind::Body, .body = R"({"clientId":{},"jwks_uri":7,"keys":{"kid":"k"}})"}, -1},
      {{.kind = Fault::Kind::Body, .body = R"({"clientId":"","keys":[7,{},{"kid":7},{"kid":"k"}]})"}, -1},
  };
  for (const auto endpoint : {Endpoint::Configuration, Endpoint::Discovery, Endpoint::Keys})
    for (const auto &[fault, loggedStatus] : cases) {
      const qsizetype logged = loggedLines(profile).size();
      service.order(endpoint, fault);
      EXPECT_EQ(verdictOn(service.issueIdToken(kNonce)), kInvalid) << int(endpoint) << ' ' << fault.status;
      const QString entry = loggedLines(profile).mid(logged).join(u'\n');
      EXPECT_EQ(entry.contains(endpoint == Endpoint::Configuration ? u"[NG] 000"_s : u"[NG] 002"_s), loggedStatus >= 0);
      EXPECT_EQ(entry.contains(u"    HTTP=%1"_s.arg(loggedStatus)), loggedStatus >= 0) << qPrintable(entry);
    }
  EXPECT_EQ(verdictOn(service.issueIdToken(kNonce)), kValid);
}

TEST_F(Verification, countsATokenValidInTheSecondOfItsExpiry) {
  const auto holds = [&](const QByteArray &expiry) {
    const QByteArray payload = R"({"iss":")" + service.issuer().toUtf8() + R"(","aud":")" + service.clientId().toUtf8()
                               + R"(","exp":)" + expiry + '}';
    return KaIdVerificationUtility::validatePayload(request, encoded(payload), /*checkNonce=*/false, std::nullopt);
  };
  EXPECT_TRUE(holds("1e300"));
  for (const char *bad : {"-1e300", R"("4102444800")", "null"})
    EXPECT_FALSE(holds(bad)) << bad;
  // Read at the start of a second, so that the verdict falls into the same one.
  const qint64 now = QDateTime::currentSecsSinceEpoch() + 1;
  EXPECT_TRUE(waitFor([now] { return QDateTime::currentSecsSinceEpoch() == now; }));
  EXPECT_TRUE(holds(QByteArray::number(now)));
  EXPECT_FALSE(holds(QByteArray::number(now - 1)));
}

TEST_F(Verification, judgesTokensOfAnotherImplementationAlike) {
  const QJsonValue vectors = signingVectors()["idTokens"_L1];
  platform::standardUserDefaults().setString(u"idTokenHostName"_s, vectors["issuerHost"_L1].toString());
  const QByteArray configuration = R"({"clientId":")" + vectors["audience"_L1].toString().toUtf8() + R"("})";
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::Body, .body = configuration});
  for (const auto &[name, valid] : {std::pair("valid"_L1, true),
                                    {"expired"_L1, false},
                                    {"audienceArray"_L1, false},
                                    {"payloadLengthThreeModuloFour"_L1, false}}) {
    const QString payload = vectors[name].toString().split(u'.').value(1);
    EXPECT_EQ(KaIdVerificationUtility::validatePayload(request, payload, /*checkNonce=*/true, kNonce), valid);
  }
}

} // namespace
