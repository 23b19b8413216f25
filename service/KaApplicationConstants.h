#pragma once

#include <QString>

/// The service's names. Each is read from the user defaults once, falls back to a built-in value, and then stays for
/// the life of the process. Hosts are "host" or "host:port". Any thread.
class KaApplicationConstants {
public:
  KaApplicationConstants() = delete;

  [[nodiscard]] static QString strataHostName();
  [[nodiscard]] static QString strataSiteTopHostName();
  [[nodiscard]] static QString idTokenHostName();
  /// What requests are signed for. It is also in the built-in hosts of reports and of storage in path style.
  [[nodiscard]] static QString awsRegion();
  [[nodiscard]] static QString awsS3BucketName();
  [[nodiscard]] static QString awsS3PreviewListBucketName();
  [[nodiscard]] static QString awsS3AccelerateHostName(); ///< a bucket's host is BUCKET.<this>, in path style this
  [[nodiscard]] static bool awsS3PathStyle();
  [[nodiscard]] static QString awsStsHostName();
  [[nodiscard]] static QString awsStsRoleArn();
  [[nodiscard]] static QString awsLogsHostName();
  [[nodiscard]] static QString awsLogsGroupName();
  [[nodiscard]] static QString awsLogsStreamName();
};
