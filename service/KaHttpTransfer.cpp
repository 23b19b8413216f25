#include "service/KaHttpTransfer.h"

#include "platform/ReleasedBy.h"
#include "platform/UserDefaults.h"
#include "service/CurlOutcome.h"
#include "service/HttpStatus.h"
#include "service/KaTrustAnchors.h"

#include <curl/curl.h>
#include <openssl/ssl.h>

#include <algorithm>
#include <atomic>

using namespace Qt::StringLiterals;

namespace {

using Clock = std::chrono::steady_clock;

constexpr qint64 kMostBodyBytes = 64 * 1024 * 1024; ///< of a body that is kept in memory
constexpr qint64 kMostHeaderBytes = 1024 * 1024;
constexpr long kReceiveBufferSize = 256 * 1024;

using platform::ReleasedBy;
using EasyHandle = std::unique_ptr<CURL, ReleasedBy<&curl_easy_cleanup>>;
using MultiHandle = std::unique_ptr<CURLM, ReleasedBy<&curl_multi_cleanup>>;
using HeaderLines = std::unique_ptr<curl_slist, ReleasedBy<&curl_slist_free_all>>;

bool isLibraryReady() {
  static const CURLcode initialized = curl_global_init(CURL_GLOBAL_DEFAULT);
  return initialized == CURLE_OK;
}

std::chrono::milliseconds secondsFromUserDefaults(const QString &key, double builtIn) {
  constexpr double kLongest = 1e6;
  const double stored = platform::standardUserDefaults().doubleValue(key).value_or(builtIn);
  const double seconds = stored > 0 ? std::min(stored, kLongest) : builtIn;
  return std::chrono::milliseconds(static_cast<qint64>(seconds * 1000));
}

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
HeaderLines headerLines(const std::vector<std::pair<QByteArray, QByteArray>> &headers) {
  HeaderLines list(curl_slist_append(nullptr, "Connection: close")); // lest the server waits for another request
  // Else libcurl waits a second for leave to send a long body.
  if (!list || !curl_slist_append(list.get(), "Expect:")) return {};
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

/// One exchange under way: what libcurl's callbacks fill.
class Exchange {
public:
  Exchange(CURL *handle, const HttpRequest &request, const KaTrustAnchors &trusted,
           const KaHttpTransfer::BodySink &bodySink)
      : easy(handle), asksForBody(request.method != "HEAD"), anchors(trusted), sink(bodySink) {}

  /// Makes a new connection's context report here.
  [[nodiscard]] bool prepareTls(SSL_CTX *context) {
    SSL_CTX_set_keylog_callback(context, nullptr); // no session keys into a file that the environment names
    SSL_CTX_set_info_callback(context, &tlsProgress);
    return SSL_CTX_set_ex_data(context, tlsIndex(), this) == 1 && anchors.installInto(context);
  }

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

  /// Grows whenever something arrives or the connection gets a step further.
  [[nodiscard]] qint64 progress() const {
    const auto number = [this](CURLINFO info) {
      curl_off_t value = 0;
      return curl_easy_getinfo(easy, info, &value) == CURLE_OK ? value : 0;
    };
    return headerBytes + answer.bodySize + number(CURLINFO_SIZE_UPLOAD_T) + number(CURLINFO_NAMELOOKUP_TIME_T)
           + number(CURLINFO_CONNECT_TIME_T) + number(CURLINFO_APPCONNECT_TIME_T);
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
    return !mayHaveBody || answer.contentLength >= 0 || isChunked || hasGoodbye;
  }

  static int tlsIndex() {
    static const int index = SSL_CTX_get_ex_new_index(0, nullptr, nullptr, nullptr, nullptr);
    return index;
  }

  static void tlsProgress(const SSL *session, int where, int alert) {
    const bool isGoodbye = (where & SSL_CB_READ_ALERT) == SSL_CB_READ_ALERT && (alert & 0xFF) == SSL_AD_CLOSE_NOTIFY;
    auto *const exchange = static_cast<Exchange *>(SSL_CTX_get_ex_data(SSL_get_SSL_CTX(session), tlsIndex()));
    if (isGoodbye && exchange) exchange->hasGoodbye = true;
  }

  [[nodiscard]] long status() const {
    long code = 0;
    return curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &code) == CURLE_OK ? code : 0;
  }

  CURL *const easy;
  const bool asksForBody;
  const KaTrustAnchors &anchors;
  const KaHttpTransfer::BodySink &sink;
  HttpAnswer answer;
  qint64 headerBytes = 0;
  bool headComplete = false;
  bool isChunked = false;
  bool hasGoodbye = false;
};

std::size_t takeHeaderLine(char *bytes, std::size_t size, std::size_t count, void *exchange) {
  return static_cast<Exchange *>(exchange)->takeHeaderLine(bytes, size * count) ? size * count : 0;
}

std::size_t takeBody(char *bytes, std::size_t size, std::size_t count, void *exchange) {
  return static_cast<Exchange *>(exchange)->takeBody(bytes, size * count) ? size * count : 0;
}

CURLcode prepareTls(CURL *, void *context, void *exchange) {
  auto *const tls = static_cast<SSL_CTX *>(context);
  return static_cast<Exchange *>(exchange)->prepareTls(tls) ? CURLE_OK : CURLE_SSL_CACERT_BADFILE;
}

/// Keeps an easy handle on a multi handle; its connection closes with it.
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
  explicit Private(std::function<bool()> end)
      : shallEnd(std::move(end)), idleLimit(secondsFromUserDefaults(u"timeoutIntervalForRequest"_s, 10)),
        wholeLimit(secondsFromUserDefaults(u"timeoutIntervalForResource"_s, 60)),
        anchors(platform::standardUserDefaults().string(u"trustedCertificatesFile"_s).value_or(QString())),
        multi(isLibraryReady() ? curl_multi_init() : nullptr) {}

