#include "platform/BootClock.h"
#include "platform/NetworkNews.h"
#include "platform/SleepNews.h"
#include "platform/linux/FileDescriptor.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QFile>

#include <arpa/inet.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using platform::FileDescriptor;
using platform::hasNetwork;

namespace {

int noArguments = 0;
constexpr int kMayNot = 77;

/// What is asked of the kernel: a head, then attributes.
template <class Head> class Request {
public:
  Request(unsigned short type, const Head &head) {
    whole.header.nlmsg_len = offsetof(Whole, attributes);
    whole.header.nlmsg_type = type;
    whole.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_CREATE | NLM_F_EXCL;
    whole.head = head;
  }
  rtattr *append(unsigned short type, const void *value, std::size_t size) {
    auto *const part = reinterpret_cast<rtattr *>(reinterpret_cast<char *>(&whole) + whole.header.nlmsg_len);
    part->rta_type = type;
    part->rta_len = static_cast<unsigned short>(sizeof(rtattr) + size);
    if (size > 0) std::memcpy(part + 1, value, size);
    whole.header.nlmsg_len += (part->rta_len + 3U) & ~3U;
    return part;
  }
  [[nodiscard]] bool send() const {
    const FileDescriptor socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
    return ::send(socket.get(), &whole, whole.header.nlmsg_len, 0) > 0;
  }

private:
  struct Whole {
    nlmsghdr header{};
    Head head{};
    char attributes[64]{};
  };
  Whole whole;
};

/// Two ends of a cable: "v0" and one that the kernel names.
bool addCable() {
  Request request(RTM_NEWLINK, ifinfomsg{});
  request.append(IFLA_IFNAME, "v0", 3);
  rtattr *const info = request.append(IFLA_LINKINFO, nullptr, 0);
  request.append(IFLA_INFO_KIND, "veth", 5);
  info->rta_len = static_cast<unsigned short>(sizeof(rtattr) * 2 + 5);
  return request.send() && ::if_nametoindex("v0") != 0;
}

/// To 10.77.0.0/16.
bool addRoute(const char *interface, unsigned char table) {
  rtmsg route{};
  route.rtm_family = AF_INET;
  route.rtm_dst_len = 16;
  route.rtm_table = table;
  route.rtm_protocol = RTPROT_STATIC;
  route.rtm_scope = RT_SCOPE_LINK;
  route.rtm_type = RTN_UNICAST;
  Request request(RTM_NEWROUTE, route);
  const unsigned index = ::if_nametoindex(interface);
  request.append(RTA_DST, "\x0a\x4d\0", 4);
  request.append(RTA_OIF, &index, sizeof index);
  return request.send();
}

ifreq requestFor(const char *interface) {
  ifreq request{};
  std::strncpy(request.ifr_name, interface, IFNAMSIZ - 1);
  return request;
}

bool control(unsigned long operation, ifreq &request) {
  const FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  return ::ioctl(socket.get(), operation, &request) == 0;
}

bool setUp(const char *interface, bool up) {
  ifreq request = requestFor(interface);
  request.ifr_flags = static_cast<short>(up ? IFF_UP : 0);
  return control(SIOCSIFFLAGS, request);
}

bool setAddress(const char *interface, const char *address) {
  ifreq request = requestFor(interface);
  sockaddr_in ip{};
  ip.sin_family = AF_INET;
  ::inet_pton(AF_INET, address, &ip.sin_addr);
  std::memcpy(&request.ifr_addr, &ip, sizeof ip);
  return control(SIOCSIFADDR, request);
}

/// The step that went wrong; 0 when none did.
int watchANetworkComeAndGo() {
  const QCoreApplication application(noArguments, nullptr);
  const auto other = [] { return ::if_nametoindex("veth0") != 0 ? "veth0" : "veth1"; };
  if (hasNetwork()) return 1;
  if (!setUp("lo", true) || !addRoute("lo", RT_TABLE_MAIN) || hasNetwork()) return 2; // loopback alone
  int told = 0;
  platform::NetworkNews news(500ms); // a burst takes its time on a busy computer
  QObject::connect(&news, &platform::NetworkNews::changed, [&told] { ++told; });

  // Link-local routes alone, then one of a table that few use, and then one without a carrier.
  if (!addCable() || !setUp(other(), true) || !setUp("v0", true)) return kMayNot;
  if (!setAddress("v0", "169.254.3.4") || hasNetwork()) return 3;
  if (!addRoute("v0", 100) || !hasNetwork()) return 3;
  if (!setUp(other(), false) || !setAddress("v0", "10.1.2.3")) return 4;
  if (!waitFor([] { return !hasNetwork(); })) return 5; // the kernel takes its time with a carrier
  (void)waitFor([] { return false; }, 1200ms);          // whatever was told of so far
  told = 0;
  if (!setUp(other(), true)) return 6;
  if (!waitFor([&] { return told > 0 && hasNetwork(); })) return 7;

  // A burst, of which nothing is left, and then one that brings something: news but once.
  (void)waitFor([] { return false; }, 1200ms);
  told = 0;
  for (int times = 0; times < 6; ++times)
    if (!setUp("v0", times % 2 != 0)) return 8;
  (void)waitFor([] { return false; }, 1200ms);
  if (!hasNetwork() || told != 0) return 9;
  for (const char *address : {"10.1.2.4", "10.1.2.5", "10.1.2.6"})
    if (!setAddress("v0", address)) return 10;
  if (!waitFor([&] { return told > 0; })) return 11;
  (void)waitFor([] { return false; }, 1200ms);
  if (told != 1) return 12;

  if (!setUp("v0", false) || !waitFor([&] { return told == 2; }) || hasNetwork()) return 13;
  return 0;
}

/// In a process of its own, whose network nobody else sees.
[[noreturn]] void inAnEmptyNetwork() {
  const bool apart = ::unshare(CLONE_NEWNET) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0;
  ::_exit(apart ? watchANetworkComeAndGo() : kMayNot);
}

TEST(Network, isThereWithARouteOffThisComputerAndToldOfOnceForABurst) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  int status = -1;
  EXPECT_EXIT(
      inAnEmptyNetwork(), [&](int ended) { return (status = WEXITSTATUS(ended)) == 0 || status == kMayNot; }, "")
      << "step " << status;
  if (status == kMayNot) GTEST_SKIP() << "this system gives nobody a network of his own";
}

