#include "sandbox/HttpServer.h"

#include "sandbox/Locked.h"
#include "sandbox/OpenSsl.h"
#include "sandbox/Pem.h"
#include "sandbox/WakeUp.h"

#include <QHash>

#include <httplib.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <latch>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <thread>

namespace sandbox {

namespace {

using namespace std::chrono_literals;

// Every open connection keeps a thread, also between two requests; one more than these waits until another ends.
constexpr size_t kThreadCount = 64;
constexpr auto kLongestIdle = 30s;
// The library's own backlog of 5 would make several clients at once wait for retransmitted SYNs.
constexpr int kBacklog = 256;
constexpr size_t kWriteSlice = 256 * 1024;

enum class Waited { TimeUp, Woken, ClientLeft };

/// @param timeout  nullopt: no limit.
Waited waitBeside(int client, const WakeUp &wakeUp, std::optional<std::chrono::milliseconds> timeout) {
  // The request has been read whole, so anything that arrives now is the client's goodbye.
  std::array<pollfd, 2> watched{pollfd{client, POLLIN | POLLRDHUP, 0}, pollfd{wakeUp.descriptor(), POLLIN, 0}};
  const int milliseconds = timeout ? int(timeout->count()) : -1;
  int ready = 0;
  do
    ready = ::poll(watched.data(), watched.size(), milliseconds);
  while (ready < 0 && errno == EINTR);
  if (ready == 0) return Waited::TimeUp;
  return watched[1].revents != 0 ? Waited::Woken : Waited::ClientLeft;
}

void cut(int socket) {
  // Fails when the client was first, which is as good.
  ::shutdown(socket, SHUT_RDWR);
}

int socketOf(const httplib::Request &request) {
  return SSL_get_fd(request.ssl);
}

/// The client of one request, and what ends waiting for it.
struct Client {
  SSL *session = nullptr;
  std::shared_ptr<const WakeUp> wakeUp{};

  [[nodiscard]] int socket() const { return SSL_get_fd(session); }
  [[nodiscard]] Waited wait(std::optional<std::chrono::milliseconds> timeout) const {
    return waitBeside(socket(), *wakeUp, timeout);
  }
  /// What ends an answer that has no other end; a client that keeps connections closes this one then.
  void sayGoodbye() const { SSL_shutdown(session); }
};

/// All connections from handshake to end, so that they can be told apart and cut.
class Connections {
public:
  void add(int socket) {
    static std::atomic<quint64> numbers = 0;
    open.with([&](State &state) {
      state.sockets.insert(socket, {.number = ++numbers});
      if (state.closing) cut(socket);
    });
  }
  void remove(int socket) {
    open.with([&](State &state) { state.sockets.remove(socket); });
  }
  void cutAll() {
    open.with([](State &state) {
      state.closing = true;
      for (const int socket : state.sockets.keys())
        cut(socket);
    });
  }
  /// Writes into @p request what it came over. @return false when that had been cut: its client will ask again.
  [[nodiscard]] bool asked(int socket, ReceivedRequest &request) {
    return open.with([&](State &state) {
      Connection &connection = state.sockets[socket];
      if (connection.isCut) return false;
      request.connection = connection.number;
      ++connection.requests;
      connection.isAnswering = true;
      return true;
    });
  }
  void answered(int socket) {
    open.with([&](State &state) {
      Connection &connection = state.sockets[socket];
      connection.isAnswering = false;
      if (connection.endsAnswered) end(socket, connection);
    });
  }
  void cutIdle() {
    open.with([](State &state) {
      for (auto each = state.sockets.begin(); each != state.sockets.end(); ++each) {
        // Its client may have the whole answer already, and rely on the cut.
        each->endsAnswered = each->isAnswering;
        if (each->requests > 0 && !each->isAnswering) end(each.key(), *each);
      }
    });
  }

private:
  struct Connection {
    quint64 number = 0; ///< unlike any other of this process
    int requests = 0;
    bool isAnswering = false;
    bool endsAnswered = false;
    bool isCut = false;
  };
  struct State {
    QHash<int, Connection> sockets{};
    bool closing = false;
  };

