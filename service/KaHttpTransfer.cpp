#include "service/KaHttpTransfer.h"

#include "platform/Proxies.h"
#include "platform/ReleasedBy.h"
#include "service/CurlOutcome.h"
#include "service/HttpStatus.h"
#include "service/KaTransport.h"
#include "service/ServiceClock.h"

#include <curl/curl.h>
#include <openssl/ssl.h>

#include <algorithm>
#include <atomic>

namespace {

using Clock = std::chrono::steady_clock;

constexpr qint64 kMostBodyBytes = 64 * 1024 * 1024; ///< of a body that is kept in memory
constexpr qint64 kMostHeaderBytes = 1024 * 1024;
constexpr long kReceiveBufferSize = 256 * 1024;
constexpr long kKeptFor = 20; ///< seconds, a connection that is not used

using platform::ReleasedBy;
using EasyHandle = std::unique_ptr<CURL, ReleasedBy<&curl_easy_cleanup>>;
using MultiHandle = std::unique_ptr<CURLM, ReleasedBy<&curl_multi_cleanup>>;
using HeaderLines = std::unique_ptr<curl_slist, ReleasedBy<&curl_slist_free_all>>;

QByteArray wireUrl(const QString &url) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  QByteArray wire;
  for (const char c : url.toUtf8()) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > 0x20 && byte < 0x7F)
      wire += c;
    else
      wire.append('%').append(kDigits[byte >> 4]).append(kDigits[byte & 0xF]);
  }
  return wire;
}

/// @return null when a header cannot be sent as a line of its own.
HeaderLines headerLines(const std::vector<std::pair<QByteArray, QByteArray>> &headers, bool keepsConnection) {
  // Else libcurl waits a second for leave to send a long body.
  HeaderLines list(curl_slist_append(nullptr, "Expect:"));
  if (!list) return {};
  // Lest the server waits for another request.
  if (!keepsConnection && !curl_slist_append(list.get(), "Connection: close")) return {};
  for (const auto &[name, value] : headers) {
    if (value.contains('\r') || value.contains('\n') || value.contains('\0')) return {};
    const QByteArray line = value.isEmpty() ? name + ';' : name + ": " + value;
    if (!curl_slist_append(list.get(), line.constData())) return {};
  }
  return list;
}

/// Sets options until one is refused.
class Options {
public:
  explicit Options(CURL *handle) : easy(handle) {}

  template <class T> Options &set(CURLoption option, T value) {
    if (accepted) accepted = curl_easy_setopt(easy, option, value) == CURLE_OK;
    return *this;
  }
  [[nodiscard]] bool allAccepted() const { return accepted; }

private:
  CURL *easy;
  bool accepted = true;
};

/// Empty strings, lest libcurl asks the environment by itself.
void setProxy(Options &options, const ProxyAddress &way) {
  options.set(CURLOPT_PROXY, way.url.constData()).set(CURLOPT_NOPROXY, "");
  if (way.isDirect()) return;
  // Not by tickets (GSS-API), which libcurl would prefer: they are nobody's name and password, where there is none it
  // tries nothing else, and to ask for one blocks.
  options.set(CURLOPT_SOCKS5_AUTH, static_cast<long>(CURLAUTH_BASIC));
  options.set(CURLOPT_HTTPPROXYTUNNEL, 1L)
      .set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L) // they are not the service's
      .set(CURLOPT_HEADEROPT, static_cast<long>(CURLHEADER_SEPARATE))
      .set(CURLOPT_PROXY_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2))
      .set(CURLOPT_PROXY_CAINFO, static_cast<const char *>(nullptr)) // as for the host
      .set(CURLOPT_PROXY_CAPATH, static_cast<const char *>(nullptr));
  if (way.user.isEmpty()) return;
  // A round trip more for each tunnel than to send the password unasked; but where the proxy knows a way that does not
  // show it to everybody between, that one is taken.
  options.set(CURLOPT_PROXYAUTH, static_cast<long>(CURLAUTH_BASIC | CURLAUTH_DIGEST | CURLAUTH_NTLM))
      .set(CURLOPT_PROXYUSERNAME, way.user.constData())
      .set(CURLOPT_PROXYPASSWORD, way.password.constData());
}

