#include "app/log/KaLogUtility.h"
#include "identity/KaIdVerificationUtility.h"
#include "sandbox/Service.h"
#include "service/KaServerRequest.h"
#include "tests/identity/ServiceFixture.h"
#include "tests/identity/SigningVectors.h"
#include "tests/support/TestProfile.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using sandbox::BadCertificate;
using sandbox::Endpoint;
using sandbox::Fault;
using sandbox::TokenFault;

namespace {

const QString kNonce = u"3F2504E0-4F89-11D3-9A0C-0305E82C3301"_s;

class TokenVerification : public ServiceFixture {
protected:
  using ServiceFixture::ServiceFixture;

  KaResultCode verdictOn(const std::optional<QString> &token, bool checkNonce = true,
                         const std::optional<QString> &nonce = kNonce) {
    return KaIdVerificationUtility::validateJWT(request, token, checkNonce, nonce);
  }

  [[nodiscard]] int allRequests() const {
    return service.requestCount(Endpoint::Configuration) + service.requestCount(Endpoint::Discovery)
           + service.requestCount(Endpoint::Keys);
  }

  KaServerRequest request;
};

TEST_F(TokenVerification, acceptsATokenOfTheProvider) {
  EXPECT_EQ(verdictOn(service.issueIdToken(kNonce)), KaResultCode::Success);
}

TEST_F(TokenVerification, fetchesTheAudienceOnceAndTheKeysEveryTime) {
  EXPECT_EQ(verdictOn(service.issueIdToken(kNonce)), KaResultCode::Success);
  EXPECT_EQ(verdictOn(service.issueIdToken(kNonce)), KaResultCode::Success);
  EXPECT_EQ(service.requestCount(Endpoint::Configuration), 1);
  EXPECT_EQ(service.requestCount(Endpoint::Discovery), 2);
  EXPECT_EQ(service.requestCount(Endpoint::Keys), 2);
}

TEST_F(TokenVerification, comparesTheNonceWhenAsked) {
  const QString token = service.issueIdToken(kNonce);
  EXPECT_EQ(verdictOn(token, /*checkNonce=*/true, u"another"_s), KaResultCode::LinkInvalid);
  EXPECT_EQ(verdictOn(token, /*checkNonce=*/true, std::nullopt), KaResultCode::LinkInvalid);
  EXPECT_EQ(verdictOn(token, /*checkNonce=*/false, u"another"_s), KaResultCode::Success);
  EXPECT_EQ(verdictOn(token, /*checkNonce=*/false, std::nullopt), KaResultCode::Success);
}

TEST_F(TokenVerification, refusesWhatIsNoTokenWithoutAsking) {
  for (const auto &token : {std::optional<QString>(), std::optional(u""_s), std::optional(u"a.b"_s),
                            std::optional(service.issueIdToken(kNonce) + u".x"_s), std::optional(u"!.!.!"_s)})
    EXPECT_EQ(verdictOn(token), KaResultCode::LinkInvalid);
  EXPECT_EQ(allRequests(), 0);
}

struct SpoiltToken {
  const char *name;
  TokenFault fault;
  int requests; ///< that it takes to find out
};

class SpoiltTokenVerification : public TokenVerification, public testing::WithParamInterface<SpoiltToken> {};

TEST_P(SpoiltTokenVerification, isRefused) {
  service.setTokenFault(GetParam().fault);
  const QString token = service.issueIdToken(kNonce);
  EXPECT_EQ(verdictOn(token), KaResultCode::LinkInvalid);
  EXPECT_EQ(allRequests(), GetParam().requests);
}

INSTANTIATE_TEST_SUITE_P(Token, SpoiltTokenVerification,
                         testing::Values(SpoiltToken{"hs256", TokenFault::AlgorithmHs256, 0},
                                         SpoiltToken{"noAlgorithm", TokenFault::AlgorithmNone, 0},
                                         SpoiltToken{"wrongAudience", TokenFault::WrongAudience, 1},
                                         SpoiltToken{"audienceArray", TokenFault::AudienceArray, 1},
                                         SpoiltToken{"wrongIssuer", TokenFault::WrongIssuer, 1},
                                         SpoiltToken{"expired", TokenFault::Expired, 1},
                                         SpoiltToken{"wrongNonce", TokenFault::WrongNonce, 1},
                                         SpoiltToken{"lengthThreeModuloFour", TokenFault::PartLengthThreeModuloFour, 1},
                                         SpoiltToken{"unknownKey", TokenFault::UnknownKeyId, 3},
                                         SpoiltToken{"badSignature", TokenFault::BadSignature, 3}),
                         [](const auto &row) { return row.param.name; });

/// Tokens, and their keys, that another implementation made.
TEST(TokenOfAnotherImplementation, isJudgedWhole) {
  const TestProfile profile;
  sandbox::Service service;
  const QJsonObject vectors = signingVectors()["idTokens"_L1].toObject();
  QHash<QString, QString> defaults = service.userDefaults();
  defaults[u"idTokenHostName"_s] = vectors["issuerHost"_L1].toString();
  profile.writeUserDefaults(defaults);
  const QByteArray configuration = R"({"clientId":")" + vectors["audience"_L1].toString().toUtf8() + R"("})";
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::Body, .status = 200, .body = configuration});

  KaServerRequest request;
  const auto payloadHolds = [&](QLatin1StringView name) {
    const QString payload = vectors[name].toString().split(u'.').value(1);
    return KaIdVerificationUtility::validatePayload(request, payload, /*checkNonce=*/true,
                                                    vectors["nonce"_L1].toString());
  };
  EXPECT_TRUE(payloadHolds("valid"_L1));
  EXPECT_FALSE(payloadHolds("expired"_L1));
  EXPECT_FALSE(payloadHolds("audienceArray"_L1));
  EXPECT_FALSE(payloadHolds("payloadLengthThreeModuloFour"_L1));
}

