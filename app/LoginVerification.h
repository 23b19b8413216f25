#pragma once

#include "app/KaModelFacade.h"
#include "identity/KaIdVerificationUtility.h"
#include "service/KaServerRequest.h"

#include <atomic>
#include <functional>
#include <optional>
#include <thread>

/// One login's token being verified on a thread of its own. Made and destroyed on the main thread; the destructor
/// stops what is under way and joins.
class KaModelFacade::LoginVerification {
public:
  using Report = std::function<void(LoginVerification &ended, const KaTokenVerdict &verdict)>;

  /// @param report  called once, on the verifying thread, as its last act.
  LoginVerification(const QString &idToken, const std::optional<QString> &expectedNonce, Report report);
  ~LoginVerification();
  LoginVerification(const LoginVerification &) = delete;
  LoginVerification &operator=(const LoginVerification &) = delete;

  /// Ends it soon and makes its verdict worthless. Does not block.
  void drop();
  [[nodiscard]] bool isDropped() const { return endFlag; }
  [[nodiscard]] const QString &idToken() const { return token; }

  /// What was reported, once the main thread has taken note of it. Main thread.
  void setVerdict(const KaTokenVerdict &verdict) { noted = verdict; }
  [[nodiscard]] std::optional<KaTokenVerdict> verdict() const { return noted; }

private:
  void verify(const std::optional<QString> &expectedNonce, const Report &report);

  const QString token;
  std::optional<KaTokenVerdict> noted; ///< main thread
  std::atomic<bool> endFlag = false;
  KaServerRequest request;
  std::thread thread;
};
