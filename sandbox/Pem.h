#pragma once

#include "sandbox/OpenSsl.h"

#include <QByteArray>

/// Keys and certificates as PEM text, for source files only. All throw std::runtime_error.
namespace sandbox {

[[nodiscard]] QByteArray toPem(X509 *certificate);
[[nodiscard]] QByteArray toPem(EVP_PKEY *key);
[[nodiscard]] Certificate certificateFromPem(const QByteArray &pem);
[[nodiscard]] PrivateKey keyFromPem(const QByteArray &pem);

} // namespace sandbox
