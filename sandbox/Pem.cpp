#include "sandbox/Pem.h"

namespace sandbox {

namespace {

Bio memoryToWrite() {
  Bio memory(BIO_new(BIO_s_mem()));
  requireSsl(memory != nullptr, "memory");
  return memory;
}

QByteArray contentOf(BIO *memory) {
  char *data = nullptr;
  const long size = BIO_get_mem_data(memory, &data);
  return QByteArray(data, qsizetype(size));
}

Bio memoryToRead(const QByteArray &pem) {
  Bio memory(BIO_new_mem_buf(pem.constData(), int(pem.size())));
  requireSsl(memory != nullptr, "memory");
  return memory;
}

} // namespace

QByteArray toPem(X509 *certificate) {
  const Bio memory = memoryToWrite();
  requireSsl(PEM_write_bio_X509(memory.get(), certificate) == 1, "certificate to PEM");
  return contentOf(memory.get());
}

QByteArray toPem(EVP_PKEY *key) {
  const Bio memory = memoryToWrite();
  requireSsl(PEM_write_bio_PrivateKey(memory.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1, "key to PEM");
  return contentOf(memory.get());
}

Certificate certificateFromPem(const QByteArray &pem) {
  Certificate certificate(PEM_read_bio_X509(memoryToRead(pem).get(), nullptr, nullptr, nullptr));
  requireSsl(certificate != nullptr, "certificate from PEM");
  return certificate;
}

PrivateKey keyFromPem(const QByteArray &pem) {
  PrivateKey key(PEM_read_bio_PrivateKey(memoryToRead(pem).get(), nullptr, nullptr, nullptr));
  requireSsl(key != nullptr, "key from PEM");
  return key;
}

} // namespace sandbox
