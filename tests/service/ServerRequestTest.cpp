#include "log/KaLogUtility.h"
#include "service/KaApplicationConstants.h"
#include "service/LoopbackHost.h"
#include "service/SaveOrder.h"
#include "service/ServiceClock.h"
#include "tests/log/LogFile.h"
#include "tests/service/ServiceFixture.h"

#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

using enum KaResultCode;
using ServerRequest = ServiceTest;
using Storage = ServiceTest;

TEST_F(ServerRequest, tellsWhatAStatusMeansForEveryKindOfRequest) {
  using enum StoredDocument::State;
  const std::tuple<int, KaResultCode, StoredDocument::State> cases[] = {
      {200, Success, There},      {404, Success, Missing},    {400, LinkInvalid, Failed}, {401, LinkInvalid, Failed},
      {403, LinkInvalid, Failed}, {500, RetryLater, Failed},  {503, RetryLater, Failed},  {201, ServerError, Failed},
      {302, ServerError, Failed}, {502, ServerError, Failed}, {501, ServerError, Failed}};
  for (const auto &[status, result, state] : cases) {
    SCOPED_TRACE(status);
    for (const Endpoint endpoint : {Endpoint::ObjectGet, Endpoint::ObjectHead, Endpoint::ObjectTagging, Endpoint::Sts})
      service.order(endpoint, {.kind = Fault::Kind::Body, .status = status, .body = "<a/>", .times = -1});
    const QString object = presigned(imageKey);
    EXPECT_EQ(KaServerRequest::checkHTTPResponse(status), result);
    EXPECT_EQ(request.getAwsS3KeyList(object, by).result, result);
    EXPECT_EQ(request.getAWSS3ObjectTag(by, imageKey).result, result);
    EXPECT_EQ(request.getAwsTemporaryCredential(u"t"_s).result, result);
    const StoredDocument stored = storage.document(imageKey);
    EXPECT_EQ(std::tuple(stored.result, stored.state, stored.statusCode), std::tuple(result, state, status));
    EXPECT_EQ(stored.content, state == There ? "<a/>" : "");
    const ObjectHead head = request.headAWSS3Object(by, imageKey);
    EXPECT_EQ(std::tuple(head.result, head.isThere, head.statusCode), std::tuple(result, state == There, status));
    const SavedObject saved = request.getAwsS3Preview(object, by, {picture(u"default.JPG"_s), 4}, u"a.JPG"_s);
    EXPECT_EQ(saved.result, state == Missing ? ObjectMissing : result);
    EXPECT_EQ(savedFiles().size(), state == There ? 1 : 0);
    EXPECT_EQ(QFile::remove(saved.outputFilePath), state == There);
    service.clearFaults();
  }
  service.order(Endpoint::ObjectGet, {.kind = Fault::Kind::Body, .status = 404});
  EXPECT_EQ(storage.document(imageKey).state, Missing) << "without a body, too";
  service.order(Endpoint::Sts, {.kind = Fault::Kind::EmptyBody});
  EXPECT_EQ(request.getAwsTemporaryCredential(u"t"_s).result, NoBody);
  service.order(Endpoint::ObjectTagging, {.kind = Fault::Kind::EmptyBody});
  EXPECT_EQ(request.getAWSS3ObjectTag(by, imageKey).result, Success);
  service.order(Endpoint::ObjectTagging, {.kind = Fault::Kind::TruncatedBody});
  EXPECT_EQ(request.getAWSS3ObjectTag(by, imageKey).result, ServerError);
}

TEST_F(ServerRequest, tellsHowFarTheServicesClockIsOff) {
  EXPECT_EQ(ServiceClock::computerAhead(), 0s);
  for (const auto ahead : {-40s, 3600s, -1200s, 20s}) {
    service.setClockAhead(ahead);
    static_cast<void>(request.getKaAppId());
    const auto here = abs(ahead) < 1min ? 0s : -ahead;
    EXPECT_LE(abs(ServiceClock::computerAhead() - here), 3s * kSlowness) << ahead.count();
    EXPECT_EQ(ServiceClock::isFarOff(), here != 0s);
  }
  using Headers = std::vector<std::pair<QByteArray, QByteArray>>;
  const QByteArray old = "Fri, 01 Jan 2021 00:00:00 GMT";
  for (const Headers &silent : {Headers(),
                                {{"Date", ""}},
                                {{"Date", "yesterday GMT"}},
                                {{"Date", "20210101"}},
                                {{"date", old}, {"age", "60"}}}) {
    ServiceClock::noteAnswer(silent);
    EXPECT_FALSE(ServiceClock::isFarOff()) << silent.size();
  }
  ServiceClock::noteAnswer({{"date", old}});
  EXPECT_TRUE(ServiceClock::isFarOff());
}