struct BadAnswer {
  const char *name;
  Fault fault;
  std::optional<int> logged; ///< the HTTP status in the log entry, when there is one
};

class BadAnswerVerification : public TokenVerification, public testing::WithParamInterface<BadAnswer> {
protected:
  BadAnswerVerification() : TokenVerification(silenceLimitFor(GetParam().fault)) {}

  [[nodiscard]] QString log() const {
    QString text;
    const QDir folder(profile.appFolder() + u"/Log"_s);
    for (const QString &name : folder.entryList(QDir::Files)) {
      QFile file(folder.filePath(name));
      if (file.open(QFile::ReadOnly)) text += QString::fromUtf8(file.readAll());
    }
    return text;
  }
};

TEST_P(BadAnswerVerification, refusesTheTokenUntilTheServiceRecovers) {
  KaLogUtility::switchLogStatus();
  QString expectedLog;
  for (const auto &[endpoint, title] : {std::pair(Endpoint::Configuration, u"[NG] 000: Get ClientId"_s),
                                        {Endpoint::Discovery, u"[NG] 002: Get PublicKey"_s},
                                        {Endpoint::Keys, u"[NG] 002: Get PublicKey"_s}}) {
    service.order(endpoint, GetParam().fault);
    const qsizetype logLength = log().size();
    EXPECT_EQ(verdictOn(service.issueIdToken(kNonce)), KaResultCode::LinkInvalid) << qPrintable(title);
    const QString entry = log().mid(logLength);
    EXPECT_EQ(entry.contains(title), GetParam().logged.has_value()) << qPrintable(entry);
    const QString statusLine = u"    HTTP=%1\n"_s.arg(GetParam().logged.value_or(0));
    EXPECT_EQ(entry.contains(statusLine), GetParam().logged.has_value()) << qPrintable(entry);
  }
  service.clearFaults();
  EXPECT_EQ(verdictOn(service.issueIdToken(kNonce)), KaResultCode::Success);
}

Fault status(int code) {
  return {.kind = Fault::Kind::Status, .status = code};
}

Fault body(const char *bytes) {
  return {.kind = Fault::Kind::Body, .status = 200, .body = bytes};
}

