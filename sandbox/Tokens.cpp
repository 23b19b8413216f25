#include "sandbox/Tokens.h"

#include "sandbox/Pem.h"

#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMessageAuthenticationCode>
#include <QSaveFile>

#include <openssl/core_names.h>
#include <openssl/rand.h>
#include <openssl/rsa.h>

#include <mutex>

using namespace Qt::StringLiterals;

namespace sandbox {

namespace {

constexpr size_t kKeyBits = 2048;

PrivateKey makeRsaKey() {
  PrivateKey key(EVP_PKEY_Q_keygen(nullptr, nullptr, "RSA", kKeyBits));
  requireSsl(key != nullptr, "RSA key");
  return key;
}

/// The process's key, made by the first who needs it: making it takes longer than everything else here.
const QByteArray &processKeyPem() {
  static const QByteArray pem = toPem(makeRsaKey().get());
  return pem;
}

/// Throws std::runtime_error when the key cannot be kept.
QByteArray keptKeyPem(const QString &fileName) {
  QFile kept(fileName);
  if (kept.open(QFile::ReadOnly)) return kept.readAll();
  QSaveFile file(fileName);
  const QByteArray &pem = processKeyPem();
  if (!file.open(QFile::WriteOnly) || !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
      || file.write(pem) != pem.size() || !file.commit())
    throw std::runtime_error("cannot keep the token key");
  return pem;
}

QByteArray keyParameter(EVP_PKEY *key, const char *name) {
  BIGNUM *raw = nullptr;
  requireSsl(EVP_PKEY_get_bn_param(key, name, &raw) == 1, "key parameter");
  const BigNumber number(raw);
  QByteArray bytes(BN_num_bytes(number.get()), '\0');
  BN_bn2bin(number.get(), reinterpret_cast<unsigned char *>(bytes.data()));
  return bytes;
}

QByteArray signRs256(EVP_PKEY *key, const QByteArray &message) {
  const DigestContext context(EVP_MD_CTX_new());
  const auto *data = reinterpret_cast<const unsigned char *>(message.constData());
  requireSsl(context && EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, key) == 1, "signing");
  size_t size = 0;
  requireSsl(EVP_DigestSign(context.get(), nullptr, &size, data, size_t(message.size())) == 1, "signing");
  QByteArray signature(qsizetype(size), '\0');
  auto *out = reinterpret_cast<unsigned char *>(signature.data());
  requireSsl(EVP_DigestSign(context.get(), out, &size, data, size_t(message.size())) == 1, "signing");
  return signature;
}

bool verifyRs256(EVP_PKEY *key, const QByteArray &message, const QByteArray &signature) {
  const DigestContext context(EVP_MD_CTX_new());
  requireSsl(context && EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, key) == 1, "verifying");
  const bool valid =
      EVP_DigestVerify(context.get(), reinterpret_cast<const unsigned char *>(signature.constData()),
                       size_t(signature.size()), reinterpret_cast<const unsigned char *>(message.constData()),
                       size_t(message.size()))
      == 1;
  if (!valid) ERR_clear_error();
  return valid;
}

/// A part of a token, with a filler so long that its length modulo 4 is 3 or, as usual, is not: some readers of the
/// service cannot pad that remainder.
QByteArray tokenPart(QJsonObject object, bool remainderThree = false) {
  QString filler;
  for (;;) {
    const QByteArray part = base64Url(compactJson(object));
    if ((part.size() % 4 == 3) == remainderThree) return part;
    filler += u'x';
    object.insert(u"fill"_s, filler);
  }
}

QJsonObject tokenObject(const QByteArray &part) {
  return QJsonDocument::fromJson(QByteArray::fromBase64(part, QByteArray::Base64UrlEncoding)).object();
}

QJsonObject jsonWebKey(const QString &keyId, const QByteArray &modulus, const QByteArray &exponent) {
  return {{u"kty"_s, u"RSA"_s},
          {u"use"_s, u"sig"_s},
          {u"alg"_s, u"RS256"_s},
          {u"kid"_s, keyId},
          {u"n"_s, QString::fromLatin1(base64Url(modulus))},
          {u"e"_s, QString::fromLatin1(base64Url(exponent))}};
}

} // namespace

class Tokens::Private {
public:
  Private(const QString &keyFile, const QString &theIssuer, const QString &theClientId)
      : issuer(theIssuer), clientId(theClientId), fileName(keyFile) {}

  EVP_PKEY *signingKey() {
    std::call_once(keyMade, [this] {
      key = keyFromPem(fileName.isEmpty() ? processKeyPem() : keptKeyPem(fileName));
      modulus = keyParameter(key.get(), OSSL_PKEY_PARAM_RSA_N);
      exponent = keyParameter(key.get(), OSSL_PKEY_PARAM_RSA_E);
    });
    return key.get();
  }

  [[nodiscard]] QJsonObject header(std::optional<TokenFault> fault) const;
  [[nodiscard]] QJsonObject payload(const Claims &claims, std::optional<TokenFault> fault) const;
  [[nodiscard]] QByteArray signature(const QByteArray &message, std::optional<TokenFault> fault);
  [[nodiscard]] std::optional<TokenFlaw> flaw(const QByteArrayList &parts, const QJsonObject &payload,
                                              const QDateTime &now);

  const QString issuer;
  const QString clientId;
  const QString keyId = u"sandbox-key-1"_s;
  QByteArray modulus;
  QByteArray exponent;

private:
  const QString fileName;
  std::once_flag keyMade;
  PrivateKey key;
};

