#pragma once

#include "service/KaCredential.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

/// AWS Signature Version 4, header form.

/// @p canonicalUri is the path as it travels. @p canonicalHeaders is one line per header, each ended by a line feed;
/// the caller orders and joins it.
struct SignatureV4Request {
  QString timestamp; ///< as getCurrentTimeStampUTCFormat makes it
  QString region;
  QString service;
  QString method;
  QString canonicalUri;
  QString canonicalQuery;
  QString canonicalHeaders;
  QString signedHeaders;
  QString payload;
};

/// @return the value of the "Authorization" header.
[[nodiscard]] QString signRequests(const KaCredential &credential, const SignatureV4Request &request);

/// The steps of it, for those who need one alone. In a namespace, since others hash text to other forms.
namespace signature_v4 {

[[nodiscard]] QByteArray toSHA256hash(const QString &text); ///< 32 bytes, of the text up to its first NUL
[[nodiscard]] QByteArray toHmacSHA256hash(const QByteArray &key, const QString &message); ///< 32 bytes
[[nodiscard]] QString toHex(const QByteArray &bytes);                                     ///< lower case
[[nodiscard]] QString getCurrentTimeStampUTCFormat(const QDateTime &date);                ///< "yyyyMMdd'T'HHmmss'Z'"

} // namespace signature_v4
