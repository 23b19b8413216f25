#include "service/SignatureV4.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kAlgorithm = "AWS4-HMAC-SHA256"_L1;
constexpr auto kScopeEnd = "aws4_request"_L1;
constexpr int kDigestSize = 32;

using namespace signature_v4;

const unsigned char *unsignedBytes(const QByteArray &bytes) {
  return reinterpret_cast<const unsigned char *>(bytes.constData());
}

QString hashText(const QString &text) {
  return toHex(toSHA256hash(text));
}

QByteArray signingKey(const QString &secret, const QStringList &scope) {
  QByteArray key = "AWS4" + secret.toUtf8();
  for (const QString &part : scope)
    key = toHmacSHA256hash(key, part);
  return key;
}

} // namespace

QString signRequests(const KaCredential &credential, const SignatureV4Request &request) {
  const QStringList scopeParts{request.timestamp.left(8), request.region, request.service, kScopeEnd};
  const QString scope = scopeParts.join(u'/');

  // The canonical headers end in a line feed, which makes the blank line after them.
  const QString canonicalRequest =
      QStringList{request.method,           request.canonicalUri,  request.canonicalQuery,
                  request.canonicalHeaders, request.signedHeaders, hashText(request.payload)}
          .join(u'\n');
  const QString stringToSign =
      QStringList{kAlgorithm, request.timestamp, scope, hashText(canonicalRequest)}.join(u'\n');
  const QByteArray key = signingKey(credential.secretAccessKey, scopeParts);

  return kAlgorithm + u" Credential="_s + credential.accessKeyId + u'/' + scope + u", SignedHeaders="_s
         + request.signedHeaders + u", Signature="_s + toHex(toHmacSHA256hash(key, stringToSign));
}

QByteArray signature_v4::toSHA256hash(const QString &text) {
  QByteArray bytes = text.toUtf8();
  if (const qsizetype nul = bytes.indexOf('\0'); nul >= 0) bytes.truncate(nul);

  QByteArray digest(kDigestSize, '\0');
  unsigned int size = 0;
  if (EVP_Digest(bytes.constData(), static_cast<std::size_t>(bytes.size()),
                 reinterpret_cast<unsigned char *>(digest.data()), &size, EVP_sha256(), nullptr)
      != 1)
    throw std::runtime_error("SHA-256 is not available");
  return digest;
}

QByteArray signature_v4::toHmacSHA256hash(const QByteArray &key, const QString &message) {
  const QByteArray bytes = message.toUtf8();
  QByteArray code(kDigestSize, '\0');
  unsigned int size = 0;
  if (!HMAC(EVP_sha256(), key.constData(), static_cast<int>(key.size()), unsignedBytes(bytes),
            static_cast<std::size_t>(bytes.size()), reinterpret_cast<unsigned char *>(code.data()), &size))
    throw std::runtime_error("HMAC is not available");
  return code;
}

QString signature_v4::toHex(const QByteArray &bytes) {
  return QString::fromLatin1(bytes.toHex());
}

QString signature_v4::getCurrentTimeStampUTCFormat(const QDateTime &date) {
  return date.toUTC().toString(u"yyyyMMdd'T'HHmmss'Z'");
}
