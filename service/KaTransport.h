#pragma once

#include "service/KaFamilyChoice.h"
#include "service/KaProxyChoice.h"
#include "service/KaTrustAnchors.h"

#include <chrono>
#include <memory>

/// What several transfers have in common: limits and extra trust anchors, from the user defaults
/// "timeoutIntervalForRequest", "timeoutIntervalForResource" (seconds) and "trustedCertificatesFile", read when it is
/// made; the TLS sessions that their kept connections may resume; and what they have found of proxies and name servers.
/// Any thread.
class KaTransport {
public:
  KaTransport();
  ~KaTransport();
  KaTransport(const KaTransport &) = delete;
  KaTransport &operator=(const KaTransport &) = delete;

  const std::chrono::milliseconds idleLimit;  ///< without a byte
  const std::chrono::milliseconds wholeLimit; ///< of an exchange
  const KaTrustAnchors anchors;
  KaProxyChoice proxies;
  KaFamilyChoice families;

  /// News of the network: what was found of proxies and name servers counts no more.
  void forgetNetwork();

  /// Without libcurl nothing can be had.
  [[nodiscard]] bool isReady() const { return ready; }
  /// What libcurl keeps the sessions in; null when it cannot be had, and then none are.
  [[nodiscard]] void *sessions() const;

private:
  class Sessions;
  const bool ready; ///< first: the sessions are libcurl's
  const std::unique_ptr<Sessions> kept;
};
