#include "identity/KaLinkageUtility.h"
#include "tests/service/ServiceFixture.h"

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using namespace sandbox;
using testing::HasSubstr;
using enum KaResultCode;

namespace {

// A verifier and its challenge from RFC 7636, appendix B.
const QString kVerifier = u"dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"_s;
const QString kChallenge = u"E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM"_s;

/// What the service must refuse: the agent's tests rely on it.
using Refusal = ServiceTest;

TEST_F(Refusal, meetsLoginsWithAWrongParameterAndExchangesWithAWrongVerifier) {
  const QString login = url(u"api"_s, u"/getLogin?appRedirectUrl="_s)
                        + url(u"www"_s, u"/st/downloader-login.html&nonce=N-1&codeChallenge="_s) + kChallenge
                        + u"&downloaderRedirectUrl=downloaderpictora://authenticate&strataClient=pc_2.0&view=login"_s;
  for (const QString &part : {u"pc_2.0"_s, u"view=login"_s, u"nonce=N-1"_s, kChallenge, u"downloader-login"_s})
    EXPECT_EQ(service.signIn(QString(login).replace(part, u"x"_s)), QString()) << part.toStdString();
  const QString token = service.signIn(login).section(u"idToken="_s, 1);
  EXPECT_EQ(request.getTokenCode(kVerifier + u'x', token), LinkInvalid);
  EXPECT_EQ(request.getTokenCode(kVerifier, token + u'x'), LinkInvalid);
  EXPECT_EQ(request.getTokenCode(kVerifier, token), Success);
  EXPECT_EQ(request.getTokenCode(kVerifier, token), LinkInvalid) << "a verifier counts once";
}

TEST_F(Refusal, meetsARefreshWithoutOneOfTheLastTwoTokenCodes) {
  const LinkedToken linked = service.issueLinkedToken();
  const auto refresh = [this](const QString &idToken, const QString &tokenCode) {
    EXPECT_TRUE(KaLinkageUtility::saveTokenCode(tokenCode));
    return request.refreshIdToken(url(u"api"_s, u"/refreshToken"_s), idToken, u"N-2"_s).result;
  };
  EXPECT_EQ(refresh(service.issueUnlinkedToken().idToken, linked.tokenCode), LinkInvalid);
  EXPECT_EQ(refresh(linked.idToken.chopped(4) + u"AAAA"_s, linked.tokenCode), LinkInvalid);
  EXPECT_EQ(refresh(linked.idToken, linked.tokenCode), Success);
  const QString lost = KaLinkageUtility::loadTokenCode().value();
  EXPECT_EQ(refresh(linked.idToken, linked.tokenCode), Success) << "the answer may have been lost";
  const QString current = KaLinkageUtility::loadTokenCode().value();
  EXPECT_EQ(refresh(linked.idToken, lost), LinkInvalid);
  EXPECT_EQ(refresh(linked.idToken, current), Success);
  EXPECT_EQ(refresh(linked.idToken, linked.tokenCode), LinkInvalid);
}

TEST_F(Refusal, meetsAReaderOfTheStorageThatMayNot) {
  const QString own = u"&list-type=2&prefix=images/original/user-0001/"_s;
  const auto answer = [this](const QString &key, const QString &query = {}) {
    return request.getAwsS3KeyList(presigned(key) + query, by).data.toStdString();
  };
  EXPECT_THAT(answer({}, own), HasSubstr("<Key>images/original/user-0001/dev01/"));
  EXPECT_THAT(answer({}, own.chopped(1)), HasSubstr("<Code>AccessDenied</Code>")) << "across users";
  EXPECT_THAT(answer(u"images/original/user-0002/d/20240501/10/1.JPG"_s), HasSubstr("<Code>AccessDenied</Code>"));
  service.revokeCredentials();
  EXPECT_THAT(answer({}, own), HasSubstr("<Error>"));
}

} // namespace
