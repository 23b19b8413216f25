#include "service/AheadWindow.h"

namespace {

constexpr qint64 kMostBytes = 64 * 1024 * 1024; ///< before their turn, on their way or here

} // namespace

bool mayBeginAhead(const AheadLoad &load, qint64 size, const AheadLimits &limits) {
  if (load.requests >= (limits.bytesPerSecond ? limits.most : 1)) return false;
  if (size == 0) return true;
  const qint64 ahead = load.underWay + load.held;
  if (ahead > 0 && ahead + size > kMostBytes) return false;
  const auto carried = limits.bytesPerSecond.value_or(0) * limits.longest.count();
  return load.underWay == 0 || static_cast<double>(load.underWay + size) <= carried;
}
