#pragma once

#include "service/HttpTransfer.h"
#include "service/KaCredential.h"
#include "service/KaResultCode.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <functional>
#include <optional>

struct ServerAnswer {
  KaResultCode result = KaResultCode::Success;
  qint64 statusCode = 0; ///< HTTP status; 0 when no answer arrived
  QByteArray data{};     ///< the body; kept whatever the result
};

struct SavedObject {
  KaResultCode result = KaResultCode::Success;
  qint64 statusCode = 0;
  qint64 outputFileSize = 0; ///< bytes on disk
  QString outputFilePath{};  ///< empty when nothing was saved
};

struct ObjectHead {
  KaResultCode result = KaResultCode::Success;
  qint64 statusCode = 0;
  qint64 contentLength = 0;
};

struct TagVerdict {
  KaResultCode result = KaResultCode::Success;
  bool bDownloadContent = true;
};

/// Every HTTP exchange with the service. Each operation blocks its thread until the answer or a limit and returns a
/// result code; nothing is retried and nothing is carried between requests. One thread at a time, but for
/// stopServerRequest.
///
/// Results of every operation: SecureConnectionFailed, Offline (any other transport failure), RetryLater (the wait ran
/// out, or 500 and 503), NoBody (success without a body), LinkInvalid (400, 401, 403), ServerError (another status).
class KaServerRequest {
public:
  /// @param endAppFlag  once true, requests end at once with Offline; may be null, else it outlives this object.
  explicit KaServerRequest(const std::atomic<bool> *endAppFlag = nullptr);

  /// Ends the request in flight at once. Any thread.
  void stopServerRequest();

  [[nodiscard]] static KaResultCode checkHTTPResponse(qint64 statusCode);

  /// The service's configuration document (JSON).
  [[nodiscard]] ServerAnswer getKaAppId();

  /// @name S3 through presigned URLs. NoHttpStatus whenever no status arrived.
  /// @{
  [[nodiscard]] ServerAnswer getAwsS3KeyList(const QString &url, const KaCredential &credential);
  [[nodiscard]] ServerAnswer getAwsPreviewlList(const QString &url, const KaCredential &credential);
  /// Saves the object beside @p defaultFilePath under its own name, or under that path with DefaultFileName when it
  /// carries none; an existing file is never touched. FileNotSaved, or DiskFull when the disk fills up meanwhile. An
  /// object that is not there gives NoBody with status 404. Nothing is on disk unless an output path is returned.
  [[nodiscard]] SavedObject getAwsS3Object(const QString &url, const KaCredential &credential,
                                           const QString &defaultFilePath);
  /// As getAwsS3Object, with the name given by the caller.
  [[nodiscard]] SavedObject getAwsS3Preview(const QString &url, const KaCredential &credential,
                                            const QString &defaultFilePath, const std::optional<QString> &fileName);
  /// @}

  /// @name S3, signed here. No answer gives ServerError.
  /// @{
  [[nodiscard]] ServerAnswer getAWSS3ObjectTag(const KaCredential &credential, const QString &objectKey);
  [[nodiscard]] ObjectHead headAWSS3Object(const KaCredential &credential, const QString &objectKey);
  /// Whether an object belongs to the 10G storage: all but those whose storage period is "30".
  [[nodiscard]] TagVerdict checkObjectTagIs10GStorage(const KaCredential &credential, const QString &objectKey);
  /// @}

  /// The STS answer (XML) for a URL that holds the whole query.
  [[nodiscard]] ServerAnswer getAwsTemporaryCredential(const QString &url);

  /// Posts one report, a whole PutLogEvents document, to the log service. An answer without a body is a success.
  ServerAnswer notifyDownloadCompletion(const KaCredential &credential, const QString &logMessage);

  /// @name Identity: defined in the identity room.
  /// @{
  /// Exchanges the login's code verifier for a token code and stores that. @p linkage is the stored ID token.
  [[nodiscard]] KaResultCode getTokenCode(const QString &codeVerifier, const QString &linkage);
  /// Asks for a new ID token; the answer's token code replaces the stored one.
  [[nodiscard]] ServerAnswer refreshIdToken(const QString &url, const QString &oldIdToken, const QString &nonce);
  [[nodiscard]] ServerAnswer requestJWKS(const QString &url);
  /// @}

private:
  enum class EmptyBody { IsNoBody, IsSuccess };
  /// The file name that an answer gives its object, if any.
  using NameOf = std::function<std::optional<QString>(const HttpAnswer &answer)>;

  /// The result of an exchange before its body is looked at.
  [[nodiscard]] static KaResultCode resultOf(const HttpAnswer &answer);
  [[nodiscard]] ServerAnswer exchange(const HttpRequest &request, EmptyBody emptyBody = EmptyBody::IsNoBody);
  [[nodiscard]] ServerAnswer presignedList(const QString &url, const KaCredential &credential);
  [[nodiscard]] SavedObject saveObject(const QString &url, const KaCredential &credential,
                                       const QString &defaultFilePath, const NameOf &nameOf);

  HttpTransfer transfer;
};