/// Watches the TLS of the latest connection. Outlives the connections.
class TlsWatch {
public:
  explicit TlsWatch(const KaTrustAnchors &trusted) : anchors(trusted) {}

  /// Makes a new connection's context report here.
  [[nodiscard]] bool prepare(SSL_CTX *context) {
    SSL_CTX_set_keylog_callback(context, nullptr); // no session keys into a file that the environment names
    SSL_CTX_set_info_callback(context, &progress);
    latest = context; // with a proxy that speaks TLS itself, the host's comes after it
    goodbye = false;
    return SSL_CTX_set_ex_data(context, index(), this) == 1 && anchors.installInto(context);
  }
  /// The peer has told that nothing more will come.
  [[nodiscard]] bool hasGoodbye() const { return goodbye; }

private:
  static int index() {
    static const int number = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, nullptr);
    return number;
  }

  static void progress(const SSL *session, int where, int alert) {
    const SSL_CTX *const context = SSL_get_SSL_CTX(session);
    auto *const watch = static_cast<TlsWatch *>(SSL_CTX_get_ex_data(context, index()));
    const bool isGoodbye = (where & SSL_CB_READ_ALERT) == SSL_CB_READ_ALERT && (alert & 0xFF) == SSL_AD_CLOSE_NOTIFY;
    // A connection of before may say its goodbye late, and a proxy's says nothing of the host.
    if (watch && isGoodbye && context == watch->latest) watch->goodbye = true;
  }

  const KaTrustAnchors &anchors;
  const SSL_CTX *latest = nullptr; ///< of the latest connection, to the host itself
  bool goodbye = false;
};

/// One exchange under way: what libcurl's callbacks fill.
class Exchange {
public:
  Exchange(CURL *handle, const HttpRequest &request, const TlsWatch &watch, const KaHttpTransfer::BodySink &bodySink)
      : easy(handle), asksForBody(request.method != "HEAD"), tls(watch), sink(bodySink) {}

  [[nodiscard]] bool takeHeaderLine(const char *bytes, std::size_t count) {
    headerBytes += static_cast<qint64>(count);
    if (headerBytes > kMostHeaderBytes) return false;
    const QByteArray line = QByteArray::fromRawData(bytes, static_cast<qsizetype>(count)).trimmed();
    if (line.startsWith("HTTP/")) {
      answer.headers.clear(); // an interim answer came before
      headComplete = false;
      isChunked = false;
    }
    headComplete = headComplete || line.isEmpty();
    if (line.isEmpty()) ServiceClock::noteAnswer(answer.headers);
    const qsizetype colon = line.indexOf(':');
    if (colon <= 0) return true;
    const auto &[name, value] = answer.headers.emplace_back(line.left(colon), line.mid(colon + 1).trimmed());
    return name.compare("Transfer-Encoding", Qt::CaseInsensitive) != 0 || takeTransferEncoding(value);
  }

  [[nodiscard]] bool takeBody(const char *bytes, std::size_t count) {
    answer.bodySize += static_cast<qint64>(count);
    if (sink && meaningOf(status()).document == StatusMeaning::Document::There) {
      answer.sinkRefused = !sink(bytes, count);
      return !answer.sinkRefused;
    }
    if (answer.bodySize > kMostBodyBytes) return false;
    answer.body.append(bytes, static_cast<qsizetype>(count));
    return true;
  }

  /// Whether it went out on a kept connection of which not a byte came back.
  [[nodiscard]] bool hasFoundKeptOneDead() const {
    long made = 0;
    return !hasHeard() && curl_easy_getinfo(easy, CURLINFO_NUM_CONNECTS, &made) == CURLE_OK && made == 0;
  }

  /// Whether the proxy, or the host where there is none, has taken a connection, be it a kept one.
  [[nodiscard]] bool isConnected() const {
    return hasHeard() || number<long>(CURLINFO_REQUEST_SIZE) > 0 || number<curl_off_t>(CURLINFO_CONNECT_TIME_T) > 0;
  }
  /// Whether it is known where the proxy is, or the host where there is none.
  [[nodiscard]] bool isLookedUp() const { return isConnected() || number<curl_off_t>(CURLINFO_NAMELOOKUP_TIME_T) > 0; }
  /// Something of the host's answer has come, and what the sink has taken cannot be taken back.
  [[nodiscard]] bool hasHeard() const { return headerBytes > 0; }

