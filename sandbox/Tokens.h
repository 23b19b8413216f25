#pragma once

#include "sandbox/Fault.h"

#include <QByteArray>
#include <QDateTime>
#include <QJsonObject>
#include <QString>

#include <memory>
#include <optional>

namespace sandbox {

/// Why a token is no token of ours.
enum class TokenFlaw { Malformed, WrongAlgorithm, UnknownKey, BadSignature, WrongIssuer, WrongAudience, Expired };

/// Makes and checks the identity provider's RS256 tokens. Any thread.
class Tokens {
public:
  /// @param keyFile  where the key is kept from one process to the next; empty: nowhere.
  Tokens(const QString &keyFile, const QString &issuer, const QString &clientId);
  ~Tokens();
  Tokens(const Tokens &) = delete;
  Tokens &operator=(const Tokens &) = delete;

  struct Claims {
    QString subject{};
    QString nonce{};
    QString session{}; ///< the login that the token comes from
    QDateTime expiry{};
  };
  [[nodiscard]] QByteArray issue(const Claims &claims, std::optional<TokenFault> fault = std::nullopt) const;

  struct Checked {
    QJsonObject payload{};
    std::optional<TokenFlaw> flaw{}; ///< the first flaw, Expired last of all; the payload is there when it is Expired
  };
  [[nodiscard]] Checked check(const QByteArray &token, const QDateTime &now) const;

  /// The key set, an unrelated key first.
  [[nodiscard]] QByteArray keySet() const;

private:
  class Private;
  std::unique_ptr<Private> d;
};

[[nodiscard]] QByteArray randomBytes(qsizetype count);
[[nodiscard]] QByteArray base64Url(const QByteArray &bytes);
[[nodiscard]] QByteArray sha256(const QByteArray &bytes);
[[nodiscard]] QByteArray compactJson(const QJsonObject &object);

} // namespace sandbox
