#pragma once

#include <QByteArray>

/// An RSA public key as two unsigned big-endian numbers.
struct RsaPublicKey {
  QByteArray modulus;
  QByteArray exponent;
};

/// Whether @p signature is @p key's over @p message (RSASSA-PKCS1-v1_5 with SHA-256). False for a key that cannot be
/// one: an empty or zero number, or a modulus of more than 16384 bits.
[[nodiscard]] bool verifyRsaSha256(const RsaPublicKey &key, const QByteArray &message, const QByteArray &signature);
