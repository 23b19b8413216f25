#pragma once

#include "engine/PresignedUrl.h"
#include "platform/Mutex.h"
#include "service/KaCredential.h"
#include "service/KaResultCode.h"

#include <QString>

#include <optional>

class KaDownloadProcessorDelegate;
class KaServerRequest;

/// What requests to the storage are made with; all empty without credentials.
struct KaStorageAccess {
  KaCredential credential{};
  PresigningKeys presigning{};
};

/// Keeps the ID token and the temporary storage credentials fresh. Download thread, but for what says otherwise.
class KaDownloadSession {
public:
  KaDownloadSession(KaDownloadProcessorDelegate &toAsk, KaServerRequest &toSend) : delegate(toAsk), request(toSend) {}
  KaDownloadSession(const KaDownloadSession &) = delete;
  KaDownloadSession &operator=(const KaDownloadSession &) = delete;

  /// Hands a login's code verifier in when one is held. A failure shows at the next refresh.
  void exchangeCodeVerifier(const std::optional<QString> &idToken);

  /// Replaces @p idToken by a new one that holds. @return LinkInvalid when there is nothing to refresh or the answer
  /// does not hold, else the request's code.
  [[nodiscard]] KaResultCode refreshIdToken(std::optional<QString> &idToken);
  /// Exchanges @p idToken for temporary credentials. @return LinkInvalid, too, when the token names no user.
  [[nodiscard]] KaResultCode getCredential(const QString &idToken);
  /// Refreshes token and credentials when the latter expire within 600 seconds.
  [[nodiscard]] KaResultCode renewIfExpiring(std::optional<QString> &idToken);

  /// Forgets the credentials. Any thread.
  void deleteCredential();

  /// Any thread.
  [[nodiscard]] KaStorageAccess access() const { return storageAccess.get(); }
  /// A presigned GET of an object in the content bucket.
  [[nodiscard]] QString contentURL(const QString &objectKey) const;
  /// A presigned GET of the user's list of previews.
  [[nodiscard]] QString previewListURL() const;

  /// Absent until credentials were got for the first time.
  [[nodiscard]] const std::optional<QString> &userUUID() const { return user; }

  [[nodiscard]] static QString createGetCredentialString(const QString &idToken);

private:
  [[nodiscard]] KaResultCode adoptToken(const QByteArray &answer, const QString &nonce,
                                        std::optional<QString> &idToken);

  KaDownloadProcessorDelegate &delegate;
  KaServerRequest &request;
  platform::Guarded<KaStorageAccess> storageAccess;
  std::optional<QString> user;
};
