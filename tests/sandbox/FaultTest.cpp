#include "sandbox/Library.h"
#include "tests/sandbox/Curl.h"

#include <gmock/gmock.h>

#include <QElapsedTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace sandbox;

namespace {

struct FaultCase {
  const char *name;
  Fault fault;
  std::vector<int> exitCodes; ///< of the curl program, any of them
  int status = 200;
  const char *patience = "30"; ///< seconds
};

class OrderedFault : public testing::TestWithParam<FaultCase> {};

TEST_P(OrderedFault, meetsOneRequest) {
  Service service;
  service.order(Endpoint::Configuration, GetParam().fault);
  const QString url = urlOf(service, u"api"_s, u"/configuration"_s);
  const CurlAnswer met = curl(service, url, {u"--max-time"_s, QString::fromLatin1(GetParam().patience)});
  EXPECT_THAT(GetParam().exitCodes, testing::Contains(met.exitCode));
  EXPECT_EQ(met.status, GetParam().status);
  const CurlAnswer after = curl(service, url);
  EXPECT_EQ(after.exitCode, 0);
  EXPECT_EQ(after.body, "{\"clientId\":\"sandbox-client\"}");
  EXPECT_EQ(service.requestCount(Endpoint::Configuration), 2);
  EXPECT_EQ(service.requests().first().status, GetParam().status);
}

using enum Fault::Kind;
const std::vector<FaultCase> kFaultCases{
    {"status", {.kind = Status, .status = 503}, {0}, 503},
    {"emptyBody", {.kind = EmptyBody}, {0}},
    {"malformedBody", {.kind = MalformedBody}, {0}},
    {"body", {.kind = Body, .status = 201, .body = "x"}, {0}, 201},
    {"truncatedBody", {.kind = TruncatedBody}, {18, 56}},
    {"droppedConnection", {.kind = DroppedConnection}, {52, 56}, 0},
    {"noAnswer", {.kind = NoAnswer}, {28}, 0, "2"},
    {"slowBody", {.kind = SlowBody}, {28}, 200, "2"},
    {"delay", {.kind = Delay, .delay = 50ms}, {0}},
};

INSTANTIATE_TEST_SUITE_P(Each, OrderedFault, testing::ValuesIn(kFaultCases),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(Faults, meetOnlyTheTargetsTheyName) {
  Service service;
  service.order(Endpoint::Other, {.kind = Status, .status = 502, .times = -1, .pathContains = u"second"_s});
  EXPECT_EQ(curl(service, urlOf(service, u"www"_s, u"/first"_s)).status, 404);
  EXPECT_EQ(curl(service, urlOf(service, u"www"_s, u"/second"_s)).status, 502);
  EXPECT_EQ(curl(service, urlOf(service, u"www"_s, u"/second"_s)).status, 502);
  service.clearFaults();
  EXPECT_EQ(curl(service, urlOf(service, u"www"_s, u"/second"_s)).status, 404);
}

TEST(Faults, letASlowBodyFinishWhenCleared) {
  Service service;
  const QByteArray document(1'000'000, 'x');
  service.library().setSettingsObject(document);
  const TemporaryCredential credential = service.issueCredential();
  service.order(Endpoint::SettingsObject, {.kind = SlowBody});
  const auto process = startCurl(service, service.presignedUrl(credential, contentBucket(), u"conf/settings.json"_s),
                                 {u"-H"_s, u"x-amz-security-token: "_s + credential.sessionToken});
  ASSERT_TRUE(service.waitForRequests(Endpoint::SettingsObject, 1, 20s));
  EXPECT_FALSE(process->waitForFinished(200)) << "the second half came by itself";
  service.clearFaults();
  const CurlAnswer answer = finished(*process);
  EXPECT_EQ(answer.exitCode, 0);
  EXPECT_EQ(answer.body, document);
}

TEST(Faults, neverKeepTheServiceFromEnding) {
  auto service = std::make_unique<Service>();
  service->order(Endpoint::Configuration, {.kind = NoAnswer, .times = 2});
  service->order(Endpoint::Discovery, {.kind = SlowBody});
  std::vector<std::unique_ptr<QProcess>> held;
  held.push_back(startCurl(*service, urlOf(*service, u"api"_s, u"/configuration"_s)));
  held.push_back(startCurl(*service, urlOf(*service, u"api"_s, u"/configuration"_s)));
  held.push_back(startCurl(*service, urlOf(*service, u"idp"_s, u"/.well-known/openid-configuration"_s)));
  ASSERT_TRUE(service->waitForRequests(Endpoint::Configuration, 2, 20s));
  ASSERT_TRUE(service->waitForRequests(Endpoint::Discovery, 1, 20s));
  QElapsedTimer timer;
  timer.start();
  service.reset();
  // Clients give up after a minute at the earliest.
  EXPECT_LT(timer.elapsed(), 10'000);
  for (const auto &process : held)
    EXPECT_NE(finished(*process).exitCode, 0);
}

TEST(BadCertificate, isRefusedByAClientThatTrustsTheAuthority) {
  Service service;
  for (const BadCertificate kind :
       {BadCertificate::UnknownAuthority, BadCertificate::WrongName, BadCertificate::Expired}) {
    const quint16 port = service.badlyCertifiedPort(kind);
    const QString url = u"https://api.localhost:%1/configuration"_s.arg(port);
    EXPECT_EQ(curl(service, url).exitCode, 60) << "CURLE_PEER_FAILED_VERIFICATION";
    EXPECT_EQ(curl(service, url, {u"--insecure"_s}).status, 200) << "nothing but the certificate is wrong";
  }
}

} // namespace