INSTANTIATE_TEST_SUITE_P(
    Token, BadAnswerVerification,
    testing::Values(
        BadAnswer{"status400", status(400), 400}, BadAnswer{"status401", status(401), 401},
        BadAnswer{"status403", status(403), 403}, BadAnswer{"status404", status(404), std::nullopt},
        BadAnswer{"status500", status(500), 500}, BadAnswer{"status502", status(502), 502},
        BadAnswer{"status503", status(503), 503}, BadAnswer{"emptyBody", {.kind = Fault::Kind::EmptyBody}, 200},
        BadAnswer{"noJson", {.kind = Fault::Kind::MalformedBody}, std::nullopt},
        BadAnswer{"array", body("[1]"), std::nullopt}, BadAnswer{"emptyObject", body("{}"), std::nullopt},
        BadAnswer{"membersOfWrongType", body(R"({"clientId":{},"jwks_uri":7,"keys":{"kid":"k"}})"), std::nullopt},
        BadAnswer{"keysThatAreNone", body(R"({"clientId":"","keys":[7,{},{"kid":7},{"kid":"k"}]})"), std::nullopt},
        BadAnswer{"cutShort", {.kind = Fault::Kind::TruncatedBody}, 0},
        BadAnswer{"dropped", {.kind = Fault::Kind::DroppedConnection}, 0},
        BadAnswer{"noAnswer", {.kind = Fault::Kind::NoAnswer}, 0}),
    [](const auto &row) { return row.param.name; });

struct BadHost {
  const char *name;
  BadCertificate certificate;
};

class BadCertificateVerification : public testing::TestWithParam<BadHost> {};

TEST_P(BadCertificateVerification, refusesTheTokenUnread) {
  const TestProfile profile;
  sandbox::Service service;
  profile.writeUserDefaults(service.userDefaults(service.badlyCertifiedPort(GetParam().certificate)));
  const QStringList parts = service.issueIdToken(kNonce).split(u'.');
  KaServerRequest request;
  EXPECT_FALSE(KaIdVerificationUtility::validatePayload(request, parts[1], /*checkNonce=*/true, kNonce));
  EXPECT_FALSE(KaIdVerificationUtility::validateSignature(request, parts[2], parts[0], parts[1], u"any"_s));
  EXPECT_EQ(service.requestCount(Endpoint::Configuration), 0);
  EXPECT_EQ(service.requestCount(Endpoint::Discovery), 0);
}

INSTANTIATE_TEST_SUITE_P(Token, BadCertificateVerification,
                         testing::Values(BadHost{"unknownAuthority", BadCertificate::UnknownAuthority},
                                         BadHost{"wrongName", BadCertificate::WrongName},
                                         BadHost{"expired", BadCertificate::Expired}),
                         [](const auto &row) { return row.param.name; });

TEST_F(TokenVerification, countsATokenValidInTheSecondOfItsExpiry) {
  // Read at the start of a second, so that the verdict falls into the same one.
  const auto expiringNow = [this] {
    const qint64 before = QDateTime::currentSecsSinceEpoch();
    EXPECT_TRUE(waitFor([before] { return QDateTime::currentSecsSinceEpoch() > before; }));
    return QDateTime::currentSecsSinceEpoch();
  };
  KaIdVerificationUtility::initializeAppId(request);
  const qint64 now = expiringNow();
  const auto payload = [&](const QByteArray &expiry) {
    QByteArray json = R"({"iss":")" + service.issuer().toUtf8() + R"(","aud":")" + service.clientId().toUtf8()
                      + R"(","exp":)" + expiry + "}";
    while (json.size() % 3 == 2)
      json += ' ';
    return QString::fromLatin1(json.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
  };
  const auto holds = [&](const QByteArray &expiry) {
    return KaIdVerificationUtility::validatePayload(request, payload(expiry), /*checkNonce=*/false, std::nullopt);
  };
  EXPECT_TRUE(holds(QByteArray::number(now)));
  EXPECT_FALSE(holds(QByteArray::number(now - 1)));
  EXPECT_TRUE(holds("1e300"));
  EXPECT_FALSE(holds("-1e300"));
  EXPECT_FALSE(holds(R"("4102444800")"));
  EXPECT_FALSE(holds("null"));
}

} // namespace
