#include "platform/NetworkNews.h"

#include "platform/ThreadBound.h"
#include "platform/linux/FileDescriptor.h"

#include <QSocketNotifier>
#include <QTimer>

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/types.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <vector>

namespace platform {
namespace {

/// Of the loopback interface, in every Linux.
constexpr int kLoopbackInterface = 1;
/// The kernel answers at once; this is for one that does not.
constexpr timeval kAnswerWait{.tv_sec = 1, .tv_usec = 0};
/// What the kernel puts into one message at most.
constexpr std::size_t kMessageBytes = 32 * 1024;

/// A route by what makes it this one, lifetimes left out.
using Route = QByteArray;

struct Request {
  nlmsghdr header;
  rtmsg route;
};

FileDescriptor netlinkSocket(int moreFlags, unsigned groups) {
  FileDescriptor socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | moreFlags, NETLINK_ROUTE));
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = groups;
  // The way that sockets' addresses are handed over.
  if (!socket || ::bind(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) return {};
  return socket;
}

bool isLinkLocal(const rtmsg &route, const QByteArray &destination) {
  if (destination.size() < 2) return false;
  const auto first = uchar(destination[0]);
  const auto second = uchar(destination[1]);
  if (route.rtm_family == AF_INET) return route.rtm_dst_len >= 16 && first == 169 && second == 254;
  return route.rtm_dst_len >= 10 && first == 0xfe && (second & 0xc0) == 0x80;
}

bool isUp(const rtmsg &route) {
  return (route.rtm_flags & (RTNH_F_DEAD | RTNH_F_LINKDOWN)) == 0;
}

/// @return nothing for a route that leads nowhere.
std::optional<Route> wayOut(nlmsghdr *message) {
  auto *const route = reinterpret_cast<rtmsg *>(message + 1);
  if (route->rtm_table == RT_TABLE_LOCAL || route->rtm_type != RTN_UNICAST) return std::nullopt;
  if ((route->rtm_flags & RTM_F_CLONED) != 0 || !isUp(*route)) return std::nullopt;
  Route known(1, char(route->rtm_family));
  known += char(route->rtm_dst_len);
  int length = int(RTM_PAYLOAD(message));
  for (rtattr *part = RTM_RTA(route); RTA_OK(part, length); part = RTA_NEXT(part, length)) {
    const QByteArray value(static_cast<const char *>(RTA_DATA(part)), RTA_PAYLOAD(part));
    int interface = 0;
    if (part->rta_type == RTA_OIF && value.size() == sizeof interface)
      std::memcpy(&interface, value.constData(), sizeof interface);
    if (interface == kLoopbackInterface) return std::nullopt;
    if (part->rta_type == RTA_DST && isLinkLocal(*route, value)) return std::nullopt;
    constexpr std::array kKnownBy = {RTA_DST, RTA_OIF, RTA_GATEWAY, RTA_PREFSRC, RTA_MULTIPATH, RTA_NH_ID};
    if (std::find(kKnownBy.begin(), kKnownBy.end(), part->rta_type) != kKnownBy.end())
      known += char(part->rta_type) + value;
  }
  return known;
}

bool askForRoutes(const FileDescriptor &socket) {
  Request request{};
  request.header.nlmsg_len = sizeof request;
  request.header.nlmsg_type = RTM_GETROUTE;
  request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  request.route.rtm_family = AF_UNSPEC;
  return ::send(socket.get(), &request, sizeof request, 0) == ssize_t(sizeof request);
}

/// Takes what one message brings. @return whether more follow; nothing when the kernel says no.
std::optional<bool> take(char *bytes, int length, std::vector<Route> &routes) {
  auto *message = reinterpret_cast<nlmsghdr *>(bytes);
  for (; NLMSG_OK(message, unsigned(length)); message = NLMSG_NEXT(message, length)) {
    if (message->nlmsg_type == NLMSG_DONE) return false;
    if (message->nlmsg_type == NLMSG_ERROR) return std::nullopt;
    if (message->nlmsg_type != RTM_NEWROUTE) continue;
    if (const auto route = wayOut(message)) routes.push_back(*route);
  }
  return true;
}

/// The routes that lead off this computer, in order; absent when the kernel does not tell.
std::optional<std::vector<Route>> waysOut() {
  const FileDescriptor socket = netlinkSocket(0, 0);
  if (!socket) return std::nullopt;
  (void)::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &kAnswerWait, sizeof kAnswerWait);
  if (!askForRoutes(socket)) return std::nullopt;
  std::vector<Route> routes;
  alignas(nlmsghdr) std::array<char, kMessageBytes> buffer{};
  for (;;) {
    const ssize_t length = ::recv(socket.get(), buffer.data(), buffer.size(), 0);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return std::nullopt;
    const auto more = take(buffer.data(), int(length), routes);
    if (!more) return std::nullopt;
    if (!*more) break;
  }
  std::sort(routes.begin(), routes.end());
  return routes;
}

} // namespace

bool hasNetwork() {
  const auto ways = waysOut();
  return !ways || !ways->empty();
}

class NetworkNews::Private {
public:
  Private(NetworkNews &news, std::chrono::milliseconds settling)
      : owner(news), socket(netlinkSocket(SOCK_NONBLOCK, kGroups)) {
    assertMainThread();
    if (!socket) return;
    // After the socket is open: what changes from here on is told.
    known = waysOut();
    settled.setSingleShot(true);
    settled.setInterval(settling);
    QObject::connect(&settled, &QTimer::timeout, &owner, [this] { compare(); });
    notifier = std::make_unique<QSocketNotifier>(socket.get(), QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, &owner, [this] { drain(); });
  }

private:
  /// With routes alone one would not hear of those that go with an address or an interface. Not the addresses of IPv6,
  /// whose routes are all told, and whose lifetimes each router advertisement tells anew.
  static constexpr unsigned kGroups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;

  void drain() {
    std::array<char, kMessageBytes> buffer{};
    for (;;) {
      const ssize_t length = ::recv(socket.get(), buffer.data(), buffer.size(), 0);
      // Messages were lost, which says that there were some.
      if (length < 0 && (errno == EINTR || errno == ENOBUFS)) continue;
      if (length > 0) continue;
      if (length == 0 || errno != EAGAIN) notifier->setEnabled(false);
      break;
    }
    if (!settled.isActive()) settled.start();
  }

  void compare() {
    auto present = waysOut();
    if (present == known) return;
    known = std::move(present);
    Q_EMIT owner.changed();
  }

  NetworkNews &owner;
  const FileDescriptor socket;
  std::optional<std::vector<Route>> known;
  QTimer settled;
  std::unique_ptr<QSocketNotifier> notifier;
};

NetworkNews::NetworkNews(std::chrono::milliseconds settling, QObject *parent)
    : QObject(parent), d(std::make_unique<Private>(*this, settling)) {
}

NetworkNews::~NetworkNews() = default;

} // namespace platform
