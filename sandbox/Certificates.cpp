#include "sandbox/Certificates.h"

#include "sandbox/OpenSsl.h"
#include "sandbox/Pem.h"

#include <openssl/rand.h>
#include <openssl/x509v3.h>

namespace sandbox {

namespace {

constexpr long kVersion3 = 2;

PrivateKey makeP256Key() {
  PrivateKey key(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"));
  requireSsl(key != nullptr, "EC key");
  return key;
}

void setSerialNumber(X509 *certificate) {
  unsigned char bytes[8];
  requireSsl(RAND_bytes(bytes, sizeof bytes) == 1, "serial number");
  bytes[0] &= 0x7f;
  const BigNumber number(BN_bin2bn(bytes, sizeof bytes, nullptr));
  requireSsl(number && BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate)), "serial number");
}

void setValidity(X509 *certificate, const Validity &validity) {
  const auto set = [](ASN1_TIME *time, const QDateTime &moment) {
    requireSsl(ASN1_TIME_set(time, moment.toSecsSinceEpoch()) != nullptr, "validity");
  };
  set(X509_getm_notBefore(certificate), validity.from);
  set(X509_getm_notAfter(certificate), validity.until);
}

void setCommonName(X509_NAME *name, const QByteArray &commonName) {
  const auto *text = reinterpret_cast<const unsigned char *>(commonName.constData());
  requireSsl(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8, text, int(commonName.size()), -1, 0) == 1, "name");
}

void addExtension(X509 *certificate, X509 *issuer, int kind, const QByteArray &value) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  const Extension extension(X509V3_EXT_conf_nid(nullptr, &context, kind, value.constData()));
  requireSsl(extension && X509_add_ext(certificate, extension.get(), -1) == 1, "extension");
}

Certificate startCertificate(EVP_PKEY *key, const QByteArray &commonName, const Validity &validity) {
  Certificate certificate(X509_new());
  requireSsl(certificate && X509_set_version(certificate.get(), kVersion3) == 1, "certificate");
  setSerialNumber(certificate.get());
  setValidity(certificate.get(), validity);
  setCommonName(X509_get_subject_name(certificate.get()), commonName);
  requireSsl(X509_set_pubkey(certificate.get(), key) == 1, "public key");
  return certificate;
}

void sign(X509 *certificate, X509 *issuer, EVP_PKEY *issuerKey) {
  requireSsl(X509_set_issuer_name(certificate, X509_get_subject_name(issuer)) == 1, "issuer");
  requireSsl(X509_sign(certificate, issuerKey, EVP_sha256()) > 0, "certificate signature");
}

} // namespace

CertifiedKey makeAuthority(const QByteArray &commonName) {
  const PrivateKey key = makeP256Key();
  const Validity years{.until = QDateTime::currentDateTimeUtc().addYears(2)};
  const Certificate certificate = startCertificate(key.get(), commonName, years);
  addExtension(certificate.get(), certificate.get(), NID_basic_constraints, "critical,CA:TRUE,pathlen:0");
  addExtension(certificate.get(), certificate.get(), NID_key_usage, "critical,keyCertSign,cRLSign");
  addExtension(certificate.get(), certificate.get(), NID_subject_key_identifier, "hash");
  // Whoever trusts it in a browser trusts it for loopback names and one that is nobody's alone.
  addExtension(certificate.get(), certificate.get(), NID_name_constraints,
               "critical,permitted;DNS:localhost,permitted;DNS:sandbox.test,permitted;IP:127.0.0.0/255.0.0.0");
  sign(certificate.get(), certificate.get(), key.get());
  return {.certificate = toPem(certificate.get()), .key = toPem(key.get())};
}

CertifiedKey makeServerCertificate(const CertifiedKey &authority, const QList<QByteArray> &alternativeNames,
                                   const Validity &validity) {
  const Certificate issuer = certificateFromPem(authority.certificate);
  const PrivateKey issuerKey = keyFromPem(authority.key);
  const PrivateKey key = makeP256Key();
  const Certificate certificate = startCertificate(key.get(), "sandbox", validity);
  addExtension(certificate.get(), issuer.get(), NID_basic_constraints, "critical,CA:FALSE");
  addExtension(certificate.get(), issuer.get(), NID_key_usage, "critical,digitalSignature");
  addExtension(certificate.get(), issuer.get(), NID_ext_key_usage, "serverAuth");
  addExtension(certificate.get(), issuer.get(), NID_authority_key_identifier, "keyid:always");
  addExtension(certificate.get(), issuer.get(), NID_subject_alt_name, alternativeNames.join(','));
  sign(certificate.get(), issuer.get(), issuerKey.get());
  return {.certificate = toPem(certificate.get()), .key = toPem(key.get())};
}

} // namespace sandbox
