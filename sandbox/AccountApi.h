#pragma once

#include "sandbox/Faults.h"
#include "sandbox/HttpMessage.h"
#include "sandbox/Locked.h"
#include "sandbox/Service.h"
#include "sandbox/Tokens.h"

#include <QDateTime>
#include <QHash>
#include <QString>

#include <atomic>
#include <chrono>
#include <mutex>
#include <optional>

namespace sandbox {

class Library;

/// The account service: logins, their exchange for token codes, and refreshes. A login goes three steps, each possible
/// only after the one before: started (challenge known), signed in (ID token handed out), linked (verifier shown, token
/// code handed out). Any thread.
class AccountApi {
public:
  struct Settings {
    QString clientId{};
    QString siteUrl{};   ///< "https://HOST:PORT" of the web site
    QString linksFile{}; ///< keeps the links; empty: nothing does
  };
  AccountApi(const Tokens &idTokens, Faults &faults, const Library &library, const Settings &settings);

  [[nodiscard]] ServedAnswer configuration() const;
  [[nodiscard]] ServedAnswer getLogin(const ReceivedRequest &request);
  [[nodiscard]] ServedAnswer logout(const ReceivedRequest &request) const;
  [[nodiscard]] ServedAnswer exchangeVerifier(const ReceivedRequest &request, const QDateTime &now);
  [[nodiscard]] ServedAnswer refresh(const ReceivedRequest &request, const QDateTime &now);

  /// @return the login's id; nothing when a parameter of the login URL is wrong.
  [[nodiscard]] std::optional<QString> startLogin(const QueryParameters &query);
  [[nodiscard]] bool isStarted(const QString &login) const;
  /// The person signs in: @return the callback URL. Once per login.
  [[nodiscard]] std::optional<QByteArray> finishLogin(const QString &login, const QDateTime &now);

  [[nodiscard]] QByteArray loginToken(const QString &nonce, const QDateTime &now);
  [[nodiscard]] LinkedToken issue(bool linked, const QDateTime &now);
  void setTokenLifetime(std::chrono::seconds seconds) { lifetime = seconds; }

private:
  struct Login {
    QString nonce{};
    QString codeChallenge{}; ///< empty once the verifier was shown
    bool signedIn = false;
    QString tokenCode{};
    QString previousTokenCode{}; ///< still good: the answer with the current one may have been lost
  };
  using Logins = QHash<QString, Login>;

  [[nodiscard]] QByteArray token(const QString &subject, const QString &nonce, const QString &login,
                                 const QDateTime &now, std::optional<TokenFault> fault) const;
  [[nodiscard]] std::optional<QString> renewTokenCode(const QString &login, const QString &shownCode);
  [[nodiscard]] std::optional<QString> firstTokenCode(const QString &login, const QString &verifier);
  void loadLinks();
  void saveLinks();

  const Tokens &tokens;
  Faults &faults;
  const Library &library;
  const Settings settings;
  std::atomic<std::chrono::seconds> lifetime = std::chrono::seconds(3600);
  Locked<Logins> logins;
  std::mutex saving; ///< one writer of the links file at a time, each with the newest state
};

} // namespace sandbox
