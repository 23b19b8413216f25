#include "sandbox/TestProxy.h"

#include "sandbox/Descriptor.h"
#include "sandbox/Locked.h"
#include "sandbox/LoopbackAddress.h"
#include "sandbox/WakeUp.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <vector>

namespace sandbox {

namespace {

constexpr qsizetype kMostHead = 64 * 1024;

int newSocket() {
  return ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

bool sendAll(int socket, QByteArray bytes) {
  while (!bytes.isEmpty()) {
    const auto sent = ::send(socket, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes.remove(0, sent);
  }
  return true;
}

QByteArray headerOf(const QByteArray &head, const QByteArray &name) {
  for (const QByteArray &line : head.split('\n'))
    if (line.left(name.size()).compare(name, Qt::CaseInsensitive) == 0) return line.mid(name.size()).trimmed();
  return {};
}

} // namespace

class TestProxy::Private {
public:
  Private(quint16 towards, const TestProxyOptions &options);
  ~Private();

  struct State {
    quint16 towards = 0;
    QByteArray answer{};
    QList<QByteArray> tunnels{};
    QList<QByteArray> requests{};
  };
  Locked<State> state;
  quint16 port = 0;

private:
  void acceptAll();
  void serve(const Descriptor &client);
  [[nodiscard]] QByteArray readHead(const Descriptor &client) const;
  [[nodiscard]] bool mayPass(const QByteArray &head) const;
  void carry(const Descriptor &client, const QByteArray &head);
  /// Waits until one of two can be read, or is over. @return which; neither when the proxy is to end.
  [[nodiscard]] std::array<bool, 2> wait(int one, int other = -1) const;

  const QByteArray credentials; ///< as a client shows them; empty: none are needed
  const Descriptor listener{newSocket(), "socket"};
  const WakeUp ending;
  std::vector<std::jthread> clients; ///< of the accepting thread
  std::jthread acceptor;
};

TestProxy::Private::Private(quint16 towards, const TestProxyOptions &options)
    : state(State{.towards = towards}),
      credentials(options.user.isEmpty() ? QByteArray()
                                         : "Basic " + (options.user + ':' + options.password).toBase64()) {
  sockaddr_in address = loopbackAddress(0);
  socklen_t size = sizeof address;
  constexpr int kBacklog = 64;
  if (::bind(listener.get(), general(address), size) != 0 || ::listen(listener.get(), kBacklog) != 0
      || ::getsockname(listener.get(), general(address), &size) != 0)
    throw std::runtime_error("the proxy has no port");
  port = ntohs(address.sin_port);
  acceptor = std::jthread([this] { acceptAll(); });
}

TestProxy::Private::~Private() {
  ending.raise();
}

std::array<bool, 2> TestProxy::Private::wait(int one, int other) const {
  const auto end = [](int descriptor) { return pollfd{.fd = descriptor, .events = POLLIN, .revents = 0}; };
  std::array ends{end(one), end(other), end(ending.descriptor())};
  while (::poll(ends.data(), ends.size(), -1) < 0)
    if (errno != EINTR) return {};
  if (ends[2].revents != 0) return {};
  return {ends[0].revents != 0, ends[1].revents != 0};
}

void TestProxy::Private::acceptAll() {
  while (wait(listener.get())[0]) {
    const int client = ::accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC);
    if (client >= 0) clients.emplace_back([this, client] { serve({client, "accept"}); });
  }
  clients.clear(); // joins them
}

QByteArray TestProxy::Private::readHead(const Descriptor &client) const {
  QByteArray head;
  while (!head.endsWith("\r\n\r\n")) {
    char byte = 0; // what comes behind the head is not the proxy's
    if (head.size() > kMostHead || !wait(client.get())[0] || ::recv(client.get(), &byte, 1, 0) != 1) return {};
    head += byte;
  }
  return head;
}

bool TestProxy::Private::mayPass(const QByteArray &head) const {
  return credentials.isEmpty() || headerOf(head, "Proxy-Authorization:") == credentials;
}

void TestProxy::Private::serve(const Descriptor &client) {
  for (;;) {
    const QByteArray head = readHead(client);
    if (head.isEmpty()) return;
    const QByteArray own = state.with([&](State &now) {
      now.requests << head;
      return now.answer;
    });
    if (!own.isEmpty()) {
      if (!sendAll(client.get(), own)) return;
    } else if (!mayPass(head)) {
      const QByteArray refusal = "HTTP/1.1 407 Proxy Authentication Required\r\n"
                                 "Proxy-Authenticate: Negotiate\r\n"
                                 "Proxy-Authenticate: Basic realm=\"sandbox\"\r\nContent-Length: 5\r\n\r\nwho?\n";
      if (!sendAll(client.get(), refusal)) return;
    } else {
      return carry(client, head);
    }
  }
}

/// Makes a tunnel, and carries what goes through it until either end has nothing more to say.
void TestProxy::Private::carry(const Descriptor &client, const QByteArray &head) {
  const QList<QByteArray> words = head.left(head.indexOf('\r')).split(' ');
  const Descriptor server(newSocket(), "socket");
  sockaddr_in address = loopbackAddress(state.with([](const State &now) { return now.towards; }));
  const bool isOpen =
      words[0] == "CONNECT" && words.size() == 3 && ::connect(server.get(), general(address), sizeof address) == 0;
  if (isOpen) state.with([&](State &now) { now.tunnels << words[1]; });
  const QByteArray answer = isOpen ? "HTTP/1.1 200 Connection established\r\nX-Amz-Meta-File-Name: of-the-proxy\r\n\r\n"
                                   : "HTTP/1.1 502 Bad Gateway\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
  if (!sendAll(client.get(), answer) || !isOpen) return;
  const std::array ends{client.get(), server.get()};
  QByteArray piece(64 * 1024, Qt::Uninitialized);
  for (;;) {
    const auto isReadable = wait(ends[0], ends[1]);
    if (!isReadable[0] && !isReadable[1]) return;
    for (const size_t from : {0, 1}) {
      if (!isReadable[from]) continue;
      const auto count = ::recv(ends[from], piece.data(), size_t(piece.size()), 0);
      if (count <= 0 || !sendAll(ends[1 - from], piece.left(count))) return;
    }
  }
}

TestProxy::TestProxy(quint16 towards, const TestProxyOptions &options)
    : d(std::make_unique<Private>(towards, options)) {
}
TestProxy::~TestProxy() = default;

quint16 TestProxy::port() const {
  return d->port;
}

void TestProxy::leadTo(quint16 towards) {
  d->state.with([&](auto &now) { now.towards = towards; });
}

void TestProxy::answerWith(const QByteArray &answer) {
  d->state.with([&](auto &now) { now.answer = answer; });
}

QList<QByteArray> TestProxy::tunnels() const {
  return d->state.with([](const auto &now) { return now.tunnels; });
}

QList<QByteArray> TestProxy::requests() const {
  return d->state.with([](const auto &now) { return now.requests; });
}

} // namespace sandbox
