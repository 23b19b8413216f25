#pragma once

#include <QString>

#include <chrono>

/// What a pass tells the log service of itself.
struct KaDownloadReport {
  using Moment = std::chrono::system_clock::time_point;

  QString userId{};
  QString logGroup{};
  QString logStream{};
  Moment startDate{};
  Moment endDate{};
  quint64 successCount = 0; ///< files that the pass saved
  QString information{};    ///< "recent", "original", "10G" or "2K"
};

/// The PutLogEvents document. Its values stand in it as they are: the log service knows this very text.
[[nodiscard]] QString createLogMessage(const KaDownloadReport &report, KaDownloadReport::Moment composed);

/// The stream of the 10G storage and the previews.
[[nodiscard]] QString awsLogs10GStreamName();

/// Milliseconds since 1970, half a millisecond rounded away from zero.
[[nodiscard]] QString toUnixtimeString(KaDownloadReport::Moment date);
