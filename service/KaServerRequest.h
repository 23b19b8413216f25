#pragma once

#include "service/ArrivingObject.h"
#include "service/KaHttpTransfer.h"
#include "service/KaKeptConnections.h"
#include "service/ServerAnswer.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

struct SaveOrder;

/// An answer about an object; for its content, with the file that this has come into.
struct ArrivedObject {
  HttpAnswer answer{};
  std::unique_ptr<ArrivingObject> content{}; ///< null for other questions
};

/// Every HTTP exchange with the service. Each operation blocks its thread until the answer or a limit and returns a
/// result code; nothing is retried and nothing is carried between requests. One thread at a time, but for
/// stopServerRequest.
///
/// Results of every operation: SecureConnectionFailed, Offline (any other transport failure), RetryLater (the wait ran
/// out, or 500 and 503), NoBody (success without a body), LinkInvalid (400, 401, 403), ServerError (another status).
class KaServerRequest {
public:
  /// @param shallEnd  asked on the thread of the request: once true, requests end at once with Offline, and what has
  /// arrived is not saved. May be empty.
  explicit KaServerRequest(KaHttpTransfer::ShallEnd shallEnd = {});

  /// Ends every request in flight at once; one that brings a token code may still have its answer for half a second.
  /// Any thread.
  void stopServerRequest();

  [[nodiscard]] static KaResultCode checkHTTPResponse(qint64 statusCode);

  /// The service's configuration document (JSON).
  [[nodiscard]] ServerAnswer getKaAppId();

  /// @name S3 through presigned URLs. NoHttpStatus whenever no status arrived.
  /// @{
  [[nodiscard]] ServerAnswer getAwsS3KeyList(const QString &url, const KaCredential &credential);
  /// @p take gets the body of a list that is there, however long; the answer has none then. Refusing it gives Offline.
  [[nodiscard]] ServerAnswer getAwsPreviewlList(const QString &url, const KaCredential &credential,
                                                const KaHttpTransfer::BodySink &take);
  /// Saves the object as ordered, with DefaultFileName when it carries no name; an existing file is never touched. One
  /// that is not the right one, and not to be kept, leaves nothing on disk but the same result, without an output path.
  /// FileNotSaved, or DiskFull when the disk fills up meanwhile; ObjectMissing for an object that is not there. Nothing
  /// is on disk unless an output path is returned.
  [[nodiscard]] SavedObject getAwsS3Object(const QString &url, const KaCredential &credential, const SaveOrder &order);
  /// As getAwsS3Object, with the name given by the caller.
  [[nodiscard]] SavedObject getAwsS3Preview(const QString &url, const KaCredential &credential, const SaveOrder &order,
                                            const std::optional<QString> &fileName);
  /// @}

  /// @name S3, signed here. No answer gives ServerError.
  /// @{
  [[nodiscard]] ServerAnswer getAWSS3ObjectTag(const KaCredential &credential, const QString &objectKey);
  [[nodiscard]] ObjectHead headAWSS3Object(const KaCredential &credential, const QString &objectKey);
  /// Whether an object belongs to the 10G storage: all but those whose storage period is "30".
  [[nodiscard]] TagVerdict checkObjectTagIs10GStorage(const KaCredential &credential, const QString &objectKey);
  /// @}

  /// @name What answers mean that came before their turn
  /// @{
  /// Closes the connections that are kept. Any thread.
  void dropConnections();
  /// News of the network, or of sleep: what was open may lead nowhere, and another way may be right. Any thread.
  void networkChanged();
  /// The connections of all requests to S3.
  [[nodiscard]] KaKeptConnections &connections() { return storageConnections; }
  [[nodiscard]] static ServerAnswer presignedAnswer(HttpAnswer answer);
  [[nodiscard]] static ObjectHead headOf(const HttpAnswer &answer);
  [[nodiscard]] static ServerAnswer tagsOf(HttpAnswer answer);
  [[nodiscard]] static TagVerdict tagVerdictOf(const ServerAnswer &tags);
  /// The same verdict without a word in the log. Any thread.
  [[nodiscard]] static bool is10GStorageByTags(const QByteArray &tags);
  /// Absent when it cannot get its name because that lies on another file system.
  [[nodiscard]] std::optional<SavedObject> saveArrivedObject(const ArrivedObject &arrived, const SaveOrder &order);
  [[nodiscard]] std::optional<SavedObject> saveArrivedPreview(const ArrivedObject &arrived, const SaveOrder &order,
                                                              const std::optional<QString> &fileName);
  /// @}

  /// Exchanges an ID token for temporary storage credentials, at STS.
  [[nodiscard]] CredentialAnswer getAwsTemporaryCredential(const QString &idToken);
  [[nodiscard]] static QString createGetCredentialString(const QString &idToken);

  /// Posts one report, a whole PutLogEvents document, to the log service. An answer without a body is a success.
  ServerAnswer notifyDownloadCompletion(const KaCredential &credential, const QString &logMessage);

  /// @name Identity: defined in the identity room.
  /// @{
  /// Exchanges a login's code verifier for a token code. @p linkage is the ID token of that login.
  [[nodiscard]] TokenCodeAnswer getTokenCode(const QString &codeVerifier, const QString &linkage);
  /// Asks for a new ID token, showing the token code when there is one.
  [[nodiscard]] RefreshAnswer refreshIdToken(const QString &oldIdToken, const QString &nonce,
                                             const std::optional<QString> &tokenCode);
  [[nodiscard]] ServerAnswer requestJWKS(const QString &url);
  /// @}

private:
  enum class EmptyBody { IsNoBody, IsSuccess };
  /// The file name that an answer gives its object, if any.
  using NameOf = std::function<std::optional<QString>(const HttpAnswer &answer)>;

  /// The result of an exchange before its body is looked at.
  [[nodiscard]] static KaResultCode resultOf(const HttpAnswer &answer);
  /// The same for an object that is to be saved, its body counted.
  [[nodiscard]] static KaResultCode objectResultOf(const HttpAnswer &answer);
  [[nodiscard]] static ServerAnswer answerOf(HttpAnswer answer, EmptyBody emptyBody);
  [[nodiscard]] ServerAnswer exchange(const HttpRequest &request, EmptyBody emptyBody = EmptyBody::IsNoBody);
  [[nodiscard]] ServerAnswer presignedList(const QString &url, const KaCredential &credential,
                                           const KaHttpTransfer::BodySink &take = {});
  [[nodiscard]] SavedObject saveObject(const QString &url, const KaCredential &credential, const SaveOrder &order,
                                       const NameOf &nameOf);
  [[nodiscard]] std::optional<SavedObject> placeObject(const ArrivedObject &arrived, const SaveOrder &order,
                                                       const NameOf &nameOf);

  const KaHttpTransfer::ShallEnd shallEnd;
  const std::shared_ptr<KaTransport> transport;
  KaHttpTransfer transfer; ///< of all requests but those to S3: a fresh connection each
  KaKeptConnections storageConnections;
};