struct Sleep : testing::Test {
  static void tell(const QDBusConnection &by, bool isFallingAsleep) {
    auto news = QDBusMessage::createSignal(u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s,
                                           u"PrepareForSleep"_s);
    by.send(news << isFallingAsleep);
  }
  /// Listens for a moment. @return the longest that the event loop stood still meanwhile.
  static std::chrono::milliseconds standstill(const QString &address) {
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address.toUtf8());
    QElapsedTimer beat;
    qint64 longest = 0;
    beat.start();
    {
      const platform::SleepNews news;
      (void)waitFor([&] { return (longest = std::max(longest, beat.restart())) < 0; }, 300ms);
      beat.restart();
    }
    return std::chrono::milliseconds(std::max(longest, beat.elapsed()));
  }

  const QCoreApplication application{noArguments, nullptr};
};

TEST_F(Sleep, isToldOfByTheSystemWhenItIsOver) {
  const PrivateBus bus("DBUS_SYSTEM_BUS_ADDRESS");
  auto system = QDBusConnection::connectToBus(bus.address(), u"system"_s);
  const auto stranger = QDBusConnection::connectToBus(bus.address(), u"stranger"_s);
  ASSERT_TRUE(system.registerService(u"org.freedesktop.login1"_s));
  platform::SleepNews news;
  int told = 0;
  QObject::connect(&news, &platform::SleepNews::wokeUp, [&told] { ++told; });
  ASSERT_TRUE(waitFor([&] {
    tell(system, false);
    return told > 0;
  }));
  int before = -1;
  ASSERT_TRUE(waitFor([&] { return std::exchange(before, told) == told; }, 2s)) << "the rest of those";
  (void)waitFor([] { return false; }, 200ms);
  told = 0;
  tell(stranger, false);
  tell(system, true);
  tell(system, false);
  EXPECT_TRUE(waitFor([&] { return told > 0; }));
  (void)waitFor([] { return false; }, 100ms);
  EXPECT_EQ(told, 1);
  for (const auto &name : {u"system"_s, u"stranger"_s})
    QDBusConnection::disconnectFromBus(name);
}

TEST_F(Sleep, holdsNothingUpWithABusThatIsAbsentOrHangs) {
  const QTemporaryDir folder;
  EXPECT_LT(standstill(u"unix:path="_s + folder.filePath(u"absent"_s)), 2s);
  const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const QByteArray path = folder.filePath(u"bus"_s).toUtf8();
  std::memcpy(address.sun_path, path.constData(), std::size_t(path.size()));
  ASSERT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
  ASSERT_EQ(::listen(socket.get(), 8), 0);
  EXPECT_LT(standstill(u"unix:path="_s + QString::fromUtf8(path)), 2s);
}

constexpr time_t kAsleep = 3600;

/// In a process whose computer has slept, as far as the kernel lets it believe so.
[[noreturn]] void lookAtTheClockAfterASleep() {
  const bool apart = ::unshare(CLONE_NEWTIME) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWTIME) == 0;
  QFile offsets(u"/proc/self/timens_offsets"_s);
  const QByteArray line = "boottime " + QByteArray::number(qint64(kAsleep)) + " 0\n";
  if (!apart || !offsets.open(QFile::WriteOnly | QFile::Unbuffered) || offsets.write(line) != line.size())
    ::_exit(kMayNot);
  const auto before = platform::BootClock::now().time_since_epoch();
  const pid_t child = ::fork();
  if (child == 0)
    ::_exit(platform::BootClock::now().time_since_epoch() - before >= std::chrono::seconds(kAsleep) ? 0 : 1);
  int status = -1;
  ::_exit(::waitpid(child, &status, 0) == child ? WEXITSTATUS(status) : 2);
}

TEST(BootClock, countsTheTimeAsleep) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  int status = -1;
  EXPECT_EXIT(
      lookAtTheClockAfterASleep(), [&](int ended) { return (status = WEXITSTATUS(ended)) == 0 || status == kMayNot; },
      "");
  if (status == kMayNot) GTEST_SKIP() << "this system gives nobody a time of his own";
}

} // namespace
