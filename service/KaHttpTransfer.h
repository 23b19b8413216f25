#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

struct HttpRequest {
  QByteArray method = "GET";
  QString url{}; ///< used as it stands; what HTTP cannot carry is percent-encoded at the wire
  std::vector<std::pair<QByteArray, QByteArray>> headers{};
  std::optional<QByteArray> body{};
  std::chrono::milliseconds wait = std::chrono::seconds(600); ///< outer bound, after the transport's own limits
  /// So long an answer is still waited for once the exchange is to end: for one that cannot be had a second time.
  std::chrono::milliseconds endGrace{};
};

/// How an exchange ended below HTTP.
enum class TransportOutcome {
  Answered,               ///< a whole answer arrived
  SecureConnectionFailed, ///< TLS or certificate failure
  Failed,                 ///< anything else: unreachable, cut short, silent for too long, cancelled, too large, or
                          ///< in a transfer encoding that nobody asked for
  WaitRanOut,             ///< HttpRequest::wait is over
};

struct HttpAnswer {
  TransportOutcome outcome = TransportOutcome::Failed;
  qint64 status = 0; ///< 0 unless Answered, or refused by the sink
  std::vector<std::pair<QByteArray, QByteArray>> headers;
  QByteArray body;           ///< empty when a sink took it
  qint64 bodySize = 0;       ///< bytes received, by a sink too
  qint64 contentLength = -1; ///< announced length, -1 when none was
  bool sinkRefused = false;  ///< the sink returned false; the outcome is Failed
};

class KaTransport;

/// One HTTPS exchange at a time, certificates and host names checked, redirects not followed, no cookie.
class KaHttpTransfer {
public:
  /// Takes the body of a 200 answer piece by piece; false ends the exchange.
  using BodySink = std::function<bool(const char *bytes, std::size_t count)>;
  /// Asked on the thread that is in perform(); once it says yes, exchanges end at once as Failed (one that waits after
  /// cancel() woke it). May be empty.
  using ShallEnd = std::function<bool()>;
  enum class Connections {
    Fresh, ///< one for each exchange
    Kept,  ///< from one exchange to the next, for 20 s; one that is found dead, or stays silent, before a byte of an
           ///< answer costs a fresh one. TLS sessions are resumed
  };

  /// @param transport  what it has in common with others.
  explicit KaHttpTransfer(std::shared_ptr<KaTransport> transport, Connections connections = Connections::Fresh);
  ~KaHttpTransfer();
  KaHttpTransfer(const KaHttpTransfer &) = delete;
  KaHttpTransfer &operator=(const KaHttpTransfer &) = delete;

  /// Blocks until the exchange has ended. One thread at a time.
  [[nodiscard]] HttpAnswer perform(const HttpRequest &request, const BodySink &sink = {},
                                   const ShallEnd &shallEnd = {});

  /// Ends the exchange in flight, at once but for its endGrace; without one it does nothing. Any thread.
  void cancel();

private:
  class Private;
  std::unique_ptr<Private> d;
};
