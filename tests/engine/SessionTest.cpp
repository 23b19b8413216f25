#include "identity/KaLinkageUtility.h"
#include "tests/engine/EngineFixture.h"

#include <QDateTime>

#include <ctime>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;
using sandbox::TokenFault;

namespace {

class Session : public EngineTest {
protected:
  std::optional<QString> token() const { return delegate.answers().token; }

  EngineParts parts{delegate};
};

TEST_F(Session, adoptsAndStoresTheRefreshedToken) {
  auto idToken = token();
  const auto old = idToken;
  ASSERT_EQ(parts.session.refreshIdToken(idToken), KaResultCode::Success);
  EXPECT_NE(idToken, old);
  EXPECT_EQ(token(), idToken);
  EXPECT_EQ(logged(u"[OK] 003: Refresh NorvaleId"_s).size(), 1);
  EXPECT_EQ(logged(u"Save PairingInfo"_s).size(), 1);
}

TEST_F(Session, hasNothingToRefreshWithoutAToken) {
  std::optional<QString> none;
  EXPECT_EQ(parts.session.refreshIdToken(none), KaResultCode::LinkInvalid);
  EXPECT_EQ(logged(u"ERROR"_s), QStringList{u"ERROR|ERR_LINK_INVALID : idToken is nil"_s});
  EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 0);
}

TEST_F(Session, refreshesNothingOnceTheLinkIsClosed) {
  delegate.change([](auto &answers) { answers.loggedIn = false; });
  auto idToken = token();
  EXPECT_EQ(parts.session.refreshIdToken(idToken), KaResultCode::LinkInvalid);
  EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 0);
}

TEST_F(Session, storesNothingWhenTheLinkIsClosedMeanwhile) {
  delegate.change([this](auto &answers) {
    answers.onBLoggedIn = [this] {
      if (service.requestCount(Endpoint::RefreshToken) > 0)
        delegate.change([](auto &later) { later.loggedIn = false; });
    };
  });
  auto idToken = token();
  EXPECT_EQ(parts.session.refreshIdToken(idToken), KaResultCode::LinkInvalid);
  EXPECT_FALSE(delegate.events().contains(u"saveLinkage"_s));
}

struct BadAnswer {
  const char *name;
  TokenFault fault;
  bool savesOldToken;
  QString error{};
};

class BadAnswers : public EngineTest, public testing::WithParamInterface<BadAnswer> {};

TEST_P(BadAnswers, areNotAdopted) {
  service.setTokenFault(GetParam().fault);
  EngineParts parts(delegate);
  auto idToken = delegate.answers().token;
  const auto old = idToken;
  EXPECT_EQ(parts.session.refreshIdToken(idToken), KaResultCode::LinkInvalid);
  EXPECT_EQ(idToken, old);
  EXPECT_EQ(delegate.answers().token, old);
  EXPECT_EQ(delegate.events().contains(u"saveLinkage"_s), GetParam().savesOldToken);
  if (!GetParam().error.isEmpty()) {
    EXPECT_EQ(logged(u"ERROR"_s), QStringList{u"ERROR|"_s + GetParam().error});
  }
}

const QString kNoToken = u"ERR_LINK_INVALID : refresh idToken failed"_s;
const QString kNoNonce = u"ERR_LINK_INVALID : nonce value failed"_s;

INSTANTIATE_TEST_SUITE_P(Session, BadAnswers,
                         testing::Values(BadAnswer{"wrongNonce", TokenFault::WrongNonce, false, kNoNonce},
                                         BadAnswer{"missingNonce", TokenFault::MissingNonce, false, kNoNonce},
                                         BadAnswer{"nonceOfWrongType", TokenFault::NonceOfWrongType, false, kNoNonce},
                                         BadAnswer{"missingToken", TokenFault::MissingIdToken, false, kNoToken},
                                         BadAnswer{"tokenOfWrongType", TokenFault::IdTokenOfWrongType, false, kNoToken},
                                         BadAnswer{"badSignature", TokenFault::BadSignature, true},
                                         BadAnswer{"wrongAudience", TokenFault::WrongAudience, true},
                                         BadAnswer{"expired", TokenFault::Expired, true}),
                         [](const auto &row) { return row.param.name; });

TEST_F(Session, logsWhyTheServiceRefusedToRefresh) {
  service.order(Endpoint::RefreshToken, {.kind = Fault::Kind::Status, .status = 401, .body = R"({"error":"E42"})"});
  auto idToken = token();
  EXPECT_EQ(parts.session.refreshIdToken(idToken), KaResultCode::LinkInvalid);
  EXPECT_EQ(logged(u"[NG] 003: Refresh NorvaleId"_s),
            QStringList{u"[NG] 003: Refresh NorvaleId|HTTP=401|ErrorCode=E42"_s});
}