  /// What its client has sent meanwhile can still be read.
  static void end(int socket, Connection &connection) {
    connection.isCut = true;
    cut(socket);
  }

  Locked<State> open;
};

void connectionEnded(void *, void *connections, CRYPTO_EX_DATA *data, int, long, void *);

/// The place in a session where its Connections stand.
int connectionsIndex() {
  static const int index = SSL_get_ex_new_index(0, nullptr, nullptr, nullptr, &connectionEnded);
  return index;
}

/// The same in the context that sessions are made from.
int contextIndex() {
  static const int index = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, nullptr);
  return index;
}

// The library frees a session before it closes its socket, so the number cannot belong to another connection yet.
void connectionEnded(void *session, void *connections, CRYPTO_EX_DATA *, int, long, void *) {
  if (connections) static_cast<Connections *>(connections)->remove(SSL_get_fd(static_cast<SSL *>(session)));
}

void connectionProgress(const SSL *session, int where, int) {
  if ((where & SSL_CB_HANDSHAKE_START) == 0) return;
  if (SSL_get_ex_data(session, connectionsIndex())) return;
  auto *connections = static_cast<Connections *>(SSL_CTX_get_ex_data(SSL_get_SSL_CTX(session), contextIndex()));
  SSL_set_ex_data(const_cast<SSL *>(session), connectionsIndex(), connections);
  connections->add(SSL_get_fd(session));
}

void setUp(SSL_CTX &context, const CertifiedKey &certified, Connections &connections) {
  requireSsl(SSL_CTX_use_certificate(&context, certificateFromPem(certified.certificate).get()) == 1, "certificate");
  requireSsl(SSL_CTX_use_PrivateKey(&context, keyFromPem(certified.key).get()) == 1, "key");
  requireSsl(SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION) == 1, "protocol");
  // Clients come back with the tickets that they are given, which hold all there is to a session.
  SSL_CTX_set_session_cache_mode(&context, SSL_SESS_CACHE_OFF);
  requireSsl(SSL_CTX_set_ex_data(&context, contextIndex(), &connections) == 1, "context data");
  SSL_CTX_set_info_callback(&context, &connectionProgress);
}

/// The library's server with a longer queue.
class TlsServer final : public httplib::SSLServer {
public:
  using SSLServer::SSLServer;
  void lengthenQueue() { ::listen(svr_sock_, kBacklog); }
};

ReceivedRequest requestOf(const httplib::Request &request) {
  ReceivedRequest result{.method = QByteArray::fromStdString(request.method),
                         .hostHeader = QByteArray::fromStdString(request.get_header_value("Host")),
                         .target = QByteArray::fromStdString(request.target),
                         .body = QByteArray::fromStdString(request.body),
                         .isResumed = SSL_session_reused(request.ssl) == 1};
  for (const auto &[name, value] : request.headers) {
    // The library adds these four itself.
    static const std::array kOwn{"REMOTE_ADDR", "REMOTE_PORT", "LOCAL_ADDR", "LOCAL_PORT"};
    if (std::find(kOwn.begin(), kOwn.end(), name) != kOwn.end()) continue;
    result.headers.append({QByteArray::fromStdString(name), QByteArray::fromStdString(value)});
  }
  return result;
}

bool isUncounted(Delivery delivery) {
  return delivery == Delivery::Uncounted || delivery == Delivery::UncountedCut || delivery == Delivery::Deflated
         || delivery == Delivery::DeflatedChunks;
}

bool writeSlice(httplib::DataSink &sink, const QByteArray &body, size_t offset, size_t end) {
  const size_t size = std::min(kWriteSlice, end - offset);
  return sink.write(body.constData() + offset, size);
}

} // namespace

