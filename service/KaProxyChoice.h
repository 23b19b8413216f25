#pragma once

#include "platform/Mutex.h"
#include "service/ProxyAddress.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <map>
#include <vector>

/// Chooses among the ways that the system's settings name: a proxy that could not be reached lately comes last, so that
/// not every request has to find that out. Any thread.
class KaProxyChoice {
public:
  /// @return the same ways in the order in which they are to be tried.
  [[nodiscard]] std::vector<ProxyAddress> inOrder(std::vector<ProxyAddress> ways) const;
  /// @param since  when that was begun: what was found out before news of the network counts no more.
  void noteUnreachable(const ProxyAddress &way, std::chrono::steady_clock::time_point since);
  void noteReached(const ProxyAddress &way);
  /// All that was known may be otherwise, also what the system says.
  void forget();

private:
  using Clock = std::chrono::steady_clock;

  mutable platform::Mutex lock;
  std::map<QByteArray, Clock::time_point> unreachable KA_GUARDED_BY(lock); ///< when it was, by URL
  Clock::time_point forgotten KA_GUARDED_BY(lock){};
};

/// What the system is asked for a proxy to: scheme, host and port. Whoever runs a proxy's script need not learn more,
/// and the rest may hold a signature. Empty where no proxy may stand between, as to this computer itself.
[[nodiscard]] QByteArray proxiedOrigin(const QString &url);

/// Whether requests to the service leave by a proxy on this computer, so that they need no network that the system
/// knows of. Blocks for at most @p wait; false when that was too short. Any thread.
[[nodiscard]] bool isServiceProxyOnLoopback(std::chrono::milliseconds wait);
