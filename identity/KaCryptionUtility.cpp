#include "identity/KaCryptionUtility.h"

#include "identity/OpenSslHandle.h"
#include "log/ExceptionGuard.h"
#include "platform/UserId.h"
#include "service/SignatureV4.h"

#include <QStringDecoder>

#include <openssl/evp.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

using CipherContext = OpenSslHandle<EVP_CIPHER_CTX, &EVP_CIPHER_CTX_free>;

constexpr qsizetype kKeyLength = 32;
constexpr qsizetype kBlockLength = 16;
constexpr qsizetype kLineLength = 64;

enum class Direction { Decipher = 0, Encipher = 1 };

/// The raw cipher step; absent when the key is too short, the padding does not hold or OpenSSL refuses.
std::optional<QByteArray> aes256Ecb(const QByteArray &input, const QString &key, Direction direction) {
  const QByteArray keyBytes = key.left(kKeyLength).toUtf8();
  if (keyBytes.size() != kKeyLength) return std::nullopt;
  if (input.size() > std::numeric_limits<int>::max() - kBlockLength) return std::nullopt;

  const OpenSslErrorScope errors;
  const CipherContext context(EVP_CIPHER_CTX_new());
  if (!context) return std::nullopt;
  const auto *const keyData = reinterpret_cast<const unsigned char *>(keyBytes.constData());
  if (EVP_CipherInit_ex2(context.get(), EVP_aes_256_ecb(), keyData, nullptr, static_cast<int>(direction), nullptr) != 1)
    return std::nullopt;

  QByteArray output(input.size() + kBlockLength, Qt::Uninitialized);
  auto *const out = reinterpret_cast<unsigned char *>(output.data());
  const auto *const in = reinterpret_cast<const unsigned char *>(input.constData());
  int length = 0;
  if (EVP_CipherUpdate(context.get(), out, &length, in, static_cast<int>(input.size())) != 1) return std::nullopt;
  int lastLength = 0;
  if (EVP_CipherFinal_ex(context.get(), out + length, &lastLength) != 1) return std::nullopt;
  output.truncate(length + lastLength);
  return output;
}

QByteArray inLines(const QByteArray &text) {
  QByteArray lines;
  lines.reserve(text.size() + text.size() / kLineLength * 2);
  for (qsizetype start = 0; start < text.size(); start += kLineLength) {
    if (start > 0) lines += "\r\n";
    lines += text.sliced(start, std::min(kLineLength, text.size() - start));
  }
  return lines;
}

} // namespace

std::optional<QString> KaCryptionUtility::encrypt(const QString &text) {
  return encrypt(text, secretKey());
}

std::optional<QString> KaCryptionUtility::decrypt(const QString &text) {
  for (const QString &id : platform::stableUserIds())
    if (auto plain = decrypt(text, toSHA256hash(id))) return plain;
  return std::nullopt;
}

std::optional<QString> KaCryptionUtility::encrypt(const QString &text, const QString &key) {
  return guardedOr(std::optional<QString>(), [&]() -> std::optional<QString> {
    const auto enciphered = aes256Ecb(text.toUtf8(), key, Direction::Encipher);
    if (!enciphered) return std::nullopt;
    return QString::fromLatin1(inLines(enciphered->toBase64()));
  });
}

std::optional<QString> KaCryptionUtility::decrypt(const QString &text, const QString &key) {
  return guardedOr(std::optional<QString>(), [&]() -> std::optional<QString> {
    const auto plain = aes256Ecb(QByteArray::fromBase64(text.toLatin1()), key, Direction::Decipher);
    if (!plain) return std::nullopt;
    // A wrong key passes the padding check once in 256 times; what comes out then is hardly ever text.
    using enum QStringDecoder::Flag;
    QStringDecoder utf8(QStringDecoder::Utf8, Stateless | ConvertInitialBom); // what was enciphered, letter for letter
    QString decoded = utf8(*plain);
    if (utf8.hasError()) return std::nullopt;
    return decoded;
  });
}

QString KaCryptionUtility::secretKey() {
  const QStringList ids = platform::stableUserIds();
  return ids.isEmpty() ? QString() : toSHA256hash(ids.first());
}

QString KaCryptionUtility::toSHA256hash(const QString &text) {
  return signature_v4::toHex(toSHA256DataFrom(text));
}

QByteArray KaCryptionUtility::toSHA256DataFrom(const QString &text) {
  return signature_v4::toSHA256hash(text);
}

QString KaCryptionUtility::GenerateCodeS256Challenge(const QString &verifier) {
  const auto form = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;
  return QString::fromLatin1(toSHA256DataFrom(verifier).toBase64(form));
}