QJsonObject Tokens::Private::header(std::optional<TokenFault> fault) const {
  QString algorithm = u"RS256"_s;
  if (fault == TokenFault::AlgorithmHs256) algorithm = u"HS256"_s;
  if (fault == TokenFault::AlgorithmNone) algorithm = u"none"_s;
  return {
      {u"alg"_s, algorithm}, {u"kid"_s, fault == TokenFault::UnknownKeyId ? u"nobody"_s : keyId}, {u"typ"_s, u"JWT"_s}};
}

QJsonObject Tokens::Private::payload(const Claims &claims, std::optional<TokenFault> fault) const {
  const QDateTime now = QDateTime::currentDateTimeUtc();
  QJsonObject payload{{u"iss"_s, issuer},
                      {u"aud"_s, clientId},
                      {u"sub"_s, claims.subject},
                      {u"iat"_s, now.toSecsSinceEpoch()},
                      {u"exp"_s, claims.expiry.toSecsSinceEpoch()},
                      {u"nonce"_s, claims.nonce},
                      {u"sid"_s, claims.session}};
  if (fault == TokenFault::WrongIssuer) payload[u"iss"_s] = u"https://elsewhere.localhost"_s;
  if (fault == TokenFault::WrongAudience) payload[u"aud"_s] = u"another-client"_s;
  if (fault == TokenFault::AudienceArray) payload[u"aud"_s] = QJsonArray{clientId};
  if (fault == TokenFault::Expired) payload[u"exp"_s] = now.addSecs(-60).toSecsSinceEpoch();
  if (fault == TokenFault::WrongNonce) payload[u"nonce"_s] = u"not the nonce"_s;
  if (fault == TokenFault::NoSubject) payload.remove(u"sub"_s);
  return payload;
}

QByteArray Tokens::Private::signature(const QByteArray &message, std::optional<TokenFault> fault) {
  EVP_PKEY *const signing = signingKey();
  if (fault == TokenFault::AlgorithmNone) return {};
  if (fault == TokenFault::AlgorithmHs256)
    return QMessageAuthenticationCode::hash(message, modulus, QCryptographicHash::Sha256);
  // A right signature of something else is the hardest kind of wrong one.
  return signRs256(signing, fault == TokenFault::BadSignature ? message + '.' : message);
}

std::optional<TokenFlaw> Tokens::Private::flaw(const QByteArrayList &parts, const QJsonObject &payload,
                                               const QDateTime &now) {
  const QJsonObject header = tokenObject(parts[0]);
  if (header[u"alg"_s].toString() != u"RS256") return TokenFlaw::WrongAlgorithm;
  if (header[u"kid"_s].toString() != keyId) return TokenFlaw::UnknownKey;
  const QByteArray signature = QByteArray::fromBase64(parts[2], QByteArray::Base64UrlEncoding);
  if (!verifyRs256(signingKey(), parts[0] + '.' + parts[1], signature)) return TokenFlaw::BadSignature;
  if (payload[u"iss"_s].toString() != issuer) return TokenFlaw::WrongIssuer;
  if (payload[u"aud"_s].toString() != clientId) return TokenFlaw::WrongAudience;
  if (payload[u"exp"_s].toInteger() < now.toSecsSinceEpoch()) return TokenFlaw::Expired;
  return std::nullopt;
}

Tokens::Tokens(const QString &keyFile, const QString &issuer, const QString &clientId)
    : d(std::make_unique<Private>(keyFile, issuer, clientId)) {
}

Tokens::~Tokens() = default;

QByteArray Tokens::issue(const Claims &claims, std::optional<TokenFault> fault) const {
  const QByteArray header = tokenPart(d->header(fault));
  const QByteArray payload = tokenPart(d->payload(claims, fault), fault == TokenFault::PartLengthThreeModuloFour);
  const QByteArray message = header + '.' + payload;
  return message + '.' + base64Url(d->signature(message, fault));
}

Tokens::Checked Tokens::check(const QByteArray &token, const QDateTime &now) const {
  const QByteArrayList parts = token.split('.');
  if (parts.size() != 3) return {.flaw = TokenFlaw::Malformed};
  Checked checked{.payload = tokenObject(parts[1])};
  checked.flaw = d->flaw(parts, checked.payload, now);
  if (checked.flaw && checked.flaw != TokenFlaw::Expired) checked.payload = {};
  return checked;
}

QByteArray Tokens::keySet() const {
  (void)d->signingKey();
  // Nothing is ever signed with the first key, so its modulus need not be a product of primes.
  QByteArray unrelated = sha256(d->modulus).repeated(8);
  unrelated.front() = char(uchar(unrelated.front()) | 0x80);
  unrelated.back() = char(uchar(unrelated.back()) | 0x01);
  const QJsonArray keys{jsonWebKey(u"sandbox-key-0"_s, unrelated, d->exponent),
                        jsonWebKey(d->keyId, d->modulus, d->exponent)};
  return compactJson({{u"keys"_s, keys}});
}

QByteArray randomBytes(qsizetype count) {
  QByteArray bytes(count, '\0');
  requireSsl(RAND_bytes(reinterpret_cast<unsigned char *>(bytes.data()), int(count)) == 1, "random bytes");
  return bytes;
}

QByteArray base64Url(const QByteArray &bytes) {
  return bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

QByteArray sha256(const QByteArray &bytes) {
  return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

QByteArray compactJson(const QJsonObject &object) {
  return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace sandbox
