#pragma once

#include "sandbox/Endpoint.h"
#include "sandbox/Fault.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <chrono>
#include <memory>

namespace sandbox {

class Library;

struct ServiceOptions {
  quint16 port = 0; ///< 0: the one that the folder remembers if it is free, else any free one
  /// Keeps ca.pem, the authority's and the token key, the port and the links, so that a later service with the same
  /// folder is the same service. Empty: a temporary folder, gone with the service.
  QString folder{};
  /// The one that its hosts are below. "sandbox.test" is the other one that its authority may vouch for; it is
  /// nobody's, so that clients find it through a proxy or a name server of a test's own.
  QString domain = QStringLiteral("localhost");
  bool onIPv6 = false;             ///< answers on ::1, too, on the same port; not at a distance
  QByteArray region = "eu-west-1"; ///< what requests have to be signed for
  int requestsPerConnection = 100; ///< the last answer says that the connection ends
  /// Both put the service at a distance, as DistantLine does, but for badlyCertifiedPort().
  std::chrono::milliseconds roundTrip{}; ///< 0: none
  qint64 bytesPerSecond = 0;             ///< each way, shared by all connections; 0: as fast as it goes
};

/// What an agent holds after a login.
struct LinkedToken {
  QString idToken{};
  QString nonce{};        ///< the one inside the ID token
  QString codeVerifier{}; ///< of the challenge that the login was given
  QString tokenCode{};    ///< empty while the verifier was not exchanged
};

/// Temporary credentials as the token service issues them.
struct TemporaryCredential {
  QString accessKeyId{};
  QString secretAccessKey{};
  QString sessionToken{};
  qint64 expiration = 0; ///< seconds since 1970
};

/// One report that arrived properly signed.
struct LogEvent {
  QString group{};
  QString stream{};
  qint64 timestamp = 0; ///< milliseconds since 1970
  QString message{};
};

enum class BadCertificate {
  UnknownAuthority, ///< right names, an authority that ca.pem does not hold
  WrongName,        ///< right authority, another host's name
  Expired,
};

/// Everything the agent talks to, over HTTPS on one loopback port, near or at a distance: api., www., idp., sts. and
/// logs.localhost, BUCKET.s3.localhost or s3.localhost/BUCKET, and localhost/BUCKET for other clients. Starts answering
/// in the constructor, which throws std::runtime_error when it cannot, and stops in the destructor without waiting for
/// clients. Every function may be called from any thread.
class Service {
public:
  explicit Service(const ServiceOptions &options = {});
  ~Service();
  Service(const Service &) = delete;
  Service &operator=(const Service &) = delete;

  [[nodiscard]] quint16 port() const;
  /// The PEM file of the authority that signed the certificate of port().
  [[nodiscard]] QString trustAnchorsFile() const;
  /// "https://idp.localhost:PORT", and the audience of its tokens.
  [[nodiscard]] QString issuer() const;
  [[nodiscard]] QString clientId() const;

  /// The user defaults that point an agent here.
  [[nodiscard]] QHash<QString, QString> userDefaults() const;
  /// The same towards another port of this service, see badlyCertifiedPort().
  [[nodiscard]] QHash<QString, QString> userDefaults(quint16 towards) const;
  /// Opens one more port with the same service behind a certificate that no client may accept.
  [[nodiscard]] quint16 badlyCertifiedPort(BadCertificate kind);
  [[nodiscard]] Library &library();

  /// Faults of one endpoint are met in the order given; each request meets at most one.
  void order(Endpoint endpoint, const Fault &fault);
  /// The @p number-th request from now on, counted from 1, meets it once, whatever its endpoint.
  void orderAt(int number, const Fault &fault);
  /// @param times  -1: until cleared.
  void setTokenFault(TokenFault fault, int times = 1);
  /// Drops all faults, token faults too, and lets go of what they hold.
  void clearFaults();
  void setIdTokenLifetime(std::chrono::seconds lifetime);    ///< 3600 s
  void setCredentialLifetime(std::chrono::seconds lifetime); ///< 3600 s
  void setListPageSize(int keys);                            ///< 1000, which is also the most
  /// Sets the service's clock so far ahead of this computer's, or behind. It dates answers, tokens and credentials, and
  /// judges them and signatures.
  void setClockAhead(std::chrono::seconds ahead);
  /// Every credential issued so far is refused from now on.
  void revokeCredentials();

  /// Requests count as they arrive, before they are answered. A reset also forgets requests() and the connections.
  [[nodiscard]] int requestCount(Endpoint endpoint) const;
  void resetRequestCounts();
  /// The latest 20,000 requests, oldest first.
  [[nodiscard]] QList<RequestRecord> requests() const;
  /// @return false when @p timeout passed before @p count requests had arrived since the last reset.
  [[nodiscard]] bool waitForRequests(Endpoint endpoint, int count, std::chrono::milliseconds timeout) const;
  /// The connections over which a request to the storage has come since the last reset; those among them that took up
  /// an earlier TLS session.
  [[nodiscard]] int connectionCount() const;
  [[nodiscard]] int resumedConnectionCount() const;
  /// Ends every connection that waits for its next request, so that its client finds it dead; one in mid-answer once
  /// that is out.
  void closeIdleConnections();
  [[nodiscard]] QList<LogEvent> logEvents() const;
  /// What a person does in the browser with the agent's login URL. @return the callback URL; empty when that is
  /// refused.
  [[nodiscard]] QString signIn(const QString &getLoginUrl);
  /// A finished login, past all faults, whose verifier was exchanged, or was not yet.
  [[nodiscard]] LinkedToken issueLinkedToken();
  [[nodiscard]] LinkedToken issueUnlinkedToken();
  /// The ID token of a login with @p nonce, token faults included.
  [[nodiscard]] QString issueIdToken(const QString &nonce);
  [[nodiscard]] TemporaryCredential issueCredential();
  /// A presigned GET of an object as any client would make it; sent with the header x-amz-security-token.
  [[nodiscard]] QString presignedUrl(const TemporaryCredential &credential, const QString &bucket,
                                     const QString &key) const;

private:
  class Private;
  std::unique_ptr<Private> d;
};

} // namespace sandbox
