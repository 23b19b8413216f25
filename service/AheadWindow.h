#pragma once

#include <QtGlobal>

#include <chrono>
#include <optional>

/// What is under way to the storage, and what has come before its turn.
struct AheadLoad {
  int requests = 0;    ///< under way, the caller's own included
  qint64 underWay = 0; ///< bytes of objects that they are to bring
  qint64 held = 0;     ///< bytes that have come and wait for their turn
};

/// What may go out at a time: so little that a slow line is never shared into its own limits of time.
struct AheadLimits {
  int most = 0;                                       ///< requests at a time
  std::chrono::duration<double> longest{};            ///< that the line may need for what is under way
  std::optional<double> bytesPerSecond{};             ///< that it has lately carried; absent while that is not known
};

/// Whether one more request, for an object of @p size bytes (0 for what is small), may go out before its turn. While the
/// line is not known, one at a time; what it cannot carry in time comes alone.
[[nodiscard]] bool mayBeginAhead(const AheadLoad &load, qint64 size, const AheadLimits &limits);
