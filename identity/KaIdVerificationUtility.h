#pragma once

#include "service/KaFaultCause.h"
#include "service/KaResultCode.h"

#include <QByteArray>
#include <QString>

#include <optional>

class KaServerRequest;

/// What a token was found to be.
struct KaTokenVerdict {
  KaResultCode result = KaResultCode::Success; ///< or LinkInvalid, whatever the reason
  /// The reason lies outside the token: what it is checked against could not be had, or the local clock calls it
  /// expired. The same token, or the next one, may hold later.
  bool mayPass = false;
  KaFaultCause cause = KaFaultCause::Unknown; ///< why it does not hold
};

/// Checks ID tokens: RS256-signed by the identity provider for this application, not expired, with the expected nonce.
/// Any thread; what needs the network goes through the request object handed in, which can be stopped.
class KaIdVerificationUtility {
public:
  KaIdVerificationUtility() = delete;

  /// @param checkNonce  it came back from the browser, as the end of a login; else the service gave it to us.
  [[nodiscard]] static KaTokenVerdict validateJWT(KaServerRequest &request, const std::optional<QString> &token,
                                                  bool checkNonce, const std::optional<QString> &nonce);

  struct Header {
    bool valid = false; ///< names the one algorithm that counts
    QString kid{};      ///< empty when there is none, or the header could not be decoded
  };
  [[nodiscard]] static Header validateHeader(const QString &header);
  [[nodiscard]] static bool validatePayload(KaServerRequest &request, const QString &payload, bool checkNonce,
                                            const std::optional<QString> &nonce);
  [[nodiscard]] static bool validateSignature(KaServerRequest &request, const QString &signature, const QString &header,
                                              const QString &payload, const QString &kid);
  /// @param exponent, modulus, signature  base64url
  [[nodiscard]] static bool verify(const QString &exponent, const QString &modulus, const QString &signature,
                                   const QString &header, const QString &payload);

  /// Strict base64url; absent when undecodable. A length of 3 modulo 4 is refused.
  [[nodiscard]] static std::optional<QByteArray> base64UrlSafeDecode(const QString &text);

  /// A claim of a token, signature unchecked; absent when the token does not decode or lacks it.
  [[nodiscard]] static std::optional<QString> parseUserUUID(const QString &token); ///< "sub"
  [[nodiscard]] static std::optional<QString> ParseNonce(const QString &token);

  /// Fetches the expected audience unless it is known already; a failure leaves it empty until the next call.
  static void initializeAppId(KaServerRequest &request);
};
