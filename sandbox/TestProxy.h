#pragma once

#include <QByteArray>
#include <QList>
#include <QtGlobal>

#include <memory>

namespace sandbox {

struct TestProxyOptions {
  QByteArray user{};     ///< empty: it lets everybody through
  QByteArray password{}; ///< asked for with 407, and taken as Basic credentials
};

/// An HTTP proxy on a free port of 127.0.0.1, which makes tunnels (CONNECT) and nothing else. All of them end at one
/// port of this computer, whatever host is asked for. Every function may be called from any thread.
class TestProxy {
public:
  /// Throws std::runtime_error when it has no port. @param towards  where its tunnels end.
  explicit TestProxy(quint16 towards, const TestProxyOptions &options = {});
  /// Cuts every connection, at once.
  ~TestProxy();
  TestProxy(const TestProxy &) = delete;
  TestProxy &operator=(const TestProxy &) = delete;

  [[nodiscard]] quint16 port() const;
  /// Tunnels made from now on end there.
  void leadTo(quint16 towards);
  /// From now on it makes no tunnel but answers by itself: @p answer, as it goes over the wire. Empty: it makes
  /// tunnels. One without an end, "HTTP/1.1 200 OK" and nothing more, leaves the client waiting.
  void answerWith(const QByteArray &answer);

  /// The hosts, each "host:port", to which a tunnel was made, in this order.
  [[nodiscard]] QList<QByteArray> tunnels() const;
  /// The heads of all requests, as they came.
  [[nodiscard]] QList<QByteArray> requests() const;

private:
  class Private;
  const std::unique_ptr<Private> d;
};

} // namespace sandbox
