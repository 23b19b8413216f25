#include "service/HttpTransfer.h"

#include "tests/service/ServiceFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

/// Far below every limit of the transport, far above what ending at once takes on a busy machine.
constexpr auto kAtOnce = 5s;

class Transfer : public ServiceTest {
protected:
  [[nodiscard]] HttpRequest anyRequest() const { return {.url = url(u"api"_s, u"/configuration"_s)}; }

  [[nodiscard]] std::chrono::steady_clock::duration elapsed() const { return std::chrono::steady_clock::now() - start; }

  const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

TEST_F(Transfer, bringsStatusHeadersAndBody) {
  HttpTransfer transfer(nullptr);
  const KaCredential by = credential();
  HttpRequest request = {.url = presigned(by, imageKey),
                         .headers = {{"x-amz-security-token", by.sessionToken.toUtf8()}}};
  const HttpAnswer answer = transfer.perform(request);
  EXPECT_EQ(answer.outcome, TransportOutcome::Answered);
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.body, image.body);
  EXPECT_EQ(answer.bodySize, image.body.size());
  EXPECT_EQ(answer.contentLength, image.body.size());
  EXPECT_NE(std::ranges::find(answer.headers,
                              std::pair<QByteArray, QByteArray>("x-amz-meta-file-name", *image.fileNameMetadata)),
            answer.headers.end());
}

TEST_F(Transfer, encodesOnlyWhatHttpCannotCarry) {
  HttpTransfer transfer(nullptr);
  const std::pair<QString, QByteArray> cases[] = {
      {u"/a b/写.JPG?x=é y"_s, "/a%20b/%E5%86%99.JPG?x=%C3%A9%20y"},
      {u"/already%20encoded%2fas?it=%2B+stands"_s, "/already%20encoded%2fas?it=%2B+stands"},
      {u"/a/../b/./c//d"_s, "/a/../b/./c//d"},
      {u"/[a]{b}|\"<>^`\\'();,@&=$!~*"_s, "/[a]{b}|\"<>^`\\'();,@&=$!~*"},
      {u"/bare?"_s, "/bare?"},
      {u"/tab\tand\x7f"_s, "/tab%09and%7F"},
      {u""_s, "/"},
  };
  for (const auto &[target, expected] : cases) {
    EXPECT_EQ(transfer.perform({.url = url(u"www"_s, target)}).outcome, TransportOutcome::Answered);
    ASSERT_FALSE(service.requests().isEmpty());
    EXPECT_EQ(service.requests().constLast().target, expected);
  }
}

TEST_F(Transfer, sendsTheBodyAndHeadersAsGiven) {
  HttpTransfer transfer(nullptr);
  const QByteArray body = "{\"text\":\"写\"}" + QByteArray(2'000'000, ' '); // long enough to ask for leave to send
  const HttpAnswer answer = transfer.perform({.method = "POST",
                                              .url = url(u"www"_s, u"/there"_s),
                                              .headers = {{"content-type", "application/json"}},
                                              .body = body});
  EXPECT_EQ(answer.outcome, TransportOutcome::Answered);
  const sandbox::RequestRecord sent = service.requests().constLast();
  EXPECT_EQ(sent.method, "POST");
  EXPECT_EQ(sent.body, body);
  EXPECT_EQ(sent.header("content-type"), "application/json");
  QByteArrayList names;
  for (const auto &[name, value] : sent.headers)
    names << name.toLower();
  for (const char *unwanted : {"expect", "cookie", "user-agent", "accept-encoding", "authorization"})
    EXPECT_FALSE(names.contains(unwanted)) << unwanted;
}

TEST_F(Transfer, refusesAHeaderThatWouldBecomeTwo) {
  HttpTransfer transfer(nullptr);
  HttpRequest request = anyRequest();
  request.headers = {{"userid", "a\r\nx-more: b"}};
  EXPECT_EQ(transfer.perform(request).outcome, TransportOutcome::Failed);
  EXPECT_EQ(service.requestCount(Endpoint::Configuration), 0);
}

