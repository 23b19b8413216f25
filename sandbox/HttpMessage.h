#pragma once

#include <QByteArray>
#include <QList>

#include <chrono>
#include <optional>
#include <utility>

namespace sandbox {

using HeaderList = QList<std::pair<QByteArray, QByteArray>>;

/// The first header of that name in any case; empty when there is none.
[[nodiscard]] QByteArray headerValue(const HeaderList &headers, const QByteArray &name);

/// What stands in @p text before the first @p mark; all of it when there is none.
[[nodiscard]] QByteArray textBefore(const QByteArray &text, char mark);

/// The parameters of a query or a form, decoded, in their order.
class QueryParameters {
public:
  explicit QueryParameters(const QByteArray &encoded);

  [[nodiscard]] bool contains(const QByteArray &name) const { return value(name).has_value(); }
  [[nodiscard]] std::optional<QByteArray> value(const QByteArray &name) const;
  /// Empty when absent.
  [[nodiscard]] QByteArray text(const QByteArray &name) const { return value(name).value_or(QByteArray()); }
  [[nodiscard]] const HeaderList &all() const { return pairs; }

private:
  HeaderList pairs;
};

struct ReceivedRequest {
  QByteArray method{};
  QByteArray hostHeader{}; ///< as sent, with the port
  QByteArray target{};     ///< path and query as on the wire
  HeaderList headers{};
  QByteArray body{};
  quint64 connection = 0; ///< the same for all that come over one connection, and for them alone
  bool isResumed = false; ///< its connection takes up an earlier TLS session

  [[nodiscard]] QByteArray host() const; ///< lower case, without port
  [[nodiscard]] QByteArray rawPath() const;
  [[nodiscard]] QByteArray path() const; ///< percent-decoded
  [[nodiscard]] QueryParameters query() const;
  [[nodiscard]] QByteArray header(const QByteArray &name) const { return headerValue(headers, name); }
};

/// Whether a storage request names its bucket first in the path, as clients do that do not look "BUCKET.HOST" up.
[[nodiscard]] bool namesBucketInPath(const ReceivedRequest &request);

/// How an answer travels; see Fault for the odd ways.
enum class Delivery {
  Whole,
  AfterInterim,
  Truncated,
  Slow,
  Dropped,
  Held,
  Uncounted,
  UncountedCut,
  Deflated,
  DeflatedChunks
};

struct ServedAnswer {
  int status = 200;
  QByteArray contentType{};
  QByteArray body{};
  HeaderList headers{};
  Delivery delivery = Delivery::Whole;
  std::chrono::milliseconds delay{};
};

[[nodiscard]] ServedAnswer redirectTo(const QByteArray &location);
[[nodiscard]] ServedAnswer jsonAnswer(const QByteArray &document);

/// @p text with the characters escaped that XML and HTML give a meaning.
[[nodiscard]] QByteArray escaped(const QByteArray &text);

} // namespace sandbox
