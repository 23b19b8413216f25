#include "sandbox/DistantLine.h"
#include "sandbox/Library.h"
#include "sandbox/OpenSsl.h"
#include "sandbox/Service.h"
#include "tests/support/TestProfile.h"

#include <QDir>

#include <curl/curl.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <ctime>
#include <future>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace sandbox;
using Clock = std::chrono::steady_clock;
using testing::AnyOf;

namespace {

using HeaderLine = std::unique_ptr<curl_slist, ReleasedBy<&curl_slist_free_all>>;

/// A client that keeps its connection.
class Client {
public:
  struct Got {
    CURLcode result = CURLE_OK;
    Clock::duration took{};
    qsizetype size = 0;
    long newConnections = 0;
  };
  explicit Client(const Service &service) : anchors(service.trustAnchorsFile().toUtf8()) {
    curl_easy_setopt(easy.get(), CURLOPT_CAINFO, anchors.constData());
    curl_easy_setopt(easy.get(), CURLOPT_TIMEOUT, 20L); // less than the service waits for a kept connection
    curl_easy_setopt(
        easy.get(), CURLOPT_WRITEFUNCTION, +[](char *, size_t size, size_t count, void *) { return size * count; });
  }
  template <class T> void set(CURLoption option, T value) { curl_easy_setopt(easy.get(), option, value); }
  Got get(const QByteArray &url) {
    Got got;
    const auto begun = Clock::now();
    set(CURLOPT_URL, url.constData());
    got.result = curl_easy_perform(easy.get());
    got.took = Clock::now() - begun;
    curl_off_t size = 0;
    curl_easy_getinfo(easy.get(), CURLINFO_SIZE_DOWNLOAD_T, &size);
    curl_easy_getinfo(easy.get(), CURLINFO_NUM_CONNECTS, &got.newConnections);
    got.size = size;
    return got;
  }

private:
  const QByteArray anchors;
  const std::unique_ptr<CURL, ReleasedBy<&curl_easy_cleanup>> easy{curl_easy_init()};
};

struct Distant : testing::Test {
  explicit Distant(const ServiceOptions &options = {.roundTrip = 40ms}) : service(options) {}

  /// Of the storage. What it answers is of no interest here: it knows no such key.
  [[nodiscard]] QByteArray stored() const { return at("bucket.s3"); }
  [[nodiscard]] QByteArray at(const QByteArray &host) const {
    return "https://" + host + ".localhost:" + QByteArray::number(service.port()) + "/x";
  }
  void orderBody(qsizetype size, Fault::Kind kind = Fault::Kind::Body) {
    service.order(Endpoint::Other, {.kind = kind, .body = QByteArray(size, 'x')});
  }

  Service service;
  Client client{service};
};

TEST_F(Distant, costsThreeRoundTripsAtFirstAndOneOnAKeptConnection) {
  auto least = [this] {
    auto shortest = Clock::duration::max();
    for (int time = 0; time < 5; ++time)
      shortest = std::min(shortest, client.get(stored()).took);
    return shortest;
  };
  EXPECT_GE(client.get(stored()).took, 120ms);
  const auto kept = least();
  EXPECT_GE(kept, 40ms);
  EXPECT_LT(kept, 80ms);
  client.set(CURLOPT_FRESH_CONNECT, 1L);
  const auto fresh = least();
  EXPECT_GE(fresh, 120ms);
  EXPECT_LT(fresh, 160ms);
  EXPECT_EQ(service.connectionCount(), 6);
}

struct Narrow : Distant {
  static constexpr qsizetype kBody = 100'000;
  Narrow() : Distant({.bytesPerSecond = 2 * kBody}) {}
};

TEST_F(Narrow, sharesItsRate) {
  orderBody(kBody);
  EXPECT_GE(client.get(at("www")).took, 450ms);
  const HeaderLine type(curl_slist_append(nullptr, "Content-Type: text/plain"));
  client.set(CURLOPT_HTTPHEADER, type.get());
  const QByteArray body(kBody, 'x');
  client.set(CURLOPT_POSTFIELDSIZE, long(body.size()));
  client.set(CURLOPT_POSTFIELDS, body.constData());
  EXPECT_GE(client.get(at("www")).took, 450ms) << "upwards, too";

  orderBody(kBody);
  orderBody(kBody);
  const auto load = [this] { return Client(service).get(at("www")).took; };
  const auto one = std::async(std::launch::async, load);
  const auto begun = Clock::now();
  const auto other = std::async(std::launch::async, load);
  ASSERT_TRUE(service.waitForRequests(Endpoint::Other, 4, 20s));
  EXPECT_EQ(Client(service).get(at("idp")).result, CURLE_OK);
  EXPECT_TRUE(one.wait_for(0s) == other.wait_for(0s) && one.wait_for(0s) == std::future_status::timeout)
      << "a small one must not wait for the large ones";
  other.wait();
  one.wait();
  EXPECT_GE(Clock::now() - begun, 900ms);
}

struct Near : Distant {
  Near() : Distant(ServiceOptions{}) {}
};

TEST_F(Near, tellsHowItsStorageWasConnectedTo) {
  client.get(at("api"));
  EXPECT_EQ(service.connectionCount(), 0);
  EXPECT_EQ(client.get(stored()).newConnections, 1);
  EXPECT_EQ(client.get(stored()).newConnections, 0);
  EXPECT_EQ(service.connectionCount(), 1);
  EXPECT_EQ(service.resumedConnectionCount(), 0);
  service.closeIdleConnections();
  EXPECT_EQ(client.get(stored()).result, CURLE_OK);
  EXPECT_EQ(service.connectionCount(), 2);
  EXPECT_EQ(service.resumedConnectionCount(), 1);

  service.order(Endpoint::ObjectGet, {.kind = Fault::Kind::Delay, .delay = 200ms});
  auto answer = std::async(std::launch::async, [this] { return client.get(stored()); });
  ASSERT_TRUE(service.waitForRequests(Endpoint::ObjectGet, 4, 20s));
  service.closeIdleConnections();
  EXPECT_EQ(answer.get().result, CURLE_OK) << "in mid-answer";
  // The client has the answer before the service is through with it.
  EXPECT_TRUE(waitFor([this] { return client.get(stored()).newConnections == 1; }));

  service.resetRequestCounts();
  EXPECT_EQ(service.connectionCount(), 0);
  client.get(stored());
  EXPECT_EQ(service.connectionCount(), 1) << "one kept from before";
  EXPECT_EQ(service.resumedConnectionCount(), 1);
}

/// A line with a socket at either end.
struct Line : testing::Test {
  explicit Line(const Distance &distance = {.roundTrip = 40ms}) : line(0, distance) {
    socklen_t size = sizeof address;
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(::bind(listener, general(), size), 0);
    ::listen(listener, 1);
    ::getsockname(listener, general(), &size);
    line.start(ntohs(address.sin_port));
    address.sin_port = htons(line.port());
    EXPECT_EQ(::connect(ends[0], general(), size), 0);
    ends[1] = ::accept(listener, nullptr, nullptr);
  }
  ~Line() override {
    for (const int each : {listener, ends[0], ends[1]})
      ::close(each);
  }
  sockaddr *general() { return reinterpret_cast<sockaddr *>(&address); }