TEST_F(Transfer, speaksNothingButHttps) {
  HttpTransfer transfer(nullptr);
  for (const char *scheme : {"http", "file", "ftp"})
    EXPECT_EQ(transfer.perform({.url = QString::fromLatin1(scheme) + u"://localhost/etc/passwd"_s}).outcome,
              TransportOutcome::Failed);
}

TEST_F(Transfer, ignoresProxiesOfTheEnvironment) {
  for (const char *variable : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"})
    qputenv(variable, "http://127.0.0.1:1");
  HttpTransfer transfer(nullptr);
  EXPECT_EQ(transfer.perform(anyRequest()).outcome, TransportOutcome::Answered);
}

TEST_F(Transfer, takesARedirectForAnAnswer) {
  HttpTransfer transfer(nullptr);
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::Status, .status = 302});
  EXPECT_EQ(transfer.perform(anyRequest()).status, 302);
}

TEST_F(Transfer, handsABodyToTheSinkOnlyWithA200) {
  HttpTransfer transfer(nullptr);
  QByteArray taken;
  const auto sink = [&taken](const char *bytes, std::size_t count) {
    taken.append(bytes, static_cast<qsizetype>(count));
    return true;
  };
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::Body, .status = 404, .body = "missing"});
  const HttpAnswer missing = transfer.perform(anyRequest(), sink);
  EXPECT_EQ(missing.body, "missing");
  EXPECT_EQ(taken, "");

  service.order(Endpoint::Configuration, {.kind = Fault::Kind::Body, .body = "found"});
  const HttpAnswer found = transfer.perform(anyRequest(), sink);
  EXPECT_EQ(found.body, "");
  EXPECT_EQ(found.bodySize, 5);
  EXPECT_EQ(taken, "found");
}

TEST_F(Transfer, endsWhenTheSinkRefuses) {
  HttpTransfer transfer(nullptr);
  const HttpAnswer answer = transfer.perform(anyRequest(), [](const char *, std::size_t) { return false; });
  EXPECT_EQ(answer.outcome, TransportOutcome::Failed);
  EXPECT_TRUE(answer.sinkRefused);
  EXPECT_EQ(answer.status, 0);
}

TEST_F(Transfer, boundsABodyKeptInMemory) {
  constexpr int kLimit = 64 * 1024 * 1024;
  HttpTransfer transfer(nullptr);
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::Body, .body = QByteArray(kLimit, 'x')});
  EXPECT_EQ(transfer.perform(anyRequest()).body.size(), kLimit);
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::Body, .body = QByteArray(kLimit + 1, 'x')});
  const HttpAnswer answer = transfer.perform(anyRequest());
  EXPECT_EQ(answer.outcome, TransportOutcome::Failed);
  EXPECT_TRUE(answer.body.isEmpty());
}

struct Certificate {
  const char *name;
  sandbox::BadCertificate kind;
};

class BadCertificates : public Transfer, public testing::WithParamInterface<Certificate> {};

TEST_P(BadCertificates, endTheConnection) {
  const quint16 port = service.badlyCertifiedPort(GetParam().kind);
  HttpTransfer transfer(nullptr);
  EXPECT_EQ(transfer.perform({.url = u"https://api.localhost:%1/configuration"_s.arg(port)}).outcome,
            TransportOutcome::SecureConnectionFailed);
  EXPECT_EQ(service.requestCount(Endpoint::Configuration), 0);
}

INSTANTIATE_TEST_SUITE_P(Service, BadCertificates,
                         testing::Values(Certificate{"unknownAuthority", sandbox::BadCertificate::UnknownAuthority},
                                         Certificate{"wrongName", sandbox::BadCertificate::WrongName},
                                         Certificate{"expired", sandbox::BadCertificate::Expired}),
                         [](const auto &row) { return row.param.name; });

TEST_F(Transfer, trustsNobodyForAFileThatIsNotThere) {
  addUserDefaults({{u"trustedCertificatesFile"_s, profile.path(u"nowhere.pem"_s)}});
  HttpTransfer transfer(nullptr);
  EXPECT_EQ(transfer.perform(anyRequest()).outcome, TransportOutcome::SecureConnectionFailed);
}

