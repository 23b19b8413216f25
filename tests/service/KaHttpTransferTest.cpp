#include "service/KaHttpTransfer.h"

#include "platform/ReleasedBy.h"
#include "sandbox/OpenSsl.h"
#include "service/KaKeptConnections.h"
#include "service/KaTransport.h"
#include "service/SaveOrder.h"
#include "tests/service/ServiceFixture.h"

#include <curl/curl.h>

#include <atomic>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using platform::ReleasedBy;
using sandbox::Endpoint;
using sandbox::Fault;
using Clock = std::chrono::steady_clock;

namespace {

using enum TransportOutcome;

struct Transfer : ServiceTest {
  HttpRequest asked = {.url = url(u"api"_s, u"/configuration"_s)};
  std::atomic<bool> end = false;
  const std::shared_ptr<KaTransport> transport = std::make_shared<KaTransport>();
  KaHttpTransfer transfer{transport};
};

TEST_F(Transfer, sendsWhatItIsGivenAndNothingElse) {
  for (const char *variable : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"})
    qputenv(variable, "http://127.0.0.1:1");
  const QByteArray body(2'000'000, ' '); // long enough to ask for leave to send
  const QString target = u"/a b/写%2f%20+/../b/./c//{b}|\"<>^`\\'();,@&=$!~*?x=é\ty\x7f"_s;
  asked = {"POST", url(u"www"_s, target), {{"Content-Type", "text/plain"}}, body};
  EXPECT_EQ(transfer.perform(asked).outcome, Answered);
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
  EXPECT_EQ(transfer.perform(asked).outcome, Failed);
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

TEST_F(Transfer, takesNoBodyWhoseEndOrCodingIsNotWhatItAskedFor) {
  const QByteArray right = transfer.perform(asked).body;
  const std::pair<Fault::Kind, TransportOutcome> deliveries[] = {{Fault::Kind::Interim, Answered},
                                                                 {Fault::Kind::Uncounted, Answered},
                                                                 {Fault::Kind::UncountedCut, Failed},
                                                                 {Fault::Kind::Deflated, Failed},
                                                                 {Fault::Kind::DeflatedChunks, Failed}};
  for (const auto &[kind, outcome] : deliveries) {
    for (const Endpoint endpoint : {Endpoint::Configuration, Endpoint::ObjectGet})
      service.order(endpoint, {.kind = kind});
    const HttpAnswer answer = transfer.perform(asked);
    EXPECT_EQ(answer.outcome, outcome);
    EXPECT_EQ(answer.body, outcome == Answered ? right : QByteArray());
    for (const auto &[name, value] : answer.headers)
      EXPECT_NE(name, "x-interim") << "of another answer";
    const SavedObject saved =
        request.getAwsS3Object(presigned(imageKey), by, {picture(u"default.JPG"_s), image.body.size()});
    EXPECT_EQ(saved.result, outcome == Answered ? KaResultCode::Success : KaResultCode::NoHttpStatus);
    EXPECT_EQ(contentOf(saved.outputFilePath), outcome == Answered ? image.body : QByteArray());
    EXPECT_EQ(QFile::remove(saved.outputFilePath), outcome == Answered);
    EXPECT_EQ(savedFiles(), QStringList());
  }
}

TEST_F(Transfer, refusesBadCertificates) {
  using enum sandbox::BadCertificate;
  for (const auto kind : {UnknownAuthority, WrongName, Expired}) {
    const QString bad = u"https://sts.localhost:%1/"_s.arg(service.badlyCertifiedPort(kind));
    EXPECT_EQ(transfer.perform({.url = bad}).outcome, SecureConnectionFailed);
    EXPECT_EQ(request.getAwsPreviewlList(bad, by, {}).result, KaResultCode::NoHttpStatus);
  }
  const QHash<QString, QString> towards = service.userDefaults(service.badlyCertifiedPort(Expired));
  platform::standardUserDefaults().setString(u"strataHostName"_s, towards[u"strataHostName"_s]);
  EXPECT_EQ(request.getKaAppId().result, KaResultCode::SecureConnectionFailed);
  EXPECT_TRUE(service.requests().isEmpty());
}

TEST_F(Transfer, givesUpAtItsLimits) {
  const std::tuple<Fault::Kind, QString, QString, std::chrono::milliseconds, TransportOutcome> limits[] = {
      {Fault::Kind::SlowBody, u"0.2"_s, u"60"_s, 600s, Failed},
      {Fault::Kind::SlowBody, u"60"_s, u"0.2"_s, 600s, Failed},
      {Fault::Kind::NoAnswer, u"60"_s, u"60"_s, 200ms, WaitRanOut},
  };
  for (const auto &[fault, idle, whole, wait, outcome] : limits) {
    platform::standardUserDefaults().setString(u"timeoutIntervalForRequest"_s, idle);
    platform::standardUserDefaults().setString(u"timeoutIntervalForResource"_s, whole);
    service.order(Endpoint::Configuration, {.kind = fault});
    asked.wait = wait;
    const auto start = Clock::now();
    EXPECT_EQ(KaHttpTransfer(std::make_shared<KaTransport>()).perform(asked).outcome, outcome);
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
    const auto shallEnd = [this] { return end.load(); };
    EXPECT_EQ(transfer.perform(asked, {}, shallEnd).outcome, Failed);
    const auto ended = Clock::now();
    other.join();
    EXPECT_LT(ended - cancelled, 1s);
    EXPECT_EQ(transfer.perform(asked, {}, shallEnd).status, forGood ? 0 : 200);
    EXPECT_EQ(service.requestCount(Endpoint::Configuration), forGood ? 1 : 2);
  }
}

TEST(KaHttpTransfer, writesNoSessionKeysIntoAFileThatTheEnvironmentNames) {
  const TestProfile profile;
  const QString keys = profile.path(u"keys"_s);
  qputenv("SSLKEYLOGFILE", keys.toUtf8()); // libcurl reads it once, before its first exchange
  sandbox::Service service;
  profile.writeUserDefaults(service.userDefaults());
  const QString url = u"https://api.localhost:%1/configuration"_s.arg(service.port());
  EXPECT_EQ(KaHttpTransfer(std::make_shared<KaTransport>()).perform({.url = url}).status, 200);
  EXPECT_EQ(contentOf(keys), "");
}

TEST(KaTrustAnchors, holdThoseOfTheSystem) {
  const sandbox::Bio bundle(BIO_new_file(curl_version_info(CURLVERSION_NOW)->cainfo, "r"));
  if (!bundle) GTEST_SKIP() << "this system has no certificate authorities";
  const sandbox::Certificate anchor(PEM_read_bio_X509(bundle.get(), nullptr, nullptr, nullptr));
  const std::unique_ptr<SSL_CTX, ReleasedBy<&SSL_CTX_free>> context(SSL_CTX_new(TLS_client_method()));
  const std::unique_ptr<X509_STORE_CTX, ReleasedBy<&X509_STORE_CTX_free>> run(X509_STORE_CTX_new());
  EXPECT_TRUE(KaTrustAnchors(u"/nowhere.pem"_s).installInto(context.get()));
  EXPECT_EQ(X509_STORE_CTX_init(run.get(), SSL_CTX_get_cert_store(context.get()), anchor.get(), nullptr), 1);
  X509_STORE_CTX_set_flags(run.get(), X509_V_FLAG_NO_CHECK_TIME); // the system's anchors outlive their dates
  EXPECT_EQ(X509_verify_cert(run.get()), 1);
}

/// An object of the storage, asked for on connections that are kept.
struct Kept : ServiceTest {
  Kept() : ServiceTest({.requestsPerConnection = 100}) {}

  HttpRequest asked = {.url = presigned(imageKey), .headers = {{"x-amz-security-token", issued.sessionToken.toUtf8()}}};
  KaKeptConnections kept{impatient()};

  static std::shared_ptr<KaTransport> impatient() {
    platform::standardUserDefaults().setString(u"timeoutIntervalForRequest"_s, QString::number(0.5 * kSlowness));
    return std::make_shared<KaTransport>();
  }
};

TEST_F(Kept, goesFromOneExchangeToTheNext) {
  for (int count = 0; count < 3; ++count)
    EXPECT_EQ(kept.perform(asked).body, image.body);
  EXPECT_EQ(service.connectionCount(), 1);
  EXPECT_TRUE(service.requests().value(0).header("connection").isEmpty());
  kept.drop();
  EXPECT_EQ(kept.perform(asked).status, 200);
  EXPECT_EQ(service.connectionCount(), 2);
  EXPECT_EQ(service.resumedConnectionCount(), 1);
}

TEST_F(Kept, triesAFreshOneWhereItFindsItDeadOrSilentBeforeTheAnswerAlone) {
  using enum Fault::Kind;
  struct Case {
    const char *name;
    Fault fault;
    TransportOutcome first; ///< on a fresh connection
    TransportOutcome later; ///< on a kept one
  };
  for (const auto &[name, fault, first, later] :
       {Case{"dropped", {.kind = DroppedConnection}, Failed, Answered},
        Case{"silent", {.kind = NoAnswer}, Failed, Answered},
        Case{"cut in the body", {.kind = TruncatedBody}, Failed, Failed},
        Case{"refused", {.kind = Fault::Kind::Status, .status = 503}, Answered, Answered}}) {
    SCOPED_TRACE(name);
    for (const bool isKept : {false, true}) {
      kept.drop();
      ASSERT_TRUE(!isKept || kept.perform(asked).outcome == Answered);
      service.order(Endpoint::ObjectGet, fault);
      service.resetRequestCounts();
      EXPECT_EQ(kept.perform(asked).outcome, isKept ? later : first);
      const bool isRepeated = isKept && first != later;
      EXPECT_EQ(service.requestCount(Endpoint::ObjectGet), isRepeated ? 2 : 1);
      service.clearFaults();
    }
  }
  ASSERT_EQ(kept.perform(asked).outcome, Answered);
  service.closeIdleConnections();
  EXPECT_EQ(kept.perform(asked).outcome, Answered);
}

TEST_F(Kept, believesTheGoodbyeOfItsOwnConnectionAlone) {
  // The first one says goodbye while it rests; what is cut on the next has no end all the same.
  ASSERT_EQ(kept.perform(asked).outcome, Answered);
  service.closeIdleConnections();
  service.order(Endpoint::ObjectGet, {.kind = Fault::Kind::UncountedCut});
  EXPECT_EQ(kept.perform(asked).outcome, Failed);
  service.order(Endpoint::ObjectGet, {.kind = Fault::Kind::Uncounted});
  EXPECT_EQ(kept.perform(asked).outcome, Answered);
}

} // namespace
