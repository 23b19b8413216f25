#include "service/KaTransport.h"
#include "tests/service/DeadAddress.h"
#include "tests/service/ServiceFixture.h"
#include "tests/support/Program.h"

#include <arpa/inet.h>
#include <linux/ipv6.h>
#include <net/if.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>

#include <atomic>
#include <cstring>
#include <optional>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using platform::FileDescriptor;
using Clock = std::chrono::steady_clock;

namespace {

using enum TransportOutcome;

bool bringUpLoopback() {
  const FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  ifreq request{};
  std::strcpy(request.ifr_name, "lo");
  request.ifr_flags = IFF_UP;
  return ::ioctl(socket.get(), SIOCSIFFLAGS, &request) == 0;
}

/// One more address of this computer: of IPv4 there are many anyway.
bool addLoopbackAddress(const char *address) {
  const FileDescriptor socket(::socket(AF_INET6, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  in6_ifreq request{};
  ::inet_pton(AF_INET6, address, &request.ifr6_addr);
  request.ifr6_prefixlen = 128;
  request.ifr6_ifindex = int(::if_nametoindex("lo"));
  return ::ioctl(socket.get(), SIOCSIFADDR, &request) == 0;
}

bool hasIPv6() {
  return bool(boundSocket("::1", 0, SOCK_STREAM));
}

/// Makes this process one whose mounts and network nobody else sees. Before it has threads.
struct Apart {
  const bool isApart =
      (::unshare(CLONE_NEWNS | CLONE_NEWNET) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS | CLONE_NEWNET) == 0)
      && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 && bringUpLoopback();
};

/// What a name server makes of questions for addresses of IPv6, or of IPv4 in the last case: none is there, or silence.
enum class Answers { NoIPv6, SilenceForIPv6, NoIPv4 };

/// A name server on 127.0.0.1 that knows every name: it is 127.0.0.1, or ::1. Made once this process is apart.
class NameServer {
public:
  /// @param late  how long an answer takes; absent: there is none.
  explicit NameServer(std::optional<std::chrono::milliseconds> late, Answers kind = Answers::NoIPv6)
      : answers(kind), delay(late), thread([this] { serve(); }) {}
  ~NameServer() { isEnding = true; }

  std::atomic<int> questions = 0;
  std::atomic<Answers> answers;

private:
  void serve() {
    while (!isEnding) {
      pollfd ready = {.fd = socket.get(), .events = POLLIN, .revents = 0};
      if (::poll(&ready, 1, 10) <= 0) continue;
      char bytes[512];
      sockaddr_storage asker{};
      socklen_t size = sizeof asker;
      const auto count = ::recvfrom(socket.get(), bytes, sizeof bytes, 0, reinterpret_cast<sockaddr *>(&asker), &size);
      ++questions;
      if (count < 17 || !delay) continue;
      std::this_thread::sleep_for(*delay / 2); // there are two, one for each family
      const QByteArray question(bytes, count);
      if (answers == Answers::SilenceForIPv6 && !asksForIPv4(question)) continue;
      const QByteArray told = answerTo(question);
      (void)::sendto(socket.get(), told.constData(), size_t(told.size()), 0, reinterpret_cast<sockaddr *>(&asker),
                     size);
    }
  }

  static bool asksForIPv4(const QByteArray &question) { return question[question.indexOf('\0', 12) + 2] == 1; }
  /// The question once more, and the address behind it where there is one.
  [[nodiscard]] QByteArray answerTo(const QByteArray &question) const {
    const qsizetype end = question.indexOf('\0', 12) + 5;
    const bool isIPv4 = asksForIPv4(question);
    const bool isThere = isIPv4 == (answers != Answers::NoIPv4);
    const QByteArray flags("\x81\x80", 2);
    const QByteArray counts = isThere ? QByteArray("\0\1\0\1\0\0\0\0", 8) : QByteArray("\0\1\0\0\0\0\0\0", 8);
    const QByteArray ipv4("\xc0\x0c\0\1\0\1\0\0\0\0\0\4\x7f\0\0\1", 16);
    const QByteArray ipv6 = QByteArray("\xc0\x0c\0\x1c\0\1\0\0\0\0\0\x10", 12) + QByteArray(15, '\0') + '\1';
    return question.left(2) + flags + counts + question.mid(12, end - 12)
           + (isThere ? (isIPv4 ? ipv4 : ipv6) : QByteArray());
  }

  const std::optional<std::chrono::milliseconds> delay;
  const FileDescriptor socket = boundSocket("127.0.0.1", 53, SOCK_DGRAM);
  std::atomic<bool> isEnding = false;
  std::jthread thread;
};

/// The service under a name, in a world of its own.
struct Names : Apart, ServiceTest {
  Names() : ServiceTest({.domain = u"sandbox.test"_s, .onIPv6 = hasIPv6(), .requestsPerConnection = 1}) {
    forgetDesktopProxies();
  }
  void SetUp() override {
    const bool isOurs = isApart && replace("nsswitch.conf", "hosts: files dns\n")
                        && replace("hosts", "127.0.0.1 localhost\n")
                        && replace("resolv.conf", "nameserver 127.0.0.1\n");
    if (!isOurs) GTEST_SKIP() << "this system gives nobody a network of his own";
  }
  /// Puts a file in the place of the system's own.
  [[nodiscard]] bool replace(const char *name, const QByteArray &content) const {
    writeFile(ours(name), content);
    const QByteArray theirs = QByteArray("/etc/") + name;
    return ::mount(ours(name).toUtf8().constData(), theirs.constData(), nullptr, MS_BIND, nullptr) == 0;
  }
  [[nodiscard]] QString ours(const char *name) const { return profile.path(QString::fromLatin1(name)); }
  static void setLimit(const char *seconds) {
    platform::standardUserDefaults().setString(u"timeoutIntervalForRequest"_s, QString::fromLatin1(seconds));
  }
  /// The service's answer and how long it took, to the end of all that was used.
  [[nodiscard]] std::pair<HttpAnswer, Clock::duration>
  ask(std::shared_ptr<KaTransport> transport = std::make_shared<KaTransport>()) const {
    const auto start = Clock::now();
    HttpAnswer answer = KaHttpTransfer(std::move(transport))
                            .perform({.url = u"https://api.sandbox.test:%1/configuration"_s.arg(service.port())});
    return {std::move(answer), Clock::now() - start};
  }
};

struct Family {
  const char *name;
  const char *dead;
  const char *alive;
  const char *order; ///< in which the system names them: the dead one first
};

class DeadFamily : public Names, public testing::WithParamInterface<Family> {};

TEST_P(DeadFamily, leavesTheOther) {
  if (!addLoopbackAddress("::2")) GTEST_SKIP() << "this system has no IPv6";
  ASSERT_TRUE(waitFor([] { return bool(boundSocket("::2", 0, SOCK_STREAM)); })) << "it takes a moment to count";
  ASSERT_TRUE(replace("gai.conf", GetParam().order));
  QByteArray hosts;
  for (const char *const address : {GetParam().dead, GetParam().alive})
    hosts += QByteArray(address) + " api.sandbox.test\n";
  writeFile(ours("hosts"), hosts);
  const DeadAddress silence(GetParam().dead, service.port());
  const auto [answer, took] = ask();
  EXPECT_EQ(answer.status, 200);
  EXPECT_GE(took, 150ms) << "the dead one comes first";
  EXPECT_LT(took, 2s * kSlowness);
}

INSTANTIATE_TEST_SUITE_P(Names, DeadFamily,
                         testing::Values(Family{"IPv6", "::2", "127.0.0.1",
                                                "precedence ::/0 9\nprecedence ::ffff:0:0/96 1\n"},
                                         Family{"IPv4", "127.0.0.2", "::1", "precedence ::ffff:0:0/96 100\n"}),
                         [](const auto &row) { return row.param.name; });

TEST_F(Names, mayComeLateWithinTheLimits) {
  const NameServer server(600ms);
  const auto [answer, took] = ask();
  EXPECT_EQ(answer.status, 200);
  EXPECT_GE(took, 250ms) << "or it was not asked";
  EXPECT_GE(server.questions, 1);
}

TEST_F(Names, areKnownThoughOnlyQuestionsForIPv4AreAnswered) {
  NameServer server(0ms, Answers::SilenceForIPv6);
  setLimit(QByteArray::number(kSlowness).constData());
  const auto half = 500ms * kSlowness;
  const auto transport = std::make_shared<KaTransport>();
  const auto duration = [&] {
    const auto [answer, took] = ask(transport);
    EXPECT_EQ(answer.status, 200);
    return took;
  };
  const auto first = duration();
  EXPECT_GE(first, half) << "both are asked for";
  EXPECT_LT(first, 2 * half) << "within the limit";
  EXPECT_LT(duration(), half) << "it is remembered";
  transport->forgetNetwork();
  EXPECT_GE(duration(), half) << "another network may have addresses of IPv6 alone";
  if (!hasIPv6()) return;
  server.answers = Answers::NoIPv4;
  EXPECT_LT(duration(), half) << "the other question is asked, too";
}

TEST_F(Names, mayBeASocksProxysToLookUp) {
  writeFile(ours("hosts"), "127.0.0.1 api.sandbox.test\n");
  const auto isAnswered = [this](const char *credentials) {
    qputenv("https_proxy", "socks5://" + QByteArray(credentials) + "@127.0.0.1");
    const auto transport = std::make_shared<KaTransport>();
    transport->forgetNetwork();
    return ask(transport).first.status == 200;
  };
  EXPECT_FALSE(isAnswered("us%20er:p%40ss")) << "nobody is there";
  Program proxy(u"microsocks"_s, {u"-i"_s, u"127.0.0.1"_s, u"-u"_s, u"us er"_s, u"-P"_s, u"p@ss"_s});
  EXPECT_TRUE(waitFor([&] { return isAnswered("us%20er:p%40ss"); }));
  EXPECT_FALSE(isAnswered("us%20er:wrong"));
}

TEST_F(Names, holdNothingUpThatNeverCome) {
  const NameServer server(std::nullopt);
  setLimit("0.5");
  const auto [answer, took] = ask();
  EXPECT_EQ(answer.outcome, Failed);
  EXPECT_GE(took, 500ms);
  EXPECT_LT(took, 2s * kSlowness);
  EXPECT_GE(server.questions, 1);
}

TEST_F(Names, endWithTheirRequestAtOnce) {
  const NameServer server(std::nullopt);
  auto asking = std::make_unique<KaServerRequest>();
  Clock::time_point stopped;
  std::jthread other([&] {
    EXPECT_TRUE(waitFor([&] { return server.questions > 0; }));
    stopped = Clock::now();
    asking->stopServerRequest();
  });
  EXPECT_EQ(asking->getKaAppId().result, KaResultCode::Offline);
  other.join();
  asking.reset();
  EXPECT_LT(Clock::now() - stopped, 1s * kSlowness);
}

} // namespace
