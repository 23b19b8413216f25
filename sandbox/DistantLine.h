#pragma once

#include <QtGlobal>

#include <chrono>
#include <memory>

namespace sandbox {

/// How far away the other end is, and how much goes through.
struct Distance {
  std::chrono::milliseconds roundTrip{};
  qint64 bytesPerSecond = 0; ///< each way, shared by all connections; 0: as fast as it goes

  [[nodiscard]] bool isSome() const { return roundTrip.count() > 0 || bytesPerSecond > 0; }
};

/// A port on 127.0.0.1 that leads to another one as if over a long line. Each way takes half a round trip, for the ends
/// of connections, too; what a client sends in the first round trip of a connection leaves when that is over, for then
/// its handshake would be. (The client's connect itself returns at once, and nothing is ever lost or slow to start.)
class DistantLine {
public:
  /// Has its port once constructed. Throws std::runtime_error when that cannot be had.
  /// @param port  0: any free one.
  DistantLine(quint16 port, const Distance &distance);
  /// Cuts every connection, at once.
  ~DistantLine();
  DistantLine(const DistantLine &) = delete;
  DistantLine &operator=(const DistantLine &) = delete;

  /// Begins to carry, to the port @p towards of 127.0.0.1; once.
  void start(quint16 towards);
  [[nodiscard]] quint16 port() const;

private:
  class Private;
  std::unique_ptr<Private> d;
};

} // namespace sandbox
