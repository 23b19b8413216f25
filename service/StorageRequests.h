#pragma once

#include "service/BucketAddress.h"
#include "service/KaCredential.h"
#include "service/KaHttpTransfer.h"
#include "service/StorageQuestion.h"

#include <QString>

/// A request that is signed here, piece by piece as a log entry tells it.
struct SignedRequest {
  QString url;
  QString timestamp;
  QString sessionToken;
  QString payloadHash;
  QString authorization;
};

/// @name Where the user defaults say that the buckets are
/// @{
[[nodiscard]] BucketAddress contentBucket();
[[nodiscard]] BucketAddress previewListBucket();
/// @}

/// Signed now.
[[nodiscard]] SignedRequest signedRequest(const KaCredential &credential, const QString &objectKey,
                                          const QString &method, const QString &query);
[[nodiscard]] HttpRequest httpRequest(const SignedRequest &made, const QByteArray &method);
[[nodiscard]] HttpRequest presignedRequest(const QString &url, const KaCredential &credential);
/// The presigned URL of an object of the content bucket.
[[nodiscard]] QString objectURL(const KaCredential &by, const QString &key);

/// A question as it goes out now.
[[nodiscard]] HttpRequest requestFor(const StorageQuestion &question, const KaCredential &by);