  /// Grows whenever something arrives or the connection gets a step further.
  [[nodiscard]] qint64 progress() const {
    qint64 sum = headerBytes + answer.bodySize;
    for (const CURLINFO info :
         {CURLINFO_SIZE_UPLOAD_T, CURLINFO_NAMELOOKUP_TIME_T, CURLINFO_CONNECT_TIME_T, CURLINFO_APPCONNECT_TIME_T})
      sum += number<curl_off_t>(info);
    // A proxy's part: what it was asked, and what it said.
    return sum + number<long>(CURLINFO_REQUEST_SIZE) + number<long>(CURLINFO_HTTP_CONNECTCODE);
  }

  [[nodiscard]] HttpAnswer finished(TransportOutcome outcome) {
    curl_off_t announced = -1;
    if (curl_easy_getinfo(easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &announced) == CURLE_OK)
      answer.contentLength = announced;
    const bool isWhole = headComplete && hasEndOfBody();
    answer.outcome = outcome == TransportOutcome::Answered && !isWhole ? TransportOutcome::Failed : outcome;
    if (answer.outcome == TransportOutcome::Answered || answer.sinkRefused) answer.status = status();
    if (answer.outcome != TransportOutcome::Answered) {
      answer.contentLength = -1;
      answer.headers.clear();
      answer.body.clear();
    }
    return std::move(answer);
  }

private:
  template <class T> [[nodiscard]] T number(CURLINFO info) const {
    T value = 0;
    return curl_easy_getinfo(easy, info, &value) == CURLE_OK ? value : 0;
  }

  /// libcurl undoes any encoding, asked for or not, so that a few bytes could fill a disk: chunks alone are taken.
  [[nodiscard]] bool takeTransferEncoding(const QByteArray &encoding) {
    isChunked = encoding.compare("chunked", Qt::CaseInsensitive) == 0;
    return isChunked;
  }

  /// Whether an end of the body has been told: by its length, by its chunks or by the peer's goodbye. libcurl takes a
  /// connection that somebody cut for the end, too.
  [[nodiscard]] bool hasEndOfBody() const {
    constexpr long kNoContent = 204;
    constexpr long kNotModified = 304;
    const bool mayHaveBody = asksForBody && status() != kNoContent && status() != kNotModified;
    return !mayHaveBody || answer.contentLength >= 0 || isChunked || tls.hasGoodbye();
  }

  [[nodiscard]] long status() const {
    long code = 0;
    return curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &code) == CURLE_OK ? code : 0;
  }

  CURL *const easy;
  const bool asksForBody;
  const TlsWatch &tls;
  const KaHttpTransfer::BodySink &sink;
  HttpAnswer answer;
  qint64 headerBytes = 0;
  bool headComplete = false;
  bool isChunked = false;
};

std::size_t takeHeaderLine(char *bytes, std::size_t size, std::size_t count, void *exchange) {
  return static_cast<Exchange *>(exchange)->takeHeaderLine(bytes, size * count) ? size * count : 0;
}

std::size_t takeBody(char *bytes, std::size_t size, std::size_t count, void *exchange) {
  return static_cast<Exchange *>(exchange)->takeBody(bytes, size * count) ? size * count : 0;
}

CURLcode prepareTls(CURL *, void *context, void *watch) {
  const bool isPrepared = static_cast<TlsWatch *>(watch)->prepare(static_cast<SSL_CTX *>(context));
  return isPrepared ? CURLE_OK : CURLE_SSL_CACERT_BADFILE;
}

/// Keeps an easy handle on a multi handle; a connection that is not kept, or at work, closes with it.
class Attachment {
public:
  Attachment(CURLM *multiHandle, CURL *easyHandle)
      : multi(multiHandle), easy(easyHandle), attached(curl_multi_add_handle(multi, easy) == CURLM_OK) {}
  ~Attachment() {
    if (attached) curl_multi_remove_handle(multi, easy);
  }
  Attachment(const Attachment &) = delete;
  Attachment &operator=(const Attachment &) = delete;