  [[nodiscard]] bool prepare(const EasyHandle &easy, const HttpRequest &request, const QByteArray &url,
                             const HeaderLines &headers, Exchange &exchange) const;
  [[nodiscard]] TransportOutcome run(const EasyHandle &easy, const HttpRequest &request, const Exchange &exchange);
  void cancel();

  /// None while no thread is in perform(); only cancel() makes it Cancelled.
  enum class Flight { None, UnderWay, Cancelled };
  std::atomic<Flight> flight = Flight::None;

  // Fixed after construction; what the handles lead to belongs to the thread in perform().
  const std::function<bool()> shallEnd;
  const std::chrono::milliseconds idleLimit;
  const std::chrono::milliseconds wholeLimit;
  const KaTrustAnchors anchors;
  const MultiHandle multi;

private:
  [[nodiscard]] bool hasToEnd() const { return flight == Flight::Cancelled || (shallEnd && shallEnd()); }
  [[nodiscard]] TransportOutcome finishedOutcome();
};

KaHttpTransfer::KaHttpTransfer(std::function<bool()> shallEnd) : d(std::make_unique<Private>(std::move(shallEnd))) {
}
KaHttpTransfer::~KaHttpTransfer() = default;

HttpAnswer KaHttpTransfer::perform(const HttpRequest &request, const BodySink &sink) {
  // A handle that refused an exchange before it had a connection would refuse every later one, too.
  const EasyHandle easy(d->multi ? curl_easy_init() : nullptr);
  Exchange exchange(easy.get(), request, d->anchors, sink);
  const QByteArray url = wireUrl(request.url);
  const HeaderLines headers = headerLines(request.headers);
  if (!d->prepare(easy, request, url, headers, exchange)) return exchange.finished(TransportOutcome::Failed);

  [[maybe_unused]] const Private::Flight before = d->flight.exchange(Private::Flight::UnderWay);
  Q_ASSERT_X(before == Private::Flight::None, "KaHttpTransfer", "two threads at a time");
  const TransportOutcome outcome = d->run(easy, request, exchange);
  d->flight = Private::Flight::None;
  return exchange.finished(outcome);
}

