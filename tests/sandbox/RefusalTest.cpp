#include "tests/service/ServiceFixture.h"

using namespace Qt::StringLiterals;
using namespace sandbox;
using enum KaResultCode;

namespace {

/// What the service must refuse: the agent's tests rely on it.
using Refusal = ServiceTest;

TEST_F(Refusal, meetsExchangesWithAWrongVerifier) {
  const LinkedToken login = service.issueUnlinkedToken();
  EXPECT_EQ(request.getTokenCode(login.codeVerifier + u'x', login.idToken).result, LinkInvalid);
  EXPECT_EQ(request.getTokenCode(login.codeVerifier, login.idToken + u'x').result, LinkInvalid);
  EXPECT_EQ(request.getTokenCode(login.codeVerifier, login.idToken).result, Success);
  EXPECT_EQ(request.getTokenCode(login.codeVerifier, login.idToken).result, LinkInvalid) << "a verifier counts once";
}

TEST_F(Refusal, meetsARefreshWithoutOneOfTheLastTwoTokenCodes) {
  const LinkedToken linked = service.issueLinkedToken();
  const auto refresh = [&](const QString &tokenCode, const QString &idToken) {
    return request.refreshIdToken(idToken, u"N-2"_s, tokenCode);
  };
  const QString lost = refresh(linked.tokenCode, linked.idToken).tokenCode;
  const QString current = refresh(linked.tokenCode, linked.idToken).tokenCode;
  EXPECT_FALSE(lost.isEmpty() || current.isEmpty() || lost == current) << "the answer may have been lost";
  EXPECT_EQ(refresh(lost, linked.idToken).result, LinkInvalid);
  EXPECT_EQ(refresh(current, service.issueUnlinkedToken().idToken).result, LinkInvalid);
  EXPECT_EQ(refresh(current, linked.idToken.chopped(4) + u"AAAA"_s).result, LinkInvalid);
  EXPECT_EQ(refresh(current, linked.idToken).result, Success);
  EXPECT_EQ(refresh(linked.tokenCode, linked.idToken).result, LinkInvalid);
}

TEST_F(Refusal, meetsAReaderOfTheStorageThatMayNot) {
  const QString own = u"&list-type=2&prefix=images/original/user-0001/"_s;
  const auto answer = [this](const QString &key, const QString &query = {}) {
    return request.getAwsS3KeyList(presigned(key) + query, by).data;
  };
  EXPECT_TRUE(answer({}, own).contains("<Key>images/original/user-0001/dev01/"));
  EXPECT_TRUE(answer({}, own.chopped(1)).contains("<Code>AccessDenied</Code>")) << "across users";
  EXPECT_TRUE(answer(u"images/original/user-0002/d/20240501/10/1.JPG"_s).contains("<Code>AccessDenied</Code>"));
  service.revokeCredentials();
  EXPECT_TRUE(answer({}, own).contains("<Error>"));
}

TEST_F(Refusal, thatIsOrderedMeetsNoLettersOfASignature) {
  const QString url = presigned(imageKey);
  service.order(Endpoint::ObjectGet, {.pathContains = url.section(u"Signature="_s, 1).left(8)});
  EXPECT_EQ(request.getAwsS3KeyList(url, by).statusCode, 200);
  service.order(Endpoint::ObjectGet, {.pathContains = image.deviceId});
  EXPECT_EQ(request.getAwsS3KeyList(url, by).statusCode, 500);
}

struct ElsewhereRefusal : ServiceTest {
  ElsewhereRefusal() : ServiceTest({.region = "us-west-2"}) {}
};

TEST_F(ElsewhereRefusal, meetsWhatIsSignedForTheWrongRegion) {
  const ServerAnswer tags = request.getAWSS3ObjectTag(by, imageKey);
  EXPECT_EQ(tags.statusCode, 400);
  EXPECT_TRUE(tags.data.contains("<Code>AuthorizationHeaderMalformed</Code><Message>The authorization header is "
                                 "malformed; the region 'eu-west-1' is wrong; expecting 'us-west-2'</Message>"
                                 "<Region>us-west-2</Region>"));
  EXPECT_EQ(request.headAWSS3Object(by, imageKey).result, LinkInvalid);
  EXPECT_TRUE(storage.document(imageKey).content == image.body) << "URLs are signed for no region";
  EXPECT_EQ(request.notifyDownloadCompletion(by, u"{}"_s).statusCode, 400);
  EXPECT_TRUE(service.logEvents().isEmpty());
}

} // namespace