class HttpServer::Private {
public:
  Private(const CertifiedKey &certificate, const Place &place, Handler handler, int requestsPerConnection);
  ~Private();

  quint16 boundPort = 0;
  void start();
  void releaseWaiting();
  Connections connections;

private:
  void setUpServer(int requestsPerConnection);
  void bind(const Place &place);
  void answer(const httplib::Request &request, httplib::Response &response);
  static void setUncountedBody(const ServedAnswer &answer, const Client &client, httplib::Response &response);
  void setBody(const ServedAnswer &answer, const Client &client, httplib::Response &response);

  const Handler handle;
  Locked<std::shared_ptr<const WakeUp>> wakeUp{std::make_shared<const WakeUp>()};
  std::atomic<bool> stopping = false;
  std::latch threadsMade{1};
  TlsServer server;
  std::thread listener;
};

HttpServer::Private::Private(const CertifiedKey &certificate, const Place &place, Handler handler,
                             int requestsPerConnection)
    : handle(std::move(handler)), server([this, &certificate](SSL_CTX &context) {
        setUp(context, certificate, connections);
        return true;
      }) {
  setUpServer(requestsPerConnection);
  bind(place);
}

void HttpServer::Private::start() {
  listener = std::thread([this] { server.listen_after_bind(); });
  // A test may start a process next, and the thread sanitizer crashes where that meets the making of threads.
  threadsMade.wait();
  // stop() does nothing before the listener runs, so the destructor must not come first.
  while (!server.is_running())
    std::this_thread::sleep_for(1ms);
}

void HttpServer::Private::setUpServer(int requestsPerConnection) {
  server.new_task_queue = [this] {
    auto *const threads = new httplib::ThreadPool(kThreadCount);
    threadsMade.count_down();
    return threads;
  };
  server.set_keep_alive_max_count(size_t(requestsPerConnection));
  server.set_keep_alive_timeout(kLongestIdle.count());
  server.set_read_timeout(30s);
  server.set_write_timeout(60s);
  server.set_tcp_nodelay(true);
  // The library's default would let two services share a port.
  server.set_socket_options([](socket_t socket) {
    const int on = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  });
  const auto answerIt = [this](const httplib::Request &request, httplib::Response &response) {
    answer(request, response);
  };
  // Requests without a body are answered before the library matches the path against patterns.
  server.set_pre_routing_handler([answerIt](const httplib::Request &request, httplib::Response &response) {
    if (request.method != "GET" && request.method != "HEAD") return httplib::Server::HandlerResponse::Unhandled;
    answerIt(request, response);
    return httplib::Server::HandlerResponse::Handled;
  });
  server.Post(".*", answerIt);
  // Called once the answer has been handed to the system.
  server.set_logger([this](const httplib::Request &request, const httplib::Response &) {
    // None when the request could not be read.
    if (request.ssl) connections.answered(socketOf(request));
  });
}

void HttpServer::Private::bind(const Place &place) {
  const int bound = place.port == 0                                  ? server.bind_to_any_port(place.address)
                    : server.bind_to_port(place.address, place.port) ? place.port
                                                                     : 0;
  if (bound <= 0) throw std::runtime_error("cannot listen on port " + std::to_string(place.port));
  boundPort = quint16(bound);
  server.lengthenQueue();
}

HttpServer::Private::~Private() {
  stopping = true;
  wakeUp.with([](const auto &current) { current->raise(); });
  connections.cutAll();
  server.stop();
  if (listener.joinable()) listener.join();
}

void HttpServer::Private::releaseWaiting() {
  wakeUp.with([this](std::shared_ptr<const WakeUp> &current) {
    current->raise();
    if (!stopping) current = std::make_shared<const WakeUp>();
  });
}

