#pragma once

#include <QString>

#include <openssl/ssl.h>

#include <memory>

/// Who may vouch for a server: the system's certificate authorities and those of a file. Read once, so that a
/// connection does not pay for it.
class KaTrustAnchors {
public:
  /// @param extraFile  PEM; empty, missing or unreadable leaves the system's alone.
  explicit KaTrustAnchors(const QString &extraFile);

  /// Makes connections of @p context trust these and nothing else.
  [[nodiscard]] bool installInto(SSL_CTX *context) const;

private:
  struct Release {
    void operator()(X509_STORE *released) const noexcept { X509_STORE_free(released); }
  };
  std::unique_ptr<X509_STORE, Release> store;
};