TEST_F(Transfer, givesUpOnSilence) {
  addUserDefaults({{u"timeoutIntervalForRequest"_s, u"0.2"_s}});
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::NoAnswer});
  HttpTransfer transfer(nullptr);
  const HttpAnswer answer = transfer.perform(anyRequest());
  EXPECT_EQ(answer.outcome, TransportOutcome::Failed);
  EXPECT_GE(elapsed(), 200ms);
  EXPECT_LT(elapsed(), kAtOnce);
}

TEST_F(Transfer, givesUpOnSilenceInMidBody) {
  addUserDefaults({{u"timeoutIntervalForRequest"_s, u"0.2"_s}});
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::SlowBody});
  HttpTransfer transfer(nullptr);
  const HttpAnswer answer = transfer.perform(anyRequest());
  EXPECT_EQ(answer.outcome, TransportOutcome::Failed);
  EXPECT_EQ(answer.status, 0);
  EXPECT_LT(elapsed(), kAtOnce);
}

TEST_F(Transfer, givesUpWhenTheWholeTakesTooLong) {
  addUserDefaults({{u"timeoutIntervalForResource"_s, u"0.3"_s}});
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::SlowBody});
  HttpTransfer transfer(nullptr);
  EXPECT_EQ(transfer.perform(anyRequest()).outcome, TransportOutcome::Failed);
  EXPECT_GE(elapsed(), 300ms);
  EXPECT_LT(elapsed(), kAtOnce);
}

TEST_F(Transfer, tellsWhenTheCallersWaitRanOut) {
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::NoAnswer});
  HttpTransfer transfer(nullptr);
  HttpRequest request = anyRequest();
  request.wait = 200ms;
  EXPECT_EQ(transfer.perform(request).outcome, TransportOutcome::WaitRanOut);
  EXPECT_GE(elapsed(), 200ms);
  EXPECT_LT(elapsed(), kAtOnce);
}

TEST_F(Transfer, waitsForAnAnswerBelowTheLimits) {
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::Delay, .delay = 300ms});
  HttpTransfer transfer(nullptr);
  EXPECT_EQ(transfer.perform(anyRequest()).status, 200);
}

TEST_F(Transfer, isCancelledAtOnceFromAnotherThread) {
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::NoAnswer});
  HttpTransfer transfer(nullptr);
  transfer.cancel(); // nothing is under way: nothing happens
  std::chrono::steady_clock::time_point cancelled;
  std::thread other([&] {
    EXPECT_TRUE(service.waitForRequests(Endpoint::Configuration, 1, 20s));
    std::this_thread::sleep_for(1500ms); // past libcurl's own timers, so that nothing else wakes the wait
    cancelled = std::chrono::steady_clock::now();
    transfer.cancel();
  });
  EXPECT_EQ(transfer.perform(anyRequest()).outcome, TransportOutcome::Failed);
  const auto ended = std::chrono::steady_clock::now();
  other.join();
  EXPECT_LT(ended - cancelled, 1s);
  EXPECT_EQ(transfer.perform(anyRequest()).status, 200) << "a cancel ends one exchange only";
}

TEST_F(Transfer, endsForGoodOnceTheEndFlagIsSet) {
  service.order(Endpoint::Configuration, {.kind = Fault::Kind::NoAnswer});
  std::atomic<bool> end = false;
  HttpTransfer transfer(&end);
  std::thread other([&] {
    EXPECT_TRUE(service.waitForRequests(Endpoint::Configuration, 1, 20s));
    end = true;
    transfer.cancel();
  });
  EXPECT_EQ(transfer.perform(anyRequest()).outcome, TransportOutcome::Failed);
  other.join();
  EXPECT_EQ(transfer.perform(anyRequest()).outcome, TransportOutcome::Failed);
  EXPECT_EQ(service.requestCount(Endpoint::Configuration), 1);
  EXPECT_LT(elapsed(), kAtOnce);
}

} // namespace