TEST_F(ServerRequest, endsAtOnceWhenItIsStopped) {
  for (const Endpoint endpoint : {Endpoint::Sts, Endpoint::ObjectTagging}) {
    service.order(endpoint, {.kind = Fault::Kind::NoAnswer});
    std::jthread other([&] {
      EXPECT_TRUE(service.waitForRequests(endpoint, 1, 20s));
      request.stopServerRequest();
    });
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(endpoint == Endpoint::Sts ? request.getAwsTemporaryCredential(u"t"_s).statusCode
                                        : request.getAWSS3ObjectTag(by, imageKey).statusCode,
              0);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 5s) << "half its limit";
  }
}

TEST_F(Storage, endsAListingAtThePageThatFailsOrComesAgain) {
  const auto page = [](const QByteArray &next) {
    return Fault{.kind = Fault::Kind::Body,
                 .body = "<L><NextContinuationToken>" + next + "</NextContinuationToken></L>"};
  };
  const std::tuple<Fault, KaResultCode, qint64> thirdPages[] = {
      {page("1"), NoBody, 200},
      {{.status = 403}, LinkInvalid, 403},
      {{.status = 404}, NoBody, 404},
      {{.kind = Fault::Kind::MalformedBody}, NoBody, 200},
      {{.kind = Fault::Kind::DroppedConnection}, NoHttpStatus, 0},
  };
  for (const auto &[third, result, status] : thirdPages) {
    for (const Fault &answer : {page("1"), page("2"), third})
      service.order(Endpoint::ListItems, answer);
    int pages = 0;
    const ListingOutcome outcome = storage.listObjects(u"images/"_s, {}, [&](const ListingPage &) { ++pages; });
    EXPECT_EQ(std::tuple(outcome.result, outcome.statusCode, pages), std::tuple(result, status, 2));
  }
}

TEST_F(Storage, asksForNothingWithoutCredentials) {
  storage.deleteCredential();
  EXPECT_TRUE(storage.expiresWithin(std::chrono::hours(-1)));
  const SaveOrder order{picture(u"default.JPG"_s)};
  const auto ignore = [](const ListingPage &) {};
  for (const KaResultCode result :
       {storage.listDevices(u"a/"_s, ignore).result, storage.listObjects(u"a/"_s, {}, ignore).result,
        storage.document(imageKey).result, storage.previewList(u"user"_s, {}).result, storage.head(imageKey).result,
        storage.checkObjectTagIs10GStorage(imageKey).result, storage.save(imageKey, order).result,
        storage.savePreview(imageKey, order, u"a"_s).result})
    EXPECT_EQ(result, LinkInvalid);
  EXPECT_TRUE(service.requests().isEmpty());
}

TEST_F(ServerRequest, reportsWhatItIsGivenAndTellsTheLogNothingPrivateOfARefusal) {
  const QString document =
      uR"({"logGroupName":"g", "logStreamName":"s", "logEvents":[{"timestamp":1,"message":"{\"UUID\":\"Grüße\"}"}]})"_s;
  for (const bool isAnswered : {true, false}) {
    if (!isAnswered) service.order(Endpoint::LogEvents, {.kind = Fault::Kind::EmptyBody});
    EXPECT_EQ(request.notifyDownloadCompletion(by, document).result, Success) << "it needs no answer";
  }
  EXPECT_EQ(service.requests().last().body, document.toUtf8());
  KaLogUtility::switchLogStatus();
  const QByteArray refusal = R"({"error":"E","errorDescription":"private"})";
  service.order(Endpoint::LogEvents, {.status = 400, .body = refusal});
  EXPECT_EQ(request.notifyDownloadCompletion(by, document).result, LinkInvalid);
  EXPECT_EQ(loggedLines(profile).mid(1), QStringList({u"    HTTP=400"_s, u"    ErrorCode=E"_s}));
}

