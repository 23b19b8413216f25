#pragma once

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <memory>
#include <stdexcept>
#include <string>

/// Owners of OpenSSL's handles, for source files only.
namespace sandbox {

template <auto Release> struct ReleasedBy {
  template <class T> void operator()(T *handle) const noexcept { Release(handle); }
};

using Bio = std::unique_ptr<BIO, ReleasedBy<&BIO_free_all>>;
using BigNumber = std::unique_ptr<BIGNUM, ReleasedBy<&BN_free>>;
using DigestContext = std::unique_ptr<EVP_MD_CTX, ReleasedBy<&EVP_MD_CTX_free>>;
using PrivateKey = std::unique_ptr<EVP_PKEY, ReleasedBy<&EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, ReleasedBy<&X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, ReleasedBy<&X509_EXTENSION_free>>;

/// Throws with the library's own reason unless @p succeeded.
inline void requireSsl(bool succeeded, const char *what) {
  if (succeeded) return;
  char reason[256];
  ERR_error_string_n(ERR_get_error(), reason, sizeof reason);
  throw std::runtime_error(std::string(what) + ": " + reason);
}

} // namespace sandbox