  [[nodiscard]] bool holds() const { return attached; }

private:
  CURLM *const multi;
  CURL *const easy;
  const bool attached;
};

} // namespace

class KaHttpTransfer::Private {
public:
  Private(std::shared_ptr<KaTransport> with, Connections kind)
      : keepsConnection(kind == Connections::Kept), transport(std::move(with)), tls(transport->anchors),
        multi(transport->isReady() ? curl_multi_init() : nullptr) {
    if (multi) curl_multi_setopt(multi.get(), CURLMOPT_MAXCONNECTS, 1L);
  }

  [[nodiscard]] HttpAnswer exchange(const HttpRequest &request, const BodySink &sink, const ShallEnd &shallEnd);
  void cancel();

  /// None while no thread is in perform(); only cancel() makes it Cancelled.
  enum class Flight { None, UnderWay, Cancelled };
  std::atomic<Flight> flight = Flight::None;
  const bool keepsConnection;

private:
  /// What one exchange goes by, however many times it is tried.
  struct Order {
    const HttpRequest &request;
    const BodySink &sink;
    const ShallEnd &shallEnd;
    const Clock::time_point start = Clock::now(); ///< of the limits
  };
  struct Attempt {
    const ProxyAddress &way;
    bool ipv4Alone;
    bool isFresh = true;
  };
  struct Tried {
    HttpAnswer answer;
    bool isWorthAnother = false; ///< on a fresh connection
    bool isUnreachable = false;  ///< another way may lead there
    bool isLookedUp = false;
  };
  struct Ended {
    TransportOutcome outcome = TransportOutcome::Failed;
    bool isUnreachable = false;
  };
  [[nodiscard]] std::vector<ProxyAddress> waysTo(const Order &order);
  [[nodiscard]] Tried exchangeBy(const Order &order, const ProxyAddress &way);
  [[nodiscard]] Tried exchangeOnce(const Order &order, const Attempt &attempt);
  [[nodiscard]] bool prepare(const EasyHandle &easy, const HttpRequest &request, const QByteArray &url,
                             const HeaderLines &headers, Exchange &exchange, const Attempt &attempt);
  [[nodiscard]] Ended run(const EasyHandle &easy, const Order &order, const Exchange &exchange);
  [[nodiscard]] bool hasToEnd(const ShallEnd &shallEnd) const {
    return flight == Flight::Cancelled || (shallEnd && shallEnd());
  }
  [[nodiscard]] Ended finishedOutcome();

  // Fixed after construction; what the handles lead to belongs to the thread in perform().
  const std::shared_ptr<KaTransport> transport;
  TlsWatch tls;
  const MultiHandle multi;
};

KaHttpTransfer::KaHttpTransfer(std::shared_ptr<KaTransport> transport, Connections connections)
    : d(std::make_unique<Private>(std::move(transport), connections)) {
}
KaHttpTransfer::~KaHttpTransfer() = default;

HttpAnswer KaHttpTransfer::perform(const HttpRequest &request, const BodySink &sink, const ShallEnd &shallEnd) {
  [[maybe_unused]] const Private::Flight before = d->flight.exchange(Private::Flight::UnderWay);
  Q_ASSERT_X(before == Private::Flight::None, "KaHttpTransfer", "two threads at a time");
  HttpAnswer answer = d->exchange(request, sink, shallEnd);
  d->flight = Private::Flight::None;
  return answer;
}

void KaHttpTransfer::cancel() {
  d->cancel();
}

void KaHttpTransfer::Private::cancel() {
  Flight expected = Flight::UnderWay;
  // Fails only for a broken handle, on which nothing is under way.
  if (flight.compare_exchange_strong(expected, Flight::Cancelled)) static_cast<void>(curl_multi_wakeup(multi.get()));
}