  DistantLine line;
  sockaddr_in address{};
  const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  int ends[2] = {::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), -1};
};

TEST_F(Line, carriesEndsAndResetsAndRestsInBetween) {
  char byte = 'x';
  ::send(ends[0], &byte, 1, 0);
  ASSERT_EQ(::recv(ends[1], &byte, 1, 0), 1);
  const std::clock_t before = std::clock();
  pollfd watched{ends[1], POLLIN, 0};
  ASSERT_EQ(::poll(&watched, 1, 300), 0);
  EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 50) << "processor time of an idle line";

  const auto begun = Clock::now();
  ::shutdown(ends[0], SHUT_WR);
  EXPECT_EQ(::recv(ends[1], &byte, 1, 0), 0);
  EXPECT_GE(Clock::now() - begun, 20ms);
  ::send(ends[1], &byte, 1, 0);
  const linger atOnce{1, 0};
  ::setsockopt(ends[1], SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  ::close(std::exchange(ends[1], -1));
  EXPECT_EQ(::recv(ends[0], &byte, 1, 0), 1) << "sent before the reset";
  EXPECT_EQ(::recv(ends[0], &byte, 1, 0), -1);
  EXPECT_EQ(errno, ECONNRESET);
}

TEST_F(Line, tellsTheServerOfAClientThatIsGone) {
  ::close(std::exchange(ends[0], -1));
  char byte = 'x';
  EXPECT_EQ(::recv(ends[1], &byte, 1, 0), 0);
  ::send(ends[1], &byte, 1, 0);
  pollfd watched{ends[1], 0, 0};
  EXPECT_EQ(::poll(&watched, 1, 20'000), 1);
  EXPECT_TRUE(watched.revents & POLLERR);
}

struct FastLine : Line {
  FastLine() : Line({.roundTrip = 2ms, .bytesPerSecond = 400'000'000}) {}
};

TEST_F(FastLine, holdsBackWhoSendsToAReaderThatSleepsAndLosesNothing) {
  QByteArray sent;
  for (quint32 number = 0; number < 1'000'000; ++number)
    sent.append(reinterpret_cast<const char *>(&number), sizeof number);
  sent = sent.repeated(20);
  qsizetype taken = 0;
  pollfd watched{ends[0], POLLOUT, 0};
  while (taken < sent.size() && ::poll(&watched, 1, 300) == 1)
    taken += std::max<ssize_t>(0, ::send(ends[0], sent.constData() + taken, sent.size() - taken, MSG_DONTWAIT));
  EXPECT_LT(taken, 40'000'000) << "the line holds more than the system's own buffers";
  ::shutdown(ends[0], SHUT_WR);
  QByteArray got(sent.size(), '\0');
  qsizetype size = 0;
  for (ssize_t count = 1; count > 0; size += std::max<ssize_t>(0, count))
    count = ::recv(ends[1], got.data() + size, got.size() - size, 0);
  EXPECT_TRUE(got.left(size) == sent.left(taken));
}

} // namespace
