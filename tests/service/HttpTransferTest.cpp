#include "service/HttpTransfer.h"

#include "service/TrustAnchors.h"
#include "tests/service/ServiceFixture.h"

#include <curl/curl.h>
#include <openssl/pem.h>

#include <cstdio>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;
using Clock = std::chrono::steady_clock;

namespace {

struct Transfer : ServiceTest {
  HttpRequest asked = {.url = url(u"api"_s, u"/configuration"_s)};
  std::atomic<bool> end = false;
  HttpTransfer transfer{&end};
};

TEST_F(Transfer, sendsWhatItIsGivenAndNothingElse) {
  for (const char *variable : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"})
    qputenv(variable, "http://127.0.0.1:1");
  const QByteArray body(2'000'000, ' '); // long enough to ask for leave to send
  const QString target = u"/a b/写%2f%20+/../b/./c//{b}|\"<>^`\\'();,@&=$!~*?x=é\ty\x7f"_s;
  asked = {"POST", url(u"www"_s, target), {{"Content-Type", "text/plain"}}, body};
  EXPECT_EQ(transfer.perform(asked).outcome, TransportOutcome::Answered);
  const sandbox::RequestRecord sent = service.requests().value(0);
  EXPECT_EQ(sent.method, "POST");
  EXPECT_EQ(sent.target, "/a%20b/%E5%86%99%2f%20+/../b/./c//{b}|\"<>^`\\'();,@&=$!~*?x=%C3%A9%09y%7F");
  EXPECT_EQ(sent.body, body);
  EXPECT_EQ(sent.header("content-type"), "text/plain");
  EXPECT_EQ(sent.header("connection"), "close");
  EXPECT_EQ(sent.headers.size(), 5) << "host, accept, content-type, content-length, connection";
}

TEST_F(Transfer, refusesAHeaderThatWouldBecomeTwoAndUrlsOfOtherSchemes) {
  asked.headers = {{"userid", "a\r\nx-more: b"}};
  EXPECT_EQ(transfer.perform(asked).outcome, TransportOutcome::Failed);
  EXPECT_TRUE(service.requests().isEmpty());
  EXPECT_EQ(transfer.perform({.url = u"file:///etc/passwd"_s}).bodySize, 0);
  asked.headers = {};
  EXPECT_EQ(transfer.perform(asked).status, 200) << "a refused exchange must not spoil the next";
}

TEST_F(Transfer, boundsABodyKeptInMemory) {
  constexpr int kLimit = 64 * 1024 * 1024;
  for (const int size : {kLimit, kLimit + 1}) {
    service.order(Endpoint::Configuration, {.kind = Fault::Kind::Body, .body = QByteArray(size, 'x')});
    EXPECT_EQ(transfer.perform(asked).body.size(), size == kLimit ? kLimit : 0);
  }
}

TEST_F(Transfer, givesUpAtItsLimits) {
  const std::tuple<Fault::Kind, QString, QString, std::chrono::milliseconds, TransportOutcome> limits[] = {
      {Fault::Kind::SlowBody, u"0.2"_s, u"60"_s, 600s, TransportOutcome::Failed},
      {Fault::Kind::SlowBody, u"60"_s, u"0.2"_s, 600s, TransportOutcome::Failed},
      {Fault::Kind::NoAnswer, u"60"_s, u"60"_s, 200ms, TransportOutcome::WaitRanOut},
  };
  for (const auto &[fault, idle, whole, wait, outcome] : limits) {
    platform::standardUserDefaults().setString(u"timeoutIntervalForRequest"_s, idle);
    platform::standardUserDefaults().setString(u"timeoutIntervalForResource"_s, whole);
    service.order(Endpoint::Configuration, {.kind = fault});
    asked.wait = wait;
    const auto start = Clock::now();
    EXPECT_EQ(HttpTransfer(nullptr).perform(asked).outcome, outcome);
    EXPECT_GE(Clock::now() - start, 200ms);
    EXPECT_LT(Clock::now() - start, 5s);
  }
}

TEST_F(Transfer, endsAtOnceWhenCancelledAndForGoodOnceTheEndFlagIsSet) {
  transfer.cancel(); // nothing is under way: nothing happens
  for (const bool forGood : {false, true}) {
    service.resetRequestCounts();
    service.order(Endpoint::Configuration, {.kind = Fault::Kind::NoAnswer});
    Clock::time_point cancelled;
    std::thread other([&] {
      EXPECT_TRUE(service.waitForRequests(Endpoint::Configuration, 1, 20s));
      std::this_thread::sleep_for(1500ms); // past libcurl's own timers, so that nothing else wakes the wait
      end = forGood;
      cancelled = Clock::now();
      transfer.cancel();
    });
    EXPECT_EQ(transfer.perform(asked).outcome, TransportOutcome::Failed);
    const auto ended = Clock::now();
    other.join();
    EXPECT_LT(ended - cancelled, 1s);
    EXPECT_EQ(transfer.perform(asked).status, forGood ? 0 : 200);
    EXPECT_EQ(service.requestCount(Endpoint::Configuration), forGood ? 1 : 2);
  }
}

TEST(TrustAnchors, holdThoseOfTheSystem) {
  std::FILE *const bundle = std::fopen(curl_version_info(CURLVERSION_NOW)->cainfo, "r");
  if (!bundle) GTEST_SKIP() << "this system has no certificate authorities";
  X509 *const anchor = PEM_read_X509(bundle, nullptr, nullptr, nullptr);
  SSL_CTX *const context = SSL_CTX_new(TLS_client_method());
  X509_STORE_CTX *const run = X509_STORE_CTX_new();
  EXPECT_TRUE(TrustAnchors(u"/nowhere.pem"_s).installInto(context));
  EXPECT_EQ(X509_STORE_CTX_init(run, SSL_CTX_get_cert_store(context), anchor, nullptr), 1);
  X509_STORE_CTX_set_flags(run, X509_V_FLAG_NO_CHECK_TIME); // the system's anchors outlive their dates
  EXPECT_EQ(X509_verify_cert(run), 1);
  X509_STORE_CTX_free(run);
  SSL_CTX_free(context);
  X509_free(anchor);
  EXPECT_EQ(std::fclose(bundle), 0);
}

} // namespace
