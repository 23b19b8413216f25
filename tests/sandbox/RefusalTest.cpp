#include "sandbox/Library.h"
#include "sandbox/Service.h"

#include <gmock/gmock.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

using namespace Qt::StringLiterals;
using namespace sandbox;
using testing::HasSubstr;

namespace {

// A verifier and its challenge from RFC 7636, appendix B.
const QString kVerifier = u"dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"_s;
const QString kChallenge = u"E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM"_s;

/// The service as the curl program sees it. The agent's tests rely on it to refuse what is wrong.
class Refusal : public testing::Test {
protected:
  struct Answer {
    int status;
    QByteArray body;
    [[nodiscard]] QString member(const QString &name) const {
      return QJsonDocument::fromJson(body).object()[name].toString();
    }
  };

  [[nodiscard]] Answer curl(const QString &url, const QStringList &options = {}) const {
    QProcess process;
    const QStringList fixed{u"-qsS"_s, u"--noproxy"_s,     u"*"_s, u"--cacert"_s, service.trustAnchorsFile(),
                            u"-w"_s,   u"\n%{http_code}"_s};
    process.start(u"curl"_s, fixed + options + QStringList{url});
    EXPECT_TRUE(process.waitForFinished(90'000));
    const QByteArray output = process.readAllStandardOutput();
    const auto mark = output.lastIndexOf('\n');
    return {output.mid(mark + 1).toInt(), output.left(mark)};
  }
  [[nodiscard]] QString urlOf(const QString &name, const QString &target) const {
    return u"https://%1.localhost:%2%3"_s.arg(name).arg(service.port()).arg(target);
  }
  [[nodiscard]] Answer post(const QString &target, const QJsonObject &body, const QStringList &options = {}) const {
    return curl(urlOf(u"api"_s, target),
                options + QStringList{u"--json"_s, QString::fromUtf8(QJsonDocument(body).toJson())});
  }
  [[nodiscard]] QString loginUrl() const {
    return urlOf(u"api"_s, u"/getLogin?appRedirectUrl="_s) + urlOf(u"www"_s, u"/st/downloader-login.html"_s)
           + u"&nonce=N-1&codeChallenge="_s + kChallenge
           + u"&downloaderRedirectUrl=downloaderpictora://authenticate&strataClient=pc_2.0&view=login"_s;
  }

  Service service;
};

TEST_F(Refusal, meetsLoginsWithAWrongParameterAndExchangesWithAWrongVerifier) {
  for (const QString &part : {u"pc_2.0"_s, u"view=login"_s, u"nonce=N-1"_s, kChallenge, u"downloader-login"_s})
    EXPECT_EQ(service.signIn(loginUrl().replace(part, u"x"_s)), QString()) << part.toStdString();
  const QString token = service.signIn(loginUrl()).section(u"idToken="_s, 1);
  const auto exchange = [&](const QString &idToken, const QString &verifier) {
    return post(u"/getTokenCode"_s, {{u"codeVerifier"_s, verifier}},
                {u"-H"_s, u"strataclient: pc_2.0"_s, u"-H"_s, u"userid: "_s + idToken});
  };
  EXPECT_EQ(exchange(token, kVerifier + u'x').status, 400);
  EXPECT_EQ(exchange(token + u'x', kVerifier).status, 401);
  EXPECT_EQ(exchange(service.issueUnlinkedToken().idToken, kVerifier).status, 400);
  EXPECT_NE(exchange(token, kVerifier).member(u"tokenCode"_s), QString());
  EXPECT_EQ(exchange(token, kVerifier).status, 400) << "a verifier counts once";
}

TEST_F(Refusal, meetsARefreshWithoutOneOfTheLastTwoTokenCodes) {
  const auto refresh = [this](const QString &idToken, const QString &tokenCode) {
    return post(u"/refreshToken"_s, {{u"idToken"_s, idToken}, {u"nonce"_s, u"N-2"_s}, {u"tokenCode"_s, tokenCode}});
  };
  const LinkedToken linked = service.issueLinkedToken();
  EXPECT_EQ(refresh(service.issueUnlinkedToken().idToken, linked.tokenCode).status, 401);
  EXPECT_EQ(refresh(linked.idToken.chopped(4) + u"AAAA"_s, linked.tokenCode).status, 401);
  const Answer first = refresh(linked.idToken, linked.tokenCode);
  EXPECT_EQ(first.member(u"nonce"_s), u"N-2"_s);
  const Answer second = refresh(first.member(u"idToken"_s), linked.tokenCode);
  EXPECT_EQ(second.status, 200) << "the answer may have been lost";
  EXPECT_EQ(refresh(linked.idToken, first.member(u"tokenCode"_s)).status, 401);
  EXPECT_EQ(refresh(linked.idToken, second.member(u"tokenCode"_s)).status, 200);
  EXPECT_EQ(refresh(linked.idToken, linked.tokenCode).status, 401);
}

TEST_F(Refusal, meetsACallForCredentialsWithAnotherToken) {
  const auto ask = [this](std::optional<TokenFault> fault) {
    if (fault) service.setTokenFault(*fault);
    return curl(urlOf(u"sts"_s, u"/?Action=AssumeRoleWithWebIdentity&Version=2011-06-15&RoleSessionName=name"
                                u"&RoleArn=arn:aws:iam::123456789012:role/strata-prd-download&WebIdentityToken="_s
                                    + service.issueIdToken(u"N-1"_s)))
        .body.toStdString();
  };
  EXPECT_THAT(ask({}), HasSubstr("<AccessKeyId>ASIA"));
  EXPECT_THAT(ask(TokenFault::Expired), HasSubstr("<Code>ExpiredTokenException</Code>"));
  EXPECT_THAT(ask(TokenFault::WrongIssuer), HasSubstr("<Code>AccessDenied</Code>"));
  for (const auto fault : {TokenFault::BadSignature, TokenFault::AlgorithmNone, TokenFault::WrongAudience})
    EXPECT_THAT(ask(fault), HasSubstr("<Code>InvalidIdentityToken</Code>"));
}

TEST_F(Refusal, meetsAReaderOfTheStorageThatMayNot) {
  service.library().addMany({.count = 2, .size = 10, .deviceId = u"dev1"_s, .firstDate = u"20240501"_s});
  service.setListPageSize(1);
  const TemporaryCredential credential = service.issueCredential();
  const auto get = [&](const QString &key, const QString &query = {}) {
    const QString url = service.presignedUrl(credential, contentBucket(), key) + query;
    return curl(url, {u"-H"_s, u"x-amz-security-token: "_s + credential.sessionToken}).body.toStdString();
  };
  const QString own = u"&list-type=2&prefix=images/original/user-0001/"_s;
  const std::string page = get({}, own);
  EXPECT_THAT(page, HasSubstr("M00000000.JPG</Key>"));
  const QString next = QString::fromStdString(page).section(u"NextContinuationToken>"_s, 1, 1).section(u'<', 0, 0);
  EXPECT_THAT(get({}, own + u"&continuation-token="_s + next), HasSubstr("<Code>InvalidArgument</Code>")) << "bare";
  EXPECT_THAT(get({}, own.chopped(1)), HasSubstr("<Code>AccessDenied</Code>")) << "across users";
  EXPECT_THAT(get(u"images/original/user-0002/d/20240501/10/1.JPG"_s), HasSubstr("<Code>AccessDenied</Code>"));
  EXPECT_THAT(get(u"conf/settings.json"_s), HasSubstr("<Code>NoSuchKey</Code>"));
  service.revokeCredentials();
  EXPECT_THAT(get({}, own), HasSubstr("<Error>"));
}

} // namespace
