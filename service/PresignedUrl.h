#pragma once

#include "service/BucketAddress.h"
#include "service/KaCredential.h"

#include <QByteArray>
#include <QString>

/// S3 URLs that carry their own signature (HMAC-SHA1 in the query). They end with the credentials they are signed by.
/// The list parameters are not part of what is signed.

/// Plain text; percent-encoded on its way into a URL.
struct ListParameters {
  QString prefix{};
  QString startAfter{};
  QString delimiter{};
  QString continuationToken{};
};

/// The signature of a GET of @p additionalPath (an object's key, percent-encoded as it travels; empty for the bucket
/// itself), ready for a query. It is the same wherever the bucket stands in the URL.
[[nodiscard]] QString SignatureString(const QString &expireUnixTime, const QString &bucket, const QString &secretKey,
                                      const QString &sessionToken, const QString &additionalPath = {});

/// "SCHEME://BUCKET.HOST/ADDITIONALPATH?OPTIONPATH", each part as it travels; what is empty is left out with its slash.
/// In path style "SCHEME://HOST/BUCKET/ADDITIONALPATH?OPTIONPATH", always with both slashes, since they are signed.
[[nodiscard]] QString baseURLString(const QString &scheme, const BucketAddress &bucket, const QString &additionalPath,
                                    const QString &optionPath);

[[nodiscard]] QString optionURLString(const QString &accessKeyId, const QString &expireUnixTime,
                                      const QString &signature);

[[nodiscard]] QString createS3URLString(const QString &baseURL, const QString &optionURL,
                                        const ListParameters &parameters = {});

/// The URL of a listing of @p bucket.
[[nodiscard]] QString presignedListURL(const KaCredential &by, const BucketAddress &bucket,
                                       const ListParameters &parameters);

/// The URL of one object; its base has no option path, which leaves "?&" behind the path.
[[nodiscard]] QString presignedObjectURL(const KaCredential &by, const BucketAddress &bucket, const QString &objectKey);

[[nodiscard]] QByteArray toHMACSHA1(const QString &text, const QString &key); ///< 20 bytes