HttpAnswer KaHttpTransfer::Private::exchange(const HttpRequest &request, const BodySink &sink,
                                             const ShallEnd &shallEnd) {
  const Order order{request, sink, shallEnd};
  Tried tried;
  for (const ProxyAddress &way : waysTo(order)) {
    tried = exchangeBy(order, way);
    if (tried.answer.outcome == TransportOutcome::Answered) transport->proxies.noteReached(way);
    if (!tried.isUnreachable) break;
    transport->proxies.noteUnreachable(way, order.start);
  }
  return std::move(tried.answer);
}

/// The ways in their order. A look-up that takes long, as of a script that cannot be fetched, counts as none, as
/// browsers do it: none is what it says in the end. Empty when the exchange is to end.
std::vector<ProxyAddress> KaHttpTransfer::Private::waysTo(const Order &order) {
  const QByteArray origin = proxiedOrigin(order.request.url);
  if (origin.isEmpty() || !multi) return {ProxyAddress()};
  const Clock::duration patience = std::min(transport->idleLimit, transport->wholeLimit) / 2;
  const platform::ProxyQuestion question(origin, [this] { static_cast<void>(curl_multi_wakeup(multi.get())); });
  for (;;) {
    if (hasToEnd(order.shallEnd)) return {};
    if (const auto told = question.answer()) return transport->proxies.inOrder(proxyAddresses(*told));
    const auto end = std::min(question.busySince() + patience, order.start + transport->wholeLimit / 2);
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    if (rest.count() <= 0) return {ProxyAddress()};
    if (curl_multi_poll(multi.get(), nullptr, 0, static_cast<int>(rest.count()), nullptr) != CURLM_OK) return {};
  }
}

KaHttpTransfer::Private::Tried KaHttpTransfer::Private::exchangeBy(const Order &order, const ProxyAddress &way) {
  const bool ipv4Alone = transport->families.isIPv4Alone();
  Tried tried = exchangeOnce(order, {way, ipv4Alone, !keepsConnection});
  if (tried.isWorthAnother) tried = exchangeOnce(order, {way, ipv4Alone});
  if (!tried.isUnreachable || tried.isLookedUp) return tried;
  tried = exchangeOnce(order, {way, !ipv4Alone});
  if (tried.isLookedUp) transport->families.noteAnswered(!ipv4Alone);
  return tried;
}

KaHttpTransfer::Private::Tried KaHttpTransfer::Private::exchangeOnce(const Order &order, const Attempt &attempt) {
  const HttpRequest &request = order.request;
  // A handle that refused an exchange before it had a connection would refuse every later one, too.
  const EasyHandle easy(multi ? curl_easy_init() : nullptr);
  Exchange exchange(easy.get(), request, tls, order.sink);
  const QByteArray url = wireUrl(request.url);
  const HeaderLines headers = headerLines(request.headers, keepsConnection);
  if (!prepare(easy, request, url, headers, exchange, attempt)) return {exchange.finished(TransportOutcome::Failed)};
  const auto [outcome, isUnreachable] = run(easy, order, exchange);
  const bool hasFailed = outcome == TransportOutcome::Failed || outcome == TransportOutcome::SecureConnectionFailed;
  const bool mayGoOn = hasFailed && !hasToEnd(order.shallEnd);
  const bool isWorthAnother = !attempt.isFresh && mayGoOn && exchange.hasFoundKeptOneDead();
  const bool heard = exchange.hasHeard();
  const bool isLookedUp = exchange.isLookedUp();
  return {exchange.finished(outcome), isWorthAnother, mayGoOn && isUnreachable && !heard, isLookedUp};
}

