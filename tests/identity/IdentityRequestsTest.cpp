#include "app/log/KaLogUtility.h"
#include "identity/KaLinkageUtility.h"
#include "tests/log/LogFile.h"
#include "tests/service/ServiceFixture.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

struct IdentityRequests : ServiceTest {
  KaResultCode exchangeCode() { return request.getTokenCode(login.codeVerifier, login.idToken); }
  ServerAnswer refresh() {
    return request.refreshIdToken(url(u"api"_s, u"/refreshToken"_s), login.idToken, u"NEW-NONCE"_s);
  }

  const sandbox::LinkedToken login = service.issueUnlinkedToken();
  KaServerRequest request;
};

TEST_F(IdentityRequests, exchangeTheVerifierForATokenCodeAndThatForTokens) {
  EXPECT_EQ(refresh().result, KaResultCode::LinkInvalid) << "there is no token code yet";
  KaLogUtility::switchLogStatus();
  EXPECT_EQ(exchangeCode(), KaResultCode::Success);
  const QString firstCode = KaLinkageUtility::loadTokenCode().value_or(QString());
  EXPECT_FALSE(firstCode.isEmpty());
  const auto exchange = service.requests().constLast();
  EXPECT_EQ(exchange.method, "POST");
  EXPECT_EQ(exchange.header("Content-Type"), "application/json");
  EXPECT_EQ(exchange.header("strataclient"), "pc_2.0");
  EXPECT_EQ(exchange.header("userid"), login.idToken.toUtf8());
  EXPECT_EQ(exchange.body, R"({"codeVerifier":")" + login.codeVerifier.toUtf8() + R"("})");

  const ServerAnswer answer = refresh();
  EXPECT_EQ(answer.result, KaResultCode::Success);
  const QJsonObject received = QJsonDocument::fromJson(answer.data).object();
  EXPECT_EQ(received["nonce"_L1].toString(), u"NEW-NONCE"_s);
  EXPECT_EQ(KaLinkageUtility::loadTokenCode(), received["tokenCode"_L1].toString());
  EXPECT_NE(KaLinkageUtility::loadTokenCode(), firstCode);
  const auto sent = service.requests().constLast();
  EXPECT_EQ(sent.header("Content-Type"), "application/json");
  EXPECT_EQ(QJsonDocument::fromJson(sent.body).object(),
            QJsonObject({{u"idToken"_s, login.idToken}, {u"nonce"_s, u"NEW-NONCE"_s}, {u"tokenCode"_s, firstCode}}));
  const QStringList log = loggedLines(profile);
  EXPECT_TRUE(log.size() == 1 && log[0].contains(u"= saveTokenCode_complete ="_s)) << qPrintable(log.join(u'\n'));
}

TEST_F(IdentityRequests, keepTheTokenCodeWhenTheAnswerIsBad) {
  ASSERT_TRUE(KaLinkageUtility::saveTokenCode(u"the last good one"_s));
  const std::pair<Fault, KaResultCode> cases[] = {
      {{.status = 403}, KaResultCode::LinkInvalid},
      {{.status = 404}, KaResultCode::NoBody},
      {{.kind = Fault::Kind::EmptyBody}, KaResultCode::NoBody},
      {{.kind = Fault::Kind::MalformedBody}, KaResultCode::Offline},
      {{.kind = Fault::Kind::Body, .body = R"([{"tokenCode":"c"}])"}, KaResultCode::NoBody},
      {{.kind = Fault::Kind::Body, .body = R"({"tokenCode":7})"}, KaResultCode::NoBody},
      {{.kind = Fault::Kind::TruncatedBody}, KaResultCode::Offline},
  };
  for (const auto &[fault, result] : cases) {
    service.order(Endpoint::TokenCode, fault);
    service.order(Endpoint::RefreshToken, fault);
    EXPECT_EQ(exchangeCode(), result) << fault.status << ' ' << fault.body.constData();
    EXPECT_EQ(refresh().result, result) << fault.status << ' ' << fault.body.constData();
    EXPECT_EQ(KaLinkageUtility::loadTokenCode(), u"the last good one"_s);
  }
}

} // namespace
