#pragma once

#include "platform/Mutex.h"

#include <QtGlobal>

#include <chrono>
#include <optional>

/// What the line to the storage has lately carried. Any thread.
class LineMeter {
public:
  using TimePoint = std::chrono::steady_clock::time_point;

  /// A transfer begins, brings bytes, ends.
  void begin(TimePoint now);
  void carry(qint64 bytes);
  void end(TimePoint now);

  /// Bytes per second, over the latest seconds in which something was under way; absent until enough has come to tell.
  [[nodiscard]] std::optional<double> bytesPerSecond(TimePoint now) const;

private:
  struct Stretch {
    qint64 bytes = 0;
    std::chrono::duration<double> busy{};
  };
  void passTo(TimePoint now) KA_REQUIRES(lock);

  mutable platform::Mutex lock;
  Stretch before KA_GUARDED_BY(lock);
  Stretch latest KA_GUARDED_BY(lock);
  int underWay KA_GUARDED_BY(lock) = 0;
  TimePoint since KA_GUARDED_BY(lock);
};
