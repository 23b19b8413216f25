#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>

namespace sandbox {

/// A certificate with its private key, both PEM.
struct CertifiedKey {
  QByteArray certificate{};
  QByteArray key{};
};

struct Validity {
  QDateTime from = QDateTime::currentDateTimeUtc().addDays(-1);
  QDateTime until = QDateTime::currentDateTimeUtc().addDays(30);
};

/// A new P-256 authority. Throws std::runtime_error, like everything here, when the library fails.
[[nodiscard]] CertifiedKey makeAuthority(const QByteArray &commonName);
/// A server certificate by @p authority.
/// @param alternativeNames  as OpenSSL writes them: "DNS:localhost", "IP:127.0.0.1".
[[nodiscard]] CertifiedKey makeServerCertificate(const CertifiedKey &authority,
                                                 const QList<QByteArray> &alternativeNames,
                                                 const Validity &validity = {});

} // namespace sandbox
