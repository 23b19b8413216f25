#include "sandbox/Library.h"
#include "tests/sandbox/Curl.h"

#include <gmock/gmock.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace sandbox;

namespace {

// A verifier and its challenge from RFC 7636, appendix B.
const QString kVerifier = u"dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"_s;
const QString kChallenge = u"E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM"_s;

QString loginUrl(const Service &service, const QString &challenge = kChallenge) {
  return urlOf(service, u"api"_s,
               u"/getLogin?appRedirectUrl="_s + urlOf(service, u"www"_s, u"/st/downloader-login.html"_s)
                   + u"&nonce=N-1&codeChallenge="_s + challenge
                   + u"&downloaderRedirectUrl=downloaderpictora://authenticate&strataClient=pc_2.0&view=login"_s);
}

QJsonObject payloadOf(const QString &token) {
  return QJsonDocument::fromJson(
             QByteArray::fromBase64(token.section(u'.', 1, 1).toLatin1(), QByteArray::Base64UrlEncoding))
      .object();
}

CurlAnswer exchange(const Service &service, const QString &idToken, const QString &verifier) {
  return curl(service, urlOf(service, u"api"_s, u"/getTokenCode"_s),
              posting(R"({"codeVerifier":")" + verifier.toLatin1() + R"("})")
                  + QStringList{u"-H"_s, u"strataclient: pc_2.0"_s, u"-H"_s, u"userid: "_s + idToken});
}

CurlAnswer refresh(const Service &service, const QString &idToken, const QString &tokenCode) {
  const QJsonObject body{{u"idToken"_s, idToken}, {u"nonce"_s, u"N-2"_s}, {u"tokenCode"_s, tokenCode}};
  return curl(service, urlOf(service, u"api"_s, u"/refreshToken"_s), posting(QJsonDocument(body).toJson()));
}

QString member(const CurlAnswer &answer, const QString &name) {
  return QJsonDocument::fromJson(answer.body).object()[name].toString();
}

TEST(Login, leadsOverThePageBackToTheAgent) {
  Service service;
  const CurlAnswer redirected = curl(service, loginUrl(service));
  ASSERT_EQ(redirected.status, 302);
  EXPECT_THAT(redirected.redirect.toStdString(), testing::HasSubstr("/st/downloader-login.html?session="));
  const CurlAnswer page = curl(service, redirected.redirect);
  EXPECT_THAT(page.body.toStdString(), testing::HasSubstr("<button type=\"submit\""));

  const QString session = redirected.redirect.section(u"session="_s, 1);
  const QStringList press{u"-d"_s, u"session="_s + session};
  const CurlAnswer signedIn = curl(service, urlOf(service, u"www"_s, u"/st/sign-in"_s), press);
  EXPECT_EQ(signedIn.status, 302);
  const QString token = signedIn.redirect.section(u"downloaderpictora://authenticate?idToken="_s, 1);
  EXPECT_EQ(payloadOf(token)[u"nonce"_s].toString(), u"N-1"_s);
  EXPECT_EQ(payloadOf(token)[u"sub"_s].toString(), u"user-0001"_s);
  for (const QString &part : token.split(u'.'))
    EXPECT_NE(part.size() % 4, 3);
  EXPECT_EQ(curl(service, urlOf(service, u"www"_s, u"/st/sign-in"_s), press).status, 400) << "a login happens once";
}

TEST(Login, isRefusedWithAWrongParameter) {
  Service service;
  const QString right = loginUrl(service);
  for (const auto &[from, to] : QList<std::pair<QString, QString>>{{u"pc_2.0"_s, u"pc_1.0"_s},
                                                                   {u"view=login"_s, u"view=x"_s},
                                                                   {u"nonce=N-1"_s, u"nonce="_s},
                                                                   {kChallenge, u"short"_s},
                                                                   {u"downloader-login"_s, u"elsewhere"_s},
                                                                   {u"downloaderpictora:"_s, u"other:"_s}}) {
    EXPECT_EQ(curl(service, QString(right).replace(from, to)).status, 400) << to.toStdString();
    EXPECT_EQ(service.signIn(QString(right).replace(from, to)), QString());
  }
}

TEST(TokenCode, needsTheVerifierOfTheChallenge) {
  Service service;
  const QString token = service.signIn(loginUrl(service)).section(u"idToken="_s, 1);
  EXPECT_EQ(exchange(service, token, kVerifier + u'x').status, 400);
  EXPECT_EQ(exchange(service, token + u'x', kVerifier).status, 401);
  EXPECT_EQ(exchange(service, service.issueUnlinkedToken().idToken, kVerifier).status, 400);
  const CurlAnswer answer = exchange(service, token, kVerifier);
  EXPECT_EQ(answer.status, 200);
  EXPECT_FALSE(member(answer, u"tokenCode"_s).isEmpty());
  EXPECT_EQ(exchange(service, token, kVerifier).status, 400) << "a verifier counts once";
}

TEST(Refresh, takesTheLastTwoTokenCodes) {
  Service service;
  const LinkedToken linked = service.issueLinkedToken();
  const CurlAnswer first = refresh(service, linked.idToken, linked.tokenCode);
  ASSERT_EQ(first.status, 200);
  EXPECT_EQ(member(first, u"nonce"_s), u"N-2"_s);
  const QString second = member(first, u"tokenCode"_s);
  EXPECT_NE(second, linked.tokenCode);
  EXPECT_EQ(refresh(service, linked.idToken, linked.tokenCode).status, 200) << "the answer may have been lost";
  const CurlAnswer third = refresh(service, member(first, u"idToken"_s), linked.tokenCode);
  ASSERT_EQ(third.status, 200);
  EXPECT_EQ(refresh(service, linked.idToken, second).status, 401);
  const QString fourth = member(refresh(service, linked.idToken, member(third, u"tokenCode"_s)), u"tokenCode"_s);
  EXPECT_FALSE(fourth.isEmpty());
  EXPECT_EQ(refresh(service, linked.idToken, linked.tokenCode).status, 401);
}

TEST(Refresh, isRefusedWithoutAnExchangedVerifier) {
  Service service;
  const LinkedToken unlinked = service.issueUnlinkedToken();
  EXPECT_EQ(refresh(service, unlinked.idToken, {}).status, 401);
  const LinkedToken linked = service.issueLinkedToken();
  EXPECT_EQ(refresh(service, unlinked.idToken, linked.tokenCode).status, 401);
  EXPECT_EQ(refresh(service, linked.idToken.chopped(4) + u"AAAA"_s, linked.tokenCode).status, 401);
}

TEST(Refresh, goesOnAfterARestartInTheSameFolder) {
  const QTemporaryDir folder;
  LinkedToken linked;
  quint16 port = 0;
  {
    Service service({.folder = folder.path()});
    port = service.port();
    linked = service.issueLinkedToken();
  }
  Service service({.folder = folder.path()});
  EXPECT_EQ(service.port(), port);
  EXPECT_EQ(refresh(service, linked.idToken, linked.tokenCode).status, 200);
  Service stranger;
  EXPECT_EQ(refresh(stranger, linked.idToken, linked.tokenCode).status, 401);
}

struct StsCase {
  const char *name;
  std::optional<TokenFault> fault;
  QString from{};
  QString to{};
  int status = 200;
  const char *expected = "<AccessKeyId>ASIA";
};

class Sts : public testing::TestWithParam<StsCase> {};

TEST_P(Sts, answers) {
  Service service;
  if (GetParam().fault) service.setTokenFault(*GetParam().fault);
  QString target = u"/?Action=AssumeRoleWithWebIdentity&Version=2011-06-15&RoleSessionName=downloaderpictora"
                   u"&RoleArn=arn:aws:iam::123456789012:role/strata-prd-download&WebIdentityToken="_s
                   + service.issueIdToken(u"N-1"_s);
  target.replace(GetParam().from, GetParam().to);
  const CurlAnswer answer = curl(service, urlOf(service, u"sts"_s, target));
  EXPECT_EQ(answer.status, GetParam().status);
  EXPECT_THAT(answer.body.toStdString(), testing::HasSubstr(GetParam().expected));
}

const std::vector<StsCase> kStsCases{
    {"rightCall", std::nullopt},
    {"expired", TokenFault::Expired, {}, {}, 400, "<Code>ExpiredTokenException</Code>"},
    {"badSignature", TokenFault::BadSignature, {}, {}, 400, "<Code>InvalidIdentityToken</Code>"},
    {"hmac", TokenFault::AlgorithmHs256, {}, {}, 400, "<Code>InvalidIdentityToken</Code>"},
    {"unsignedToken", TokenFault::AlgorithmNone, {}, {}, 400, "<Code>InvalidIdentityToken</Code>"},
    {"unknownKey", TokenFault::UnknownKeyId, {}, {}, 400, "<Code>InvalidIdentityToken</Code>"},
    {"wrongAudience", TokenFault::WrongAudience, {}, {}, 400, "<Code>InvalidIdentityToken</Code>"},
    {"wrongIssuer", TokenFault::WrongIssuer, {}, {}, 403, "<Code>AccessDenied</Code>"},
    {"noSubject", TokenFault::NoSubject, {}, {}, 400, "<Code>InvalidIdentityToken</Code>"},
    {"otherAction", std::nullopt, u"WithWebIdentity"_s, {}, 400, "<Code>InvalidAction</Code>"},
    {"otherVersion", std::nullopt, u"2011"_s, u"2012"_s, 400, "<Code>InvalidAction</Code>"},
    {"noRole", std::nullopt, u"arn:aws:iam::123456789012"_s, u"arn:aws:iam::1"_s, 400, "<Code>ValidationError</Code>"},
    {"noSessionName", std::nullopt, u"=downloaderpictora"_s, u"="_s, 400, "<Code>ValidationError</Code>"},
};

INSTANTIATE_TEST_SUITE_P(Each, Sts, testing::ValuesIn(kStsCases),
                         [](const auto &row) { return std::string(row.param.name); });

} // namespace
