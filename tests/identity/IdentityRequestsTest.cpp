#include "app/log/KaLogUtility.h"
#include "identity/KaLinkageUtility.h"
#include "sandbox/Service.h"
#include "service/KaServerRequest.h"
#include "tests/identity/ServiceFixture.h"
#include "tests/log/LogFile.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

class IdentityRequests : public ServiceFixture {
protected:
  using ServiceFixture::ServiceFixture;

  KaResultCode exchangeCode() { return request.getTokenCode(login.codeVerifier, login.idToken); }
  ServerAnswer refresh() { return request.refreshIdToken(refreshUrl, login.idToken, u"NEW-NONCE"_s); }

  const sandbox::LinkedToken login = service.issueUnlinkedToken();
  const QString refreshUrl = u"https://"_s + service.userDefaults()[u"strataHostName"_s] + u"/refreshToken"_s;
  KaServerRequest request;
};

TEST_F(IdentityRequests, exchangeTheVerifierForATokenCode) {
  EXPECT_EQ(exchangeCode(), KaResultCode::Success);
  EXPECT_FALSE(KaLinkageUtility::loadTokenCode().value_or(QString()).isEmpty());

  const auto sent = service.requests().constLast();
  EXPECT_EQ(sent.endpoint, Endpoint::TokenCode);
  EXPECT_EQ(sent.method, "POST");
  EXPECT_EQ(sent.header("Content-Type"), "application/json");
  EXPECT_EQ(sent.header("strataclient"), "pc_2.0");
  EXPECT_EQ(sent.header("userid"), login.idToken.toUtf8());
  EXPECT_EQ(sent.body, R"({"codeVerifier":")" + login.codeVerifier.toUtf8() + R"("})");
}

TEST_F(IdentityRequests, refreshWithTheStoredTokenCodeAndKeepTheNext) {
  ASSERT_EQ(exchangeCode(), KaResultCode::Success);
  const auto firstCode = KaLinkageUtility::loadTokenCode();

  const ServerAnswer answer = refresh();
  EXPECT_EQ(answer.result, KaResultCode::Success);
  EXPECT_EQ(answer.statusCode, 200);
  const QJsonObject body = QJsonDocument::fromJson(answer.data).object();
  EXPECT_EQ(body["nonce"_L1].toString(), u"NEW-NONCE"_s);
  EXPECT_FALSE(body["idToken"_L1].toString().isEmpty());
  EXPECT_EQ(KaLinkageUtility::loadTokenCode(), body["tokenCode"_L1].toString());
  EXPECT_NE(KaLinkageUtility::loadTokenCode(), firstCode);

  const auto sent = service.requests().constLast();
  EXPECT_EQ(sent.header("Content-Type"), "application/json");
  EXPECT_EQ(QJsonDocument::fromJson(sent.body).object(),
            QJsonObject({{u"idToken"_s, login.idToken},
                         {u"nonce"_s, u"NEW-NONCE"_s},
                         {u"tokenCode"_s, firstCode.value_or(QString())}}));
}

TEST_F(IdentityRequests, logTheTokenCodeOfALoginAlone) {
  KaLogUtility::switchLogStatus();
  ASSERT_EQ(exchangeCode(), KaResultCode::Success);
  ASSERT_EQ(refresh().result, KaResultCode::Success);
  const QStringList log = loggedLines(profile);
  ASSERT_EQ(log.size(), 1);
  EXPECT_TRUE(log[0].contains(u"= saveTokenCode_complete ="_s)) << qPrintable(log[0]);
}

TEST_F(IdentityRequests, refreshIsRefusedForALoginWithoutTokenCode) {
  const ServerAnswer answer = refresh();
  EXPECT_EQ(answer.result, KaResultCode::LinkInvalid);
  EXPECT_TRUE(QJsonDocument::fromJson(answer.data).object().contains("error"_L1));
}

struct BadAnswer {
  const char *name;
  Fault fault;
  KaResultCode result;
};

class BadAnswerToIdentityRequests : public IdentityRequests, public testing::WithParamInterface<BadAnswer> {
protected:
  BadAnswerToIdentityRequests() : IdentityRequests(silenceLimitFor(GetParam().fault)) {}
};

TEST_P(BadAnswerToIdentityRequests, givesItsResultAndKeepsTheTokenCode) {
  ASSERT_TRUE(KaLinkageUtility::saveTokenCode(u"the last good one"_s));
  service.order(Endpoint::TokenCode, GetParam().fault);
  service.order(Endpoint::RefreshToken, GetParam().fault);
  EXPECT_EQ(exchangeCode(), GetParam().result);
  EXPECT_EQ(refresh().result, GetParam().result);
  EXPECT_EQ(KaLinkageUtility::loadTokenCode(), u"the last good one"_s);
}

Fault status(int code) {
  return {.kind = Fault::Kind::Status, .status = code};
}

Fault body(const char *bytes) {
  return {.kind = Fault::Kind::Body, .status = 200, .body = bytes};
}

INSTANTIATE_TEST_SUITE_P(
    Identity, BadAnswerToIdentityRequests,
    testing::Values(BadAnswer{"status400", status(400), KaResultCode::LinkInvalid},
                    BadAnswer{"status401", status(401), KaResultCode::LinkInvalid},
                    BadAnswer{"status403", status(403), KaResultCode::LinkInvalid},
                    BadAnswer{"status500", status(500), KaResultCode::RetryLater},
                    BadAnswer{"status502", status(502), KaResultCode::ServerError},
                    BadAnswer{"status503", status(503), KaResultCode::RetryLater},
                    BadAnswer{"notFoundWithoutTokenCode",
                              {.kind = Fault::Kind::Body, .status = 404, .body = R"({"error":"gone"})"},
                              KaResultCode::NoBody},
                    BadAnswer{"emptyBody", {.kind = Fault::Kind::EmptyBody}, KaResultCode::NoBody},
                    BadAnswer{"noJson", {.kind = Fault::Kind::MalformedBody}, KaResultCode::Offline},
                    BadAnswer{"array", body(R"([{"tokenCode":"c"}])"), KaResultCode::NoBody},
                    BadAnswer{"noTokenCode", body(R"({"idToken":"t"})"), KaResultCode::NoBody},
                    BadAnswer{"tokenCodeOfWrongType", body(R"({"tokenCode":7})"), KaResultCode::NoBody},
                    BadAnswer{"cutShort", {.kind = Fault::Kind::TruncatedBody}, KaResultCode::Offline},
                    BadAnswer{"dropped", {.kind = Fault::Kind::DroppedConnection}, KaResultCode::Offline},
                    BadAnswer{"noAnswer", {.kind = Fault::Kind::NoAnswer}, KaResultCode::Offline}),
    [](const auto &row) { return row.param.name; });

} // namespace