bool KaHttpTransfer::shallEnd() const {
  return d->shallEnd && d->shallEnd();
}

void KaHttpTransfer::cancel() {
  d->cancel();
}

void KaHttpTransfer::Private::cancel() {
  Flight expected = Flight::UnderWay;
  // Fails only for a broken handle, on which nothing is under way.
  if (flight.compare_exchange_strong(expected, Flight::Cancelled)) static_cast<void>(curl_multi_wakeup(multi.get()));
}

bool KaHttpTransfer::Private::prepare(const EasyHandle &easy, const HttpRequest &request, const QByteArray &url,
                                      const HeaderLines &headers, Exchange &exchange) const {
  if (!easy || !headers) return false;
  Options options(easy.get());
  options.set(CURLOPT_URL, url.constData())
      .set(CURLOPT_PROTOCOLS_STR, "https")
      .set(CURLOPT_PATH_AS_IS, 1L)
      .set(CURLOPT_HTTPHEADER, headers.get())
      .set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1)) // one request a connection gains nothing
      .set(CURLOPT_FOLLOWLOCATION, 0L)
      .set(CURLOPT_NOPROXY, "*") // or the environment names one
      .set(CURLOPT_NOSIGNAL, 1L)
      .set(CURLOPT_QUICK_EXIT, 1L) // a name look-up under way does not hold up a cancel
      .set(CURLOPT_FRESH_CONNECT, 1L)
      .set(CURLOPT_FORBID_REUSE, 1L)
      .set(CURLOPT_BUFFERSIZE, kReceiveBufferSize);
  options.set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2))
      .set(CURLOPT_SSL_SESSIONID_CACHE, 0L)
      .set(CURLOPT_CAINFO, static_cast<const char *>(nullptr)) // the anchors are installed ready-made
      .set(CURLOPT_CAPATH, static_cast<const char *>(nullptr))
      .set(CURLOPT_SSL_CTX_FUNCTION, &prepareTls)
      .set(CURLOPT_SSL_CTX_DATA, &exchange);
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

TransportOutcome KaHttpTransfer::Private::run(const EasyHandle &easy, const HttpRequest &request,
                                              const Exchange &exchange) {
  const Attachment attachment(multi.get(), easy.get());
  if (!attachment.holds()) return TransportOutcome::Failed;

  // One that has not gone out is not missed.
  if (hasToEnd()) return TransportOutcome::Failed;
  const Clock::time_point start = Clock::now();
  const Clock::time_point waitEnd = start + request.wait;
  std::optional<Clock::time_point> graceEnd;
  Clock::time_point lastStep = start;
  qint64 progress = 0;
  for (;;) {
    if (!graceEnd && hasToEnd()) graceEnd = Clock::now() + request.endGrace;
    if (graceEnd && Clock::now() >= *graceEnd) break;
    int running = 0;
    if (curl_multi_perform(multi.get(), &running) != CURLM_OK) break;
    if (running == 0) return finishedOutcome();

    const Clock::time_point now = Clock::now();
    if (const qint64 newProgress = exchange.progress(); newProgress != progress) {
      progress = newProgress;
      lastStep = now;
    }
    const Clock::time_point limit = std::min({lastStep + idleLimit, start + wholeLimit, graceEnd.value_or(waitEnd)});
    if (now >= waitEnd) return TransportOutcome::WaitRanOut;
    if (now >= limit) break;
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(std::min(limit, waitEnd) - now);
    if (curl_multi_poll(multi.get(), nullptr, 0, static_cast<int>(rest.count()), nullptr) != CURLM_OK) break;
  }
  return TransportOutcome::Failed;
}

TransportOutcome KaHttpTransfer::Private::finishedOutcome() {
  int left = 0;
  const CURLMsg *const message = curl_multi_info_read(multi.get(), &left);
  if (!message || message->msg != CURLMSG_DONE) return TransportOutcome::Failed;
  return transportOutcome(message->data.result);
}
