#pragma once

#include <QByteArray>
#include <QString>

/// S3 URLs that carry their own signature (HMAC-SHA1 in the query). The list parameters are not part of what is signed.

/// What URLs are signed with.
struct PresigningKeys {
  QString accessKeyId{};
  QString secretKey{};
  QString sessionToken{};
  QString expireUnixTime{}; ///< whole seconds since 1970, decimal; the URLs' expiry too
};

struct ListParameters {
  QString prefix{};
  QString startAfter{};
  QString delimiter{};
  QString continuationToken{}; ///< the only one that is percent-encoded
};

/// The signature of a GET of @p additionalPath (an object's key; empty for the bucket itself), ready for a query.
[[nodiscard]] QString SignatureString(const QString &expireUnixTime, const QString &bucket, const QString &secretKey,
                                      const QString &sessionToken, const QString &additionalPath = {});

/// "SCHEME://BUCKET.HOST/ADDITIONALPATH?OPTIONPATH"; what is empty is left out with its slash.
[[nodiscard]] QString baseURLString(const QString &scheme, const QString &bucket, const QString &host,
                                    const QString &additionalPath, const QString &optionPath);

[[nodiscard]] QString optionURLString(const QString &accessKeyId, const QString &expireUnixTime,
                                      const QString &signature);

[[nodiscard]] QString createS3URLString(const QString &baseURL, const QString &optionURL,
                                        const ListParameters &parameters = {});

/// The URL of one object; its base has no option path, which leaves "?&" behind the path.
[[nodiscard]] QString presignedObjectURL(const PresigningKeys &keys, const QString &bucket, const QString &host,
                                         const QString &objectKey);

[[nodiscard]] QByteArray toHMACSHA1(const QString &text, const QString &key); ///< 20 bytes
