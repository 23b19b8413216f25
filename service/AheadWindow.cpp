#include "service/AheadWindow.h"

namespace {

constexpr qint64 kMostBytes = 64 * 1024 * 1024; ///< before their turn, on their way or here
constexpr double kMostSeconds = 5;              ///< that the line needs for what is under way

} // namespace

bool mayBeginAhead(const AheadLoad &load, qint64 size, int most, std::optional<double> bytesPerSecond) {
  if (load.requests >= (bytesPerSecond ? most : 1)) return false;
  if (size == 0) return true;
  if (load.underWay + load.held > 0 && load.underWay + load.held + size > kMostBytes) return false;
  // What the line cannot carry in time comes alone.
  const double seconds = static_cast<double>(load.underWay + size) / bytesPerSecond.value_or(1);
  return load.underWay == 0 || seconds <= kMostSeconds;
}
