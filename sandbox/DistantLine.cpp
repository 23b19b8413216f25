#include "sandbox/DistantLine.h"

#include "sandbox/Descriptor.h"
#include "sandbox/LoopbackAddress.h"
#include "sandbox/WakeUp.h"

#include <QByteArray>

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <string>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace sandbox {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Moment = Clock::time_point;

constexpr int kBacklog = 256;
// On a line with a rate a piece is what goes through in a millisecond, so that a long transfer leaves gaps for others.
constexpr qint64 kPiecesPerSecond = 1000;
constexpr qint64 kSmallestPiece = 1460; // a segment's worth
constexpr qint64 kLargestPiece = 256 * 1024;
// A stream holds what is on its way and this much for a receiver that is slow to read.
constexpr qint64 kSlack = 256 * 1024;
// Without a rate this is all that is on its way: 300 MB/s over a round trip of 50 ms.
constexpr qint64 kWindow = 8 * 1024 * 1024;

/// A descriptor, and what the kernel has said of it since it was last found dry or full.
struct End {
  Descriptor descriptor;
  bool readable = true;
  bool writable = true;
  bool failed = false; ///< the peer takes nothing more
};

/// Tells when one direction of the line is free for the next piece of any stream.
class Pace {
public:
  explicit Pace(qint64 bytesPerSecond) : rate(bytesPerSecond) {}

  [[nodiscard]] qint64 piece() const {
    return rate == 0 ? kLargestPiece : std::clamp(rate / kPiecesPerSecond, kSmallestPiece, kLargestPiece);
  }
  [[nodiscard]] Moment nextFree() const { return free; }
  /// @return when the last of @p bytes that came @p now has left.
  [[nodiscard]] Moment carry(qint64 bytes, Moment now) {
    if (rate == 0) return now;
    // While pieces wait the line does not rest, however late its thread is.
    if (!hasWaiting) free = std::max(free, now);
    free += std::chrono::nanoseconds(bytes * std::nano::den / rate);
    return free;
  }
  void setWaiting(bool waiting) { hasWaiting = waiting; }

private:
  const qint64 rate;
  Moment free{};
  bool hasWaiting = false;
};

/// One direction of one connection.
class Stream {
public:
  struct Course {
    Clock::duration oneWay{};
    qint64 mostHeld = 0;
  };
  /// @param opening  when it begins to take.
  Stream(End &from, End &towards, const Course &along, Moment opening)
      : source(from), sink(towards), course(along), opens(opening) {}

  [[nodiscard]] bool canTake(Moment now) const {
    return source.readable && !ended && held < course.mostHeld && now >= opens;
  }
  /// Takes at most one piece from the source.
  void take(Pace &pace, QByteArray &scratch);
  /// Hands over what has arrived by @p now.
  void deliver(Moment now);
  /// The source is gone without a goodbye, and the sink is to learn it.
  void reset(Moment now);

  /// When there is something to do that no event will tell of.
  [[nodiscard]] Moment wakeAt(Moment now) const;
  [[nodiscard]] bool isEnded() const { return ended; } ///< takes nothing more
  [[nodiscard]] bool isOver() const { return over; }   ///< and the sink knows
  [[nodiscard]] bool isReset() const { return wasReset; }

private:
  enum class Kind { Bytes, Goodbye, Reset };
  struct Piece {
    Moment due{};
    Kind kind = Kind::Bytes;
    QByteArray bytes{};
  };
  bool handOver(const QByteArray &bytes);
  void arrive(Kind end);

  End &source;
  End &sink;
  const Course course;
  const Moment opens;
  std::deque<Piece> onTheWay;
  qint64 held = 0;
  qint64 handedOver = 0; ///< of the first piece
  bool ended = false;
  bool resetting = false;
  bool over = false;
  bool wasReset = false;
};

void Stream::take(Pace &pace, QByteArray &scratch) {
  const auto count = ::recv(source.descriptor.get(), scratch.data(), size_t(pace.piece()), 0);
  if (count < 0 && errno == EINTR) return;
  if (count < 0 && errno == EAGAIN) {
    source.readable = false;
    return;
  }
  const Moment now = Clock::now();
  ended = count <= 0;
  if (count < 0) return reset(now);
  onTheWay.push_back({.due = pace.carry(count, now) + course.oneWay,
                      .kind = ended ? Kind::Goodbye : Kind::Bytes,
                      .bytes = QByteArray(scratch.constData(), count)});
  held += count;
}

void Stream::reset(Moment now) {
  if (resetting) return;
  resetting = true;
  ended = true;
  onTheWay.push_back({.due = now + course.oneWay, .kind = Kind::Reset});
}

void Stream::deliver(Moment now) {
  while (!onTheWay.empty() && onTheWay.front().due <= now) {
    const Piece &first = onTheWay.front();
    if (first.kind != Kind::Bytes)
      arrive(first.kind);
    else if (!handOver(first.bytes))
      return;
    onTheWay.pop_front();
  }
}

bool Stream::handOver(const QByteArray &bytes) {
  while (sink.writable && handedOver < bytes.size()) {
    const auto count =
        ::send(sink.descriptor.get(), bytes.constData() + handedOver, size_t(bytes.size() - handedOver), MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && errno == EAGAIN) {
      sink.writable = false;
    } else if (count < 0) {
      sink.failed = true; // which may not be told of again
      ended = true;
      onTheWay.clear();
      return false;
    } else {
      handedOver += count;
      held -= count;
    }
  }
  if (handedOver < bytes.size()) return false;
  handedOver = 0;
  return true;
}

void Stream::arrive(Kind end) {
  over = true;
  if (end == Kind::Goodbye) {
    ::shutdown(sink.descriptor.get(), SHUT_WR);
    return;
  }
  wasReset = true;
  // Closing it then tells the peer of a reset.
  const linger atOnce{.l_onoff = 1, .l_linger = 0};
  ::setsockopt(sink.descriptor.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

Moment Stream::wakeAt(Moment now) const {
  if (now < opens) return opens;
  if (onTheWay.empty() || (onTheWay.front().kind == Kind::Bytes && !sink.writable)) return Moment::max();
  return onTheWay.front().due;
}

struct Connection {
  Connection(int fromClient, int toServer, const Stream::Course &course, Moment opens)
      : client{{fromClient, "accept"}}, server{{toServer, "socket"}}, up(client, server, course, opens),
        down(server, client, course, Moment::min()) {}

  void deliver(Moment now) {
    up.deliver(now);
    down.deliver(now);
    // Of what they have sent before they failed nothing is lost.
    if (server.failed && down.isEnded()) down.reset(now);
    if (client.failed && up.isEnded()) up.reset(now);
  }
  [[nodiscard]] bool isOver() const { return up.isReset() || down.isReset() || (up.isOver() && down.isOver()); }

  End client;
  End server;
  Stream up;
  Stream down;
};

int newSocket() {
  return ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
}

void setOption(int socket, int level, int name) {
  const int on = 1;
  ::setsockopt(socket, level, name, &on, sizeof on);
}

} // namespace

class DistantLine::Private {
public:
  Private(quint16 port, const Distance &distance);
  ~Private();

  quint16 boundPort = 0;
  void start(quint16 towards);

private:
  /// One of the two, with its place in the round of the connections.
  struct Direction {
    Stream Connection::*stream;
    Pace pace;
    size_t turn = 0;
  };

  void bind(quint16 port);
  void watch(int descriptor, End *end) const;
  void run();
  void acceptAll();
  void takeInTurn(Direction &direction);
  [[nodiscard]] Moment nextWake(Moment now) const;
  [[nodiscard]] bool waitUntil(Moment moment);
  void setTimer(Moment moment) const;

  const Clock::duration roundTrip;
  const Stream::Course course;
  const Descriptor poller{epoll_create1(EPOLL_CLOEXEC), "epoll_create1"};
  const WakeUp ending;
  // Of the line's thread, once it runs:
  End timer{{timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK), "timerfd_create"}};
  End listener{{newSocket(), "socket"}};
  sockaddr_in server{};
  std::array<Direction, 2> directions;
  std::vector<std::unique_ptr<Connection>> connections;
  QByteArray scratch{kLargestPiece, Qt::Uninitialized};

  std::thread thread;
};

DistantLine::Private::Private(quint16 port, const Distance &distance)
    : roundTrip(distance.roundTrip), course{.oneWay = roundTrip / 2,
                                            .mostHeld = distance.bytesPerSecond == 0
                                                            ? kWindow
                                                            : distance.bytesPerSecond * distance.roundTrip.count()
                                                                      / (2 * std::milli::den)
                                                                  + kSlack},
      directions{Direction{&Connection::up, Pace(distance.bytesPerSecond)},
                 Direction{&Connection::down, Pace(distance.bytesPerSecond)}} {
  bind(port);
  watch(ending.descriptor(), nullptr);
  watch(timer.descriptor.get(), &timer);
  watch(listener.descriptor.get(), &listener);
}

DistantLine::Private::~Private() {
  ending.raise();
  if (thread.joinable()) thread.join();
}

void DistantLine::Private::bind(quint16 port) {
  const int socket = listener.descriptor.get();
  setOption(socket, SOL_SOCKET, SO_REUSEADDR);
  sockaddr_in address = loopbackAddress(port);
  socklen_t size = sizeof address;
  if (::bind(socket, general(address), size) != 0 || ::listen(socket, kBacklog) != 0
      || ::getsockname(socket, general(address), &size) != 0)
    throw std::runtime_error("cannot listen on port " + std::to_string(port));
  boundPort = ntohs(address.sin_port);
}

/// @param end  what learns of its events; nullptr: it ends the thread once it can be read.
void DistantLine::Private::watch(int descriptor, End *end) const {
  epoll_event event{.events = EPOLLIN, .data = {.ptr = end}};
  // An end hears of each change once, so that it costs nothing while nothing can be done about it.
  if (end) event.events |= EPOLLOUT | EPOLLRDHUP | EPOLLET;
  if (::epoll_ctl(poller.get(), EPOLL_CTL_ADD, descriptor, &event) != 0) throw std::runtime_error("epoll_ctl failed");
}

void DistantLine::Private::start(quint16 towards) {
  server = loopbackAddress(towards);
  thread = std::thread([this] { run(); });
}

void DistantLine::Private::run() {
  Moment now{};
  do {
    now = Clock::now();
    for (const auto &connection : connections)
      connection->deliver(now);
    for (Direction &direction : directions)
      takeInTurn(direction);
    std::erase_if(connections, [](const auto &connection) { return connection->isOver(); });
    now = Clock::now();
  } while (waitUntil(nextWake(now)));
}

void DistantLine::Private::acceptAll() {
  listener.readable = false;
  int client = -1;
  while ((client = ::accept4(listener.descriptor.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC)) >= 0) {
    const int onwards = newSocket();
    if (onwards < 0) {
      ::close(client);
      continue;
    }
    // Whatever becomes of it is told by the first read.
    ::connect(onwards, general(server), sizeof server);
    setOption(client, IPPROTO_TCP, TCP_NODELAY);
    setOption(onwards, IPPROTO_TCP, TCP_NODELAY);
    auto connection = std::make_unique<Connection>(client, onwards, course, Clock::now() + roundTrip);
    watch(client, &connection->client);
    watch(onwards, &connection->server);
    connections.push_back(std::move(connection));
  }
}

/// Lets each stream take a piece, beginning after the one that was last.
void DistantLine::Private::takeInTurn(Direction &direction) {
  const Moment now = Clock::now();
  const size_t first = direction.turn;
  for (size_t step = 0; step < connections.size() && direction.pace.nextFree() <= now; ++step) {
    const size_t index = (first + step) % connections.size();
    Stream &stream = (*connections[index]).*direction.stream;
    if (!stream.canTake(now)) continue;
    stream.take(direction.pace, scratch);
    direction.turn = index + 1;
  }
  const auto waits = [&](const auto &connection) { return ((*connection).*direction.stream).canTake(now); };
  direction.pace.setWaiting(std::any_of(connections.begin(), connections.end(), waits));
}

Moment DistantLine::Private::nextWake(Moment now) const {
  Moment next = Moment::max();
  for (const auto &connection : connections) {
    for (const Direction &direction : directions) {
      const Stream &stream = (*connection).*direction.stream;
      next = std::min(next, stream.wakeAt(now));
      if (stream.canTake(now)) next = std::min(next, direction.pace.nextFree());
    }
  }
  return next;
}

/// Notes what has happened by then or, if nothing has, what happens first. @return false when the line is to end.
bool DistantLine::Private::waitUntil(Moment moment) {
  const bool isPast = moment <= Clock::now();
  if (!isPast) setTimer(moment);
  std::array<epoll_event, 64> events;
  const int count = ::epoll_wait(poller.get(), events.data(), int(events.size()), isPast ? 0 : -1);
  for (int index = 0; index < count; ++index) {
    auto *end = static_cast<End *>(events[size_t(index)].data.ptr);
    if (!end) return false;
    const uint32_t what = events[size_t(index)].events;
    end->failed |= (what & EPOLLERR) != 0;
    end->readable |= (what & ~uint32_t(EPOLLOUT)) != 0;
    end->writable |= (what & ~uint32_t(EPOLLIN | EPOLLRDHUP)) != 0;
  }
  if (listener.readable) acceptAll();
  return true;
}

void DistantLine::Private::setTimer(Moment moment) const {
  itimerspec when{};
  if (moment != Moment::max()) {
    const auto since = moment.time_since_epoch();
    const auto seconds = std::chrono::floor<std::chrono::seconds>(since);
    when.it_value = {.tv_sec = seconds.count(), .tv_nsec = std::chrono::nanoseconds(since - seconds).count()};
  }
  ::timerfd_settime(timer.descriptor.get(), TFD_TIMER_ABSTIME, &when, nullptr);
}

DistantLine::DistantLine(quint16 port, const Distance &distance) : d(std::make_unique<Private>(port, distance)) {
}

DistantLine::~DistantLine() = default;

void DistantLine::start(quint16 towards) {
  d->start(towards);
}

quint16 DistantLine::port() const {
  return d->boundPort;
}

} // namespace sandbox