bool KaHttpTransfer::Private::prepare(const EasyHandle &easy, const HttpRequest &request, const QByteArray &url,
                                      const HeaderLines &headers, Exchange &exchange, const Attempt &attempt) {
  if (!easy || !headers) return false;
  Options options(easy.get());
  options.set(CURLOPT_URL, url.constData())
      .set(CURLOPT_PROTOCOLS_STR, "https")
      .set(CURLOPT_PATH_AS_IS, 1L)
      .set(CURLOPT_HTTPHEADER, headers.get())
      .set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1)) // one request at a time gains nothing
      .set(CURLOPT_FOLLOWLOCATION, 0L)
      .set(CURLOPT_NOSIGNAL, 1L)
      .set(CURLOPT_QUICK_EXIT, 1L) // a name look-up under way does not hold up a cancel
      .set(CURLOPT_IPRESOLVE, static_cast<long>(attempt.ipv4Alone ? CURL_IPRESOLVE_V4 : CURL_IPRESOLVE_WHATEVER))
      .set(CURLOPT_FRESH_CONNECT, attempt.isFresh ? 1L : 0L)
      .set(CURLOPT_FORBID_REUSE, keepsConnection ? 0L : 1L)
      .set(CURLOPT_MAXAGE_CONN, kKeptFor)
      .set(CURLOPT_BUFFERSIZE, kReceiveBufferSize);
  options.set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2))
      .set(CURLOPT_SSL_SESSIONID_CACHE, keepsConnection ? 1L : 0L)
      .set(CURLOPT_CAINFO, static_cast<const char *>(nullptr)) // the anchors are installed ready-made
      .set(CURLOPT_CAPATH, static_cast<const char *>(nullptr))
      .set(CURLOPT_SSL_CTX_FUNCTION, &prepareTls)
      .set(CURLOPT_SSL_CTX_DATA, &tls);
  setProxy(options, attempt.way);
  if (keepsConnection) options.set(CURLOPT_SHARE, static_cast<CURLSH *>(transport->sessions()));
  options.set(CURLOPT_HEADERFUNCTION, &takeHeaderLine)
      .set(CURLOPT_HEADERDATA, &exchange)
      .set(CURLOPT_WRITEFUNCTION, &takeBody)
      .set(CURLOPT_WRITEDATA, &exchange);
  if (request.body)
    options.set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body->size()))
        .set(CURLOPT_POSTFIELDS, request.body->constData());
  if (request.method == "HEAD")
    options.set(CURLOPT_NOBODY, 1L);
  else
    options.set(CURLOPT_CUSTOMREQUEST, request.method.constData());
  return options.allAccepted();
}

KaHttpTransfer::Private::Ended KaHttpTransfer::Private::run(const EasyHandle &easy, const Order &order,
                                                            const Exchange &exchange) {
  const Attachment attachment(multi.get(), easy.get());
  if (!attachment.holds()) return {};

  // One that has not gone out is not missed.
  if (hasToEnd(order.shallEnd)) return {};
  const Clock::time_point waitEnd = order.start + order.request.wait;
  std::optional<Clock::time_point> graceEnd;
  Clock::time_point lastStep = Clock::now();
  qint64 progress = 0;
  for (;;) {
    if (!graceEnd && hasToEnd(order.shallEnd)) graceEnd = Clock::now() + order.request.endGrace;
    if (graceEnd && Clock::now() >= *graceEnd) return {};
    int running = 0;
    if (curl_multi_perform(multi.get(), &running) != CURLM_OK) return {};
    if (running == 0) return finishedOutcome();

    const Clock::time_point now = Clock::now();
    if (const qint64 newProgress = exchange.progress(); newProgress != progress) {
      progress = newProgress;
      lastStep = now;
    }
    const auto patience = exchange.isLookedUp() ? transport->idleLimit : transport->idleLimit / 2; // of two questions
    const Clock::time_point limit =
        std::min({lastStep + patience, order.start + transport->wholeLimit, graceEnd.value_or(waitEnd)});
    if (now >= waitEnd) return {TransportOutcome::WaitRanOut};
    if (now >= limit)
      return {TransportOutcome::Failed, !exchange.isConnected() && now < order.start + transport->wholeLimit};
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(std::min(limit, waitEnd) - now);
    if (curl_multi_poll(multi.get(), nullptr, 0, static_cast<int>(rest.count()), nullptr) != CURLM_OK) return {};
  }
}

KaHttpTransfer::Private::Ended KaHttpTransfer::Private::finishedOutcome() {
  int left = 0;
  const CURLMsg *const message = curl_multi_info_read(multi.get(), &left);
  if (!message || message->msg != CURLMSG_DONE) return {};
  long proxyError = 0;
  curl_easy_getinfo(message->easy_handle, CURLINFO_PROXY_ERROR, &proxyError);
  return {transportOutcome(message->data.result), saysUnreachable(message->data.result, proxyError)};
}
