#pragma once

#include "sandbox/Credentials.h"
#include "sandbox/HttpMessage.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>

namespace sandbox {

/// How the storage service words a "no".
struct Refusal {
  int status = 403;
  QByteArray code{};
  QByteArray message{};
  QByteArray region{}; ///< the right one, where another was signed for
};

struct SignatureVerdict {
  std::optional<Refusal> refusal{};
  QString userId{}; ///< whose credential it was; empty when refused
};

/// Base64 of HMAC-SHA1 over @p stringToSign.
[[nodiscard]] QByteArray presignedSignature(const QByteArray &stringToSign, const QByteArray &secretAccessKey);
/// What a presigned GET signs. @p resource is "/BUCKET/KEY".
[[nodiscard]] QByteArray presignedStringToSign(const QByteArray &expires, const QByteArray &sessionToken,
                                               const QByteArray &resource);

/// Whether the query carries a presigned signature.
[[nodiscard]] bool isPresigned(const ReceivedRequest &request);
/// Checks a presigned GET of something in @p bucket.
[[nodiscard]] SignatureVerdict checkPresigned(const ReceivedRequest &request, const QByteArray &bucket,
                                              const Credentials &credentials, const QDateTime &now);
/// Checks an Authorization header of Signature Version 4 for @p service ("s3" or "logs") in @p region.
[[nodiscard]] SignatureVerdict checkSignatureV4(const ReceivedRequest &request, const QByteArray &region,
                                                const QByteArray &service, const Credentials &credentials,
                                                const QDateTime &now);

} // namespace sandbox
