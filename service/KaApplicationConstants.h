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
  [[nodiscard]] static QString awsS3BucketName();
  [[nodiscard]] static QString awsS3PreviewListBucketName();
  [[nodiscard]] static QString awsS3AccelerateHostName(); ///< a bucket's host is BUCKET.<this>
  [[nodiscard]] static QString awsStsHostName();
  [[nodiscard]] static QString awsStsRoleArn();
  [[nodiscard]] static QString awsLogsHostName();
  [[nodiscard]] static QString awsLogsGroupName();
  [[nodiscard]] static QString awsLogsStreamName();
};
