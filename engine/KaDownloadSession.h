#pragma once

#include "identity/KaLink.h"
#include "platform/ThreadBound.h"
#include "service/KaFaultCause.h"
#include "service/KaResultCode.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <functional>
#include <optional>
#include <utility>

class KaDownloadProcessorDelegate;
class KaServerRequest;
class KaStorage;
struct RefreshAnswer;

/// How the last refresh of the ID token ended.
enum class KaRefresh {
  Succeeded, ///< or there was none yet
  MayPass,   ///< failed for a cause that may pass by itself: no answer, or none of the service's; not the right time
  Refused,   ///< the service or the token's verification said no: it takes a new link
};

/// What a run holds of its link: the number it began with, the ID token, the user, and fresh credentials in the
/// storage. begin() comes first; once isOver() nothing more is listed, saved or told in its name. Download thread, but
/// for deleteCredential.
class KaDownloadSession {
public:
  /// All of it outlives this object.
  struct Parts {
    KaDownloadProcessorDelegate &delegate;
    KaLink &link;
    KaServerRequest &request;
    KaStorage &storage;
    const std::atomic<bool> &endAppFlag;
  };
  explicit KaDownloadSession(const Parts &parts) : with(parts) {}
  KaDownloadSession(const KaDownloadSession &) = delete;
  KaDownloadSession &operator=(const KaDownloadSession &) = delete;

  /// Takes @p link for the coming run. What is known of refreshes goes with the link.
  void begin(const KaLinkSnapshot &link);
  /// Whether the program ends or the run has outlived its link.
  [[nodiscard]] bool isOver() const { return with.endAppFlag || isLinkOver(); }
  [[nodiscard]] bool isLinkOver() const { return !with.link.isCurrent(current.number); }
  /// The link that the last run began with; 0 before the first.
  [[nodiscard]] KaLinkNumber linkNumber() const { return current.number; }
  /// Calls @p told unless the link is over.
  void tell(const std::function<void()> &told) { with.link.whileCurrent(current.number, told); }

  /// Hands the code verifier of the link's login in when it is still held. A failure shows at the next refresh; unless
  /// the service has refused the verifier, it is held for the next time.
  void exchangeCodeVerifier();
  /// Replaces the ID token by a new one that holds. @return LinkInvalid when there is no link or the answer does not
  /// hold, else the request's code; lastRefresh() tells the two kinds of failure apart.
  [[nodiscard]] KaResultCode refreshIdToken();
  /// Exchanges the ID token for temporary credentials. @return LinkInvalid, too, when the token names no user; NoBody
  /// for an answer that cannot be parsed.
  [[nodiscard]] KaResultCode getCredential();
  [[nodiscard]] KaRefresh lastRefresh() const { return refreshed; }
  /// Why it failed; Unknown if it did not.
  [[nodiscard]] KaFaultCause refreshFault() const { return refreshCause; }
  /// A failure was told of this link: the first refresh that succeeds is told the delegate.
  void noteFailureTold() { failureTold = true; }
  /// @return whether the failed refresh was not told yet, which it counts as from now on, until one has succeeded.
  [[nodiscard]] bool noteRefreshFailureTold() { return !std::exchange(refreshFailureTold, true); }
  /// Whether the credentials are missing, or expire within 600 seconds.
  [[nodiscard]] bool isExpiring() const;
  /// Whether there are none that count any more: a refusal then says nothing of the link.
  [[nodiscard]] bool hasExpired() const;
  /// Refreshes token and credentials when isExpiring().
  [[nodiscard]] KaResultCode renewIfExpiring();

  /// Forgets the credentials. Any thread.
  void deleteCredential();

  /// Absent until credentials were got for the first time.
  [[nodiscard]] const std::optional<QString> &userUUID() const { return user; }

private:
  struct Refreshed {
    KaResultCode result = KaResultCode::Success;
    KaRefresh kind = KaRefresh::Succeeded;
    KaFaultCause cause = KaFaultCause::Unknown;
  };

  [[nodiscard]] static Refreshed failed(KaResultCode result, KaRefresh kind);
  bool keepTokenCode(const QString &tokenCode);
  void tellUnsaved(const QString &what);
  [[nodiscard]] Refreshed askForToken();
  [[nodiscard]] Refreshed adoptToken(const QByteArray &answer, const QString &nonce);
  [[nodiscard]] KaResultCode takeUser();

  const Parts with;
  const platform::ThreadBound thread;
  KaLinkSnapshot current;
  KaRefresh refreshed = KaRefresh::Succeeded;
  KaFaultCause refreshCause = KaFaultCause::Unknown;
  bool failureTold = false;
  bool refreshFailureTold = false;
  std::optional<QString> verifier; ///< taken from the link, and not exchanged yet
  std::optional<QString> user;
  bool hasToldUnsaved = false; ///< the user, once a process
};
