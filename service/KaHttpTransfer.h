#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
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

/// One HTTPS exchange at a time: a fresh connection each, certificates and host names checked, redirects not followed,
/// no cookie. Limits and extra trust anchors come from the user defaults "timeoutIntervalForRequest",
/// "timeoutIntervalForResource" (seconds) and "trustedCertificatesFile", read when the object is made.
class KaHttpTransfer {
public:
  /// Takes the body of a 200 answer piece by piece; false ends the exchange.
  using BodySink = std::function<bool(const char *bytes, std::size_t count)>;

  /// @param shallEnd  asked on the thread that is in perform(); once it says yes, exchanges end at once as Failed (one
  /// that waits after cancel() woke it). May be empty.
  explicit KaHttpTransfer(std::function<bool()> shallEnd = {});
  ~KaHttpTransfer();
  KaHttpTransfer(const KaHttpTransfer &) = delete;
  KaHttpTransfer &operator=(const KaHttpTransfer &) = delete;

  /// Blocks until the exchange has ended. One thread at a time.
  [[nodiscard]] HttpAnswer perform(const HttpRequest &request, const BodySink &sink = {});

  /// What the constructor's function says now. On the thread of perform().
  [[nodiscard]] bool shallEnd() const;

  /// Ends the exchange in flight, at once but for its endGrace; without one it does nothing. Any thread.
  void cancel();

private:
  class Private;
  std::unique_ptr<Private> d;
};
