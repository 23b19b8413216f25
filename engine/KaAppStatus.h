#pragma once

#include <QtGlobal>

/// What the status item shows.
enum class KaAppStatus : qint64 {
  Normal = 0,
  Downloading = 1, ///< also after a run that ended without an HTTP status
  Error = 2,
  NotLinked = 3,
};
