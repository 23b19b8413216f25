#pragma once

#include "platform/ReleasedBy.h"

#include <openssl/err.h>

#include <memory>

/// Owners for what OpenSSL hands out. For source files of this room only.

template <class T, auto Release> using OpenSslHandle = std::unique_ptr<T, platform::ReleasedBy<Release>>;

/// Leaves this thread's error queue as empty as it was found: the TLS layer on the same thread reads it too.
class OpenSslErrorScope {
public:
  OpenSslErrorScope() = default;
  ~OpenSslErrorScope() { ERR_clear_error(); }
  OpenSslErrorScope(const OpenSslErrorScope &) = delete;
  OpenSslErrorScope &operator=(const OpenSslErrorScope &) = delete;
};
