#pragma once

#include "sandbox/Endpoint.h"

#include <QHash>
#include <QList>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace sandbox {

/// What was asked so far. Any thread.
class RequestLog {
public:
  /// @return the number by which answered() knows the request.
  quint64 arrived(RequestRecord record);
  void answered(quint64 number, int status);

  [[nodiscard]] int count(Endpoint endpoint) const;
  [[nodiscard]] QList<RequestRecord> records() const;
  void reset();
  [[nodiscard]] bool waitFor(Endpoint endpoint, int count, std::chrono::milliseconds timeout) const;

private:
  mutable std::mutex mutex;
  mutable std::condition_variable changed;
  // All behind the mutex:
  QHash<Endpoint, int> counts;
  std::deque<RequestRecord> kept;
  quint64 firstKept = 0; ///< the number of kept.front()
};

} // namespace sandbox
