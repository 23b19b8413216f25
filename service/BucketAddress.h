#pragma once

#include <QString>

/// How a bucket is reached over the wire: "https://BUCKET.HOST/KEY", or "https://HOST/BUCKET/KEY" in path style.
struct BucketAddress {
  QString bucket;
  QString host; ///< "host" or "host:port"
  bool isPathStyle = false;

  /// What stands in the header "host".
  [[nodiscard]] QString authority() const { return isPathStyle ? host : bucket + u'.' + host; }
  /// The path of @p encodedKey, a key as it travels; empty for the bucket itself.
  [[nodiscard]] QString path(const QString &encodedKey) const {
    return (isPathStyle ? u'/' + bucket : QString()) + u'/' + encodedKey;
  }
};
