#pragma once

#include <QtGlobal>

#include <optional>

/// What is under way to the storage, and what has come before its turn.
struct AheadLoad {
  int requests = 0;    ///< under way, the caller's own included
  qint64 underWay = 0; ///< bytes of objects that they are to bring
  qint64 held = 0;     ///< bytes that have come and wait for their turn
};

/// Whether one more request, for an object of @p size bytes (0 for what is small), may go out before its turn. So much
/// at a time that a slow line is never shared into its own limits of time.
/// @param most            requests at a time
/// @param bytesPerSecond  what the line has lately carried; absent while that is not known: then one at a time
[[nodiscard]] bool mayBeginAhead(const AheadLoad &load, qint64 size, int most, std::optional<double> bytesPerSecond);
