#include "service/LineMeter.h"

namespace {

constexpr qint64 kEnough = 64 * 1024;                  ///< bytes that tell something of a line
constexpr std::chrono::duration<double> kStretch(2.5); ///< two of them are what counts as lately

} // namespace

void LineMeter::begin(TimePoint now) {
  const platform::MutexLock scope(lock);
  passTo(now);
  ++underWay;
}

void LineMeter::carry(qint64 bytes) {
  const platform::MutexLock scope(lock);
  latest.bytes += bytes;
}

void LineMeter::end(TimePoint now) {
  const platform::MutexLock scope(lock);
  passTo(now);
  --underWay;
}

void LineMeter::passTo(TimePoint now) {
  if (underWay > 0) latest.busy += now - since;
  since = now;
  if (latest.busy < kStretch || latest.bytes + before.bytes < kEnough) return;
  before = latest;
  latest = {};
}

std::optional<double> LineMeter::bytesPerSecond(TimePoint now) const {
  const platform::MutexLock scope(lock);
  const qint64 bytes = before.bytes + latest.bytes;
  std::chrono::duration<double> busy = before.busy + latest.busy;
  if (underWay > 0) busy += now - since;
  if (bytes < kEnough || busy.count() <= 0) return std::nullopt;
  return static_cast<double>(bytes) / busy.count();
}