void HttpServer::Private::answer(const httplib::Request &request, httplib::Response &response) {
  // Taken before the handler decides to wait, so that a release in between is not missed.
  const Client client{const_cast<SSL *>(request.ssl), wakeUp.with([](const auto &current) { return current; })};
  ReceivedRequest received = requestOf(request);
  if (!connections.asked(client.socket(), received)) return;
  const ServedAnswer answer = handle(received);
  if (answer.delay > 0ms) (void)client.wait(answer.delay);
  if (answer.delivery == Delivery::Held) (void)client.wait(std::nullopt);
  if (answer.delivery == Delivery::Held || answer.delivery == Delivery::Dropped) {
    cut(client.socket());
    return;
  }
  if (answer.delivery == Delivery::AfterInterim) {
    constexpr std::string_view kInterim = "HTTP/1.1 103 Early Hints\r\nx-interim: yes\r\n\r\n";
    SSL_write(client.session, kInterim.data(), int(kInterim.size()));
  }
  response.status = answer.status;
  for (const auto &[name, value] : answer.headers)
    response.set_header(name.toStdString(), value.toStdString());
  if (isUncounted(answer.delivery))
    setUncountedBody(answer, client, response);
  else
    setBody(answer, client, response);
}

void HttpServer::Private::setUncountedBody(const ServedAnswer &answer, const Client &client,
                                           httplib::Response &response) {
  constexpr qsizetype kLengthBefore = 4; // what Qt puts in front of the deflated bytes
  const bool deflated = answer.delivery == Delivery::Deflated || answer.delivery == Delivery::DeflatedChunks;
  if (deflated) response.set_header("Transfer-Encoding", "deflate");
  const auto provide = [client, delivery = answer.delivery,
                        body = deflated ? qCompress(answer.body).mid(kLengthBefore)
                                        : answer.body](size_t offset, httplib::DataSink &sink) {
    if (offset < size_t(body.size())) return writeSlice(sink, body, offset, size_t(body.size()));
    if (delivery == Delivery::UncountedCut) cut(client.socket());
    sink.done();
    if (delivery == Delivery::Uncounted || delivery == Delivery::Deflated) client.sayGoodbye();
    return delivery != Delivery::UncountedCut;
  };
  const std::string type = answer.contentType.toStdString();
  if (answer.delivery == Delivery::DeflatedChunks)
    response.set_chunked_content_provider(type, provide);
  else
    response.set_content_provider(type, provide);
}

void HttpServer::Private::setBody(const ServedAnswer &answer, const Client &client, httplib::Response &response) {
  const std::string type = answer.contentType.toStdString();
  if (answer.body.isEmpty()) {
    response.set_content(std::string(), type);
    return;
  }
  const size_t half = size_t(answer.body.size()) / 2;
  const auto provide = [this, half, client, body = answer.body,
                        delivery = answer.delivery](size_t offset, size_t length, httplib::DataSink &sink) {
    if ((delivery != Delivery::Truncated && delivery != Delivery::Slow) || offset > half)
      return writeSlice(sink, body, offset, offset + length);
    if (offset < half) return writeSlice(sink, body, offset, half);
    if (delivery == Delivery::Truncated) return false;
    if (client.wait(std::nullopt) != Waited::Woken || stopping) return false;
    return writeSlice(sink, body, offset, offset + length);
  };
  response.set_content_provider(size_t(answer.body.size()), type, provide);
}

HttpServer::HttpServer(const CertifiedKey &certificate, const Place &place, Handler handler, int requestsPerConnection)
    : d(std::make_unique<Private>(certificate, place, std::move(handler), requestsPerConnection)) {
}

HttpServer::~HttpServer() = default;

void HttpServer::start() {
  d->start();
}

quint16 HttpServer::port() const {
  return d->boundPort;
}

void HttpServer::releaseWaiting() {
  d->releaseWaiting();
}

void HttpServer::closeIdleConnections() {
  d->connections.cutIdle();
}

} // namespace sandbox