TEST_F(Session, keepsCredentialsWithTheirExpiry) {
  service.setCredentialLifetime(std::chrono::seconds(1000));
  const qint64 before = QDateTime::currentSecsSinceEpoch();
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  const qint64 after = QDateTime::currentSecsSinceEpoch();
  const KaStorageAccess access = parts.session.access();
  EXPECT_GE(access.presigning.expireUnixTime.toLongLong(), before + 1000);
  EXPECT_LE(access.presigning.expireUnixTime.toLongLong(), after + 1000);
  EXPECT_EQ(access.presigning.accessKeyId, access.credential.accessKeyId);
  EXPECT_EQ(access.presigning.secretKey, access.credential.secretAccessKey);
  EXPECT_EQ(access.presigning.sessionToken, access.credential.sessionToken);
  EXPECT_EQ(parts.session.userUUID(), service.library().userId());
  const QString user = service.library().userId();
  const auto records = delegate.answers().records;
  EXPECT_TRUE(records.contains(user) && records.contains(user + u"_(10G)"_s) && records.contains(user + u"_(2K)"_s));
}

TEST_F(Session, forgetsCredentials) {
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  parts.session.deleteCredential();
  EXPECT_EQ(parts.session.access().credential, KaCredential());
  EXPECT_TRUE(parts.session.access().presigning.expireUnixTime.isEmpty());
  EXPECT_EQ(logged(u"ERROR"_s), QStringList{u"ERROR|deleteCredential"_s});
}

QByteArray stsAnswer(const QByteArray &expiration) {
  return "<A><Credentials><AccessKeyId>A</AccessKeyId><SecretAccessKey>S</SecretAccessKey><SessionToken>T"
         "</SessionToken>"
         + expiration + "</Credentials></A>";
}

struct Expiration {
  const char *name;
  QByteArray element;
  QString expected;
};

class Expirations : public EngineTest, public testing::WithParamInterface<Expiration> {
protected:
  // A zone that skips an hour in spring.
  const bool zoned = [] {
    qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    tzset();
    return true;
  }();
};

TEST_P(Expirations, becomeUnixTime) {
  service.order(Endpoint::Sts, {.kind = Fault::Kind::Body, .body = stsAnswer(GetParam().element)});
  EngineParts parts(delegate);
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  EXPECT_EQ(parts.session.access().presigning.expireUnixTime, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Session, Expirations,
    testing::Values(Expiration{"usual", "<Expiration>2024-05-01T12:00:00Z</Expiration>", u"1714564800"_s},
                    Expiration{"inASkippedHour", "<Expiration>2024-03-31T02:30:00Z</Expiration>", u"1711852200"_s},
                    Expiration{"missing", "", u"0"_s}, Expiration{"noDate", "<Expiration>soon</Expiration>", u"0"_s},
                    Expiration{"lastSecondOf32Bits", "<Expiration>2038-01-19T03:14:07Z</Expiration>", u"2147483647"_s},
                    Expiration{"cutTo32Bits", "<Expiration>2038-01-19T03:14:08Z</Expiration>", u"-2147483648"_s}),
    [](const auto &row) { return row.param.name; });

TEST_F(Session, needsAUserInTheToken) {
  service.order(Endpoint::Sts, {.kind = Fault::Kind::Body, .body = stsAnswer({})});
  EXPECT_EQ(parts.session.getCredential(u"e30.e30.e30"_s), KaResultCode::LinkInvalid);
  EXPECT_EQ(parts.session.access().credential.accessKeyId, u"A"_s);
  EXPECT_EQ(logged(u"ERROR"_s), QStringList{u"ERROR|ERR_LINK_INVALID : userUUID is nil"_s});
}

TEST_F(Session, asksForCredentialsWithTheTokenAsItIs) {
  EXPECT_THAT(
      KaDownloadSession::createGetCredentialString(u"a.b-_c"_s).toStdString(),
      testing::MatchesRegex("https://sts\\.localhost:[0-9]+/\\?Action=AssumeRoleWithWebIdentity&Version=2011-06-15"
                            "&RoleSessionName=downloaderpictora&RoleArn=arn:aws:iam::[0-9]+:role/strata-prd-download"
                            "&WebIdentityToken=a\\.b-_c"));
}

TEST_F(Session, handsACodeVerifierInOnceAndOnlyWithAToken) {
  const sandbox::LinkedToken login = service.issueUnlinkedToken();
  KaLinkageUtility::saveCodeVerifier(login.codeVerifier);
  parts.session.exchangeCodeVerifier({});
  EXPECT_TRUE(KaLinkageUtility::existCodeVerifier());
  parts.session.exchangeCodeVerifier(login.idToken);
  parts.session.exchangeCodeVerifier(login.idToken);
  EXPECT_EQ(service.requestCount(Endpoint::TokenCode), 1);
  std::optional<QString> idToken = login.idToken;
  EXPECT_EQ(parts.session.refreshIdToken(idToken), KaResultCode::Success);
}

} // namespace
