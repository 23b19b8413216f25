#pragma once

#include "sandbox/Credentials.h"
#include "sandbox/HttpMessage.h"
#include "sandbox/Tokens.h"

#include <QDateTime>

#include <atomic>
#include <chrono>

namespace sandbox {

/// The token service: an ID token in, temporary credentials out. Any thread.
class StsApi {
public:
  StsApi(const Tokens &idTokens, Credentials &issued) : tokens(idTokens), credentials(issued) {}

  [[nodiscard]] ServedAnswer answer(const ReceivedRequest &request, const QDateTime &now);
  void setLifetime(std::chrono::seconds seconds) { lifetime = seconds; }
  [[nodiscard]] TemporaryCredential issue(const QString &userId, const QDateTime &now);

private:
  const Tokens &tokens;
  Credentials &credentials;
  std::atomic<std::chrono::seconds> lifetime = std::chrono::seconds(3600);
};

} // namespace sandbox
