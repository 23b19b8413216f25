#include "engine/KaDownloadReport.h"

#include "platform/AppInfo.h"
#include "service/KaApplicationConstants.h"

#include <cmath>

using namespace Qt::StringLiterals;

QString createLogMessage(const KaDownloadReport &report, KaDownloadReport::Moment composed) {
  const QString message =
      uR"({\"UUID\":\"%1\",\"Version\":\"%2\",\"StartDate\":%3,\"EndDate\":%4,\"DownloadSuccess\":%5,)"
      uR"(\"OS\":\"Mac\",\"Information\":\"%6\"})"_s.arg(
          report.userId, platform::appInfo().shortVersion, toUnixtimeString(report.startDate),
          toUnixtimeString(report.endDate), QString::number(report.successCount), report.information);
  return uR"({"logGroupName":"%1", "logStreamName":"%2", "logEvents":[{"timestamp":%3,"message":"%4"}]})"_s.arg(
      report.logGroup, report.logStream, toUnixtimeString(composed), message);
}

QString awsLogs10GStreamName() {
  return KaApplicationConstants::awsLogsStreamName() + u"-10G"_s;
}

QString toUnixtimeString(KaDownloadReport::Moment date) {
  const std::chrono::duration<double, std::milli> sinceEpoch = date.time_since_epoch();
  return QString::number(std::llround(sinceEpoch.count()));
}