TEST(Constants, keepWhatTheyFirstReadUnderTheirOddKeys) {
  const TestProfile profile;
  profile.writeUserDefaults({{u"awsLogsGroupName"_s, u"ignored"_s}, {u"awsLogGroupName"_s, u"mine"_s}});
  platform::UserDefaults &defaults = platform::standardUserDefaults();
  for (int reading = 0; reading < 2; ++reading) {
    EXPECT_EQ(KaApplicationConstants::awsLogsGroupName(), u"mine"_s);
    defaults.setString(u"awsLogGroupName"_s, u"another"_s);
  }
  EXPECT_EQ(KaApplicationConstants::awsS3PreviewListBucketName(), u"strata-prd-ka-preview-list"_s);
  EXPECT_EQ(defaults.string(u"awsS3PreviewListBucketName"_s), u"strata-prd-Ka-S3AccessLog"_s);
  EXPECT_EQ(KaApplicationConstants::awsS3AccelerateHostName(), u"s3-accelerate.amazonaws.com"_s);
  EXPECT_EQ(KaApplicationConstants::awsStsHostName(), u"sts.amazonaws.com"_s);
  EXPECT_EQ(KaApplicationConstants::awsLogsHostName(), u"logs.eu-west-1.amazonaws.com"_s);
  EXPECT_EQ(KaApplicationConstants::awsRegion(), u"eu-west-1"_s);
  EXPECT_FALSE(KaApplicationConstants::awsS3PathStyle());
}

struct Region : testing::TestWithParam<std::tuple<const char *, const char *, const char *, const char *>> {};

TEST_P(Region, isInTheHostsThatNobodyNamed) {
  const auto &[region, pathStyle, storageHost, logsHost] = GetParam();
  const TestProfile profile;
  profile.writeUserDefaults(
      {{u"awsRegion"_s, QString::fromLatin1(region)}, {u"awsS3PathStyle"_s, QString::fromLatin1(pathStyle)}});
  EXPECT_EQ(KaApplicationConstants::awsS3AccelerateHostName(), QLatin1StringView(storageHost));
  EXPECT_EQ(KaApplicationConstants::awsLogsHostName(), QLatin1StringView(logsHost));
}

INSTANTIATE_TEST_SUITE_P(
    Told, Region,
    testing::Values(std::tuple(" ", "", "s3-accelerate.amazonaws.com", "logs.eu-west-1.amazonaws.com"),
                    std::tuple("us-west-2 ", "false", "s3-accelerate.amazonaws.com", "logs.us-west-2.amazonaws.com"),
                    std::tuple("us-west-2", "true", "s3.us-west-2.amazonaws.com", "logs.us-west-2.amazonaws.com")));

TEST(Loopback, isKnownByItsNamesAndNumbersAlone) {
  for (const QString &host : {u"localhost"_s, u"LocalHost.:1"_s, u"api.localhost:8443"_s, u"127.0.0.1"_s,
                              u"127.255.3.4:80"_s, u"::1"_s, u"[::1]:443"_s})
    EXPECT_TRUE(isLoopbackHost(host)) << host.toStdString();
  for (const QString &host : {u""_s, u"localhost.example"_s, u"notlocalhost"_s, u"127.0.0.example"_s, u"127.0.0.256"_s,
                              u"128.0.0.1"_s, u"[::2]:443"_s, u"api.norvale.example:443"_s})
    EXPECT_FALSE(isLoopbackHost(host)) << host.toStdString();
}

TEST(Loopback, servesWhenOneHostOfTheServiceIsThere) {
  const TestProfile profile({{u"awsStsHostName"_s, u"sts.localhost:1"_s}});
  EXPECT_TRUE(isServiceOnLoopback());
}

TEST(Loopback, isNotWhereTheServiceIsByItself) {
  const TestProfile profile;
  EXPECT_FALSE(isServiceOnLoopback());
}

} // namespace
