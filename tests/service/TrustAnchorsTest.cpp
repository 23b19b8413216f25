#include "service/TrustAnchors.h"

#include "tests/service/ServiceFixture.h"

#include <curl/curl.h>
#include <gtest/gtest.h>
#include <openssl/pem.h>

#include <cstdio>

namespace {

using SslContext = std::unique_ptr<SSL_CTX, decltype([](SSL_CTX *context) { SSL_CTX_free(context); })>;
using Certificate = std::unique_ptr<X509, decltype([](X509 *certificate) { X509_free(certificate); })>;
using Verification = std::unique_ptr<X509_STORE_CTX, decltype([](X509_STORE_CTX *run) { X509_STORE_CTX_free(run); })>;

Certificate firstCertificate(const QString &pemFile) {
  std::FILE *const file = std::fopen(QFile::encodeName(pemFile).constData(), "r");
  if (!file) return nullptr;
  Certificate certificate(PEM_read_X509(file, nullptr, nullptr, nullptr));
  static_cast<void>(std::fclose(file));
  return certificate;
}

bool isTrusted(const TrustAnchors &anchors, X509 *certificate) {
  const SslContext context(SSL_CTX_new(TLS_client_method()));
  if (!anchors.installInto(context.get())) return false;
  const Verification run(X509_STORE_CTX_new());
  if (X509_STORE_CTX_init(run.get(), SSL_CTX_get_cert_store(context.get()), certificate, nullptr) != 1) return false;
  X509_STORE_CTX_set_flags(run.get(), X509_V_FLAG_NO_CHECK_TIME); // the system's anchors outlive their dates
  return X509_verify_cert(run.get()) == 1;
}

using TrustAnchorsTest = ServiceTest;

TEST_F(TrustAnchorsTest, areTheSystemsAndThoseOfTheFile) {
  const Certificate ours = firstCertificate(service.trustAnchorsFile());
  ASSERT_TRUE(ours);
  EXPECT_TRUE(isTrusted(TrustAnchors(service.trustAnchorsFile()), ours.get()));
  EXPECT_FALSE(isTrusted(TrustAnchors({}), ours.get()));

  const Certificate systems = firstCertificate(QFile::decodeName(curl_version_info(CURLVERSION_NOW)->cainfo));
  if (!systems) GTEST_SKIP() << "this system has no certificate authorities";
  EXPECT_TRUE(isTrusted(TrustAnchors(service.trustAnchorsFile()), systems.get()));
  EXPECT_TRUE(isTrusted(TrustAnchors({}), systems.get()));
  EXPECT_TRUE(isTrusted(TrustAnchors(profile.path(QStringLiteral("nowhere.pem"))), systems.get()));
}

} // namespace
