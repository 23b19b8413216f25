#include "log/KaLogUtility.h"
#include "service/ArrivingObject.h"
#include "service/HttpStatus.h"
#include "service/KaApplicationConstants.h"
#include "service/KaServerRequest.h"
#include "service/KaXMLParser.h"
#include "service/PercentEncoding.h"
#include "service/SaveOrder.h"
#include "service/SavedFileName.h"
#include "service/SignatureV4.h"

#include <QDateTime>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::seconds kSignedRequestWait(100);
constexpr qsizetype kMostLoggedBody = 16 * 1024;

HttpRequest presignedRequest(const QString &url, const KaCredential &credential) {
  return {.url = url, .headers = {{"x-amz-security-token", credential.sessionToken.toUtf8()}}};
}

std::optional<QString> nameInHeader(const HttpAnswer &answer) {
  for (const auto &[name, value] : answer.headers)
    if (name == "x-amz-meta-file-name") return decodeFileNameHeader(value);
  return {};
}

/// A request to the content bucket that we sign ourselves.
struct SignedRequest {
  QString url;
  QString timestamp;
  QString sessionToken;
  QString payloadHash;
  QString authorization;
};

SignedRequest signedRequest(const KaCredential &credential, const QString &objectKey, const QString &method,
                            const QString &query) {
  const QString host =
      KaApplicationConstants::awsS3BucketName() + u'.' + KaApplicationConstants::awsS3AccelerateHostName();
  const QString path = u'/' + percentEncodedKey(objectKey);
  SignedRequest made;
  made.url = u"https://"_s + host + path + u'?' + query;
  made.timestamp = signature_v4::getCurrentTimeStampUTCFormat(QDateTime::currentDateTimeUtc());
  made.sessionToken = credential.sessionToken;
  made.payloadHash = signature_v4::toHex(signature_v4::toSHA256hash(QString()));
  made.authorization =
      signRequests(credential, {.timestamp = made.timestamp,
                                .service = u"s3"_s,
                                .method = method,
                                .canonicalUri = path,
                                .canonicalQuery = query,
                                .canonicalHeaders = u"host:"_s + host + u"\nx-amz-content-sha256:"_s + made.payloadHash
                                                    + u"\nx-amz-date:"_s + made.timestamp + u"\nx-amz-security-token:"_s
                                                    + made.sessionToken + u'\n',
                                .signedHeaders = u"host;x-amz-content-sha256;x-amz-date;x-amz-security-token"_s,
                                .payload = {}});
  return made;
}

HttpRequest httpRequest(const SignedRequest &made, const QByteArray &method) {
  return {.method = method,
          .url = made.url,
          .headers = {{"x-amz-date", made.timestamp.toUtf8()},
                      {"x-amz-security-token", made.sessionToken.toUtf8()},
                      {"x-amz-content-sha256", made.payloadHash.toUtf8()},
                      {"Authorization", made.authorization.toUtf8()}},
          .wait = kSignedRequestWait};
}

void writeFailureLog(const QString &operation, const SignedRequest &made, qint64 statusCode, const QString &received) {
  KaLogUtility::writeInfoLog(operation + u":Request"_s,
                             {u"url:"_s + made.url, u"xAmzDate:"_s + made.timestamp,
                              u"sessionToken:"_s + made.sessionToken, u"payload_hash:"_s + made.payloadHash,
                              u"authorization:"_s + made.authorization});
  KaLogUtility::writeInfoLog(operation + u":Response"_s, {u"statuscode:"_s + QString::number(statusCode), received});
}

} // namespace

ServerAnswer KaServerRequest::getAwsS3KeyList(const QString &url, const KaCredential &credential) {
  return presignedList(url, credential);
}

ServerAnswer KaServerRequest::getAwsPreviewlList(const QString &url, const KaCredential &credential,
                                                 const KaHttpTransfer::BodySink &take) {
  return presignedList(url, credential, take);
}

ServerAnswer KaServerRequest::presignedList(const QString &url, const KaCredential &credential,
                                            const KaHttpTransfer::BodySink &take) {
  ServerAnswer answer = exchange(presignedRequest(url, credential), EmptyBody::IsNoBody, take);
  if (answer.statusCode == 0) answer.result = KaResultCode::NoHttpStatus;
  return answer;
}

SavedObject KaServerRequest::getAwsS3Object(const QString &url, const KaCredential &credential,
                                            const SaveOrder &order) {
  return saveObject(url, credential, order, nameInHeader);
}

SavedObject KaServerRequest::getAwsS3Preview(const QString &url, const KaCredential &credential, const SaveOrder &order,
                                             const std::optional<QString> &fileName) {
  return saveObject(url, credential, order, [&fileName](const HttpAnswer &) { return fileName; });
}

KaResultCode KaServerRequest::objectResultOf(const HttpAnswer &answer) {
  if (answer.status == 0) return KaResultCode::NoHttpStatus;
  const StatusMeaning meaning = meaningOf(answer.status);
  // A body that tells of a missing object is no picture.
  if (meaning.document == StatusMeaning::Document::Missing) return KaResultCode::ObjectMissing;
  const bool isEmpty = meaning.result == KaResultCode::Success && answer.bodySize == 0;
  return isEmpty ? KaResultCode::NoBody : meaning.result;
}

SavedObject KaServerRequest::saveObject(const QString &url, const KaCredential &credential, const SaveOrder &order,
                                        const NameOf &nameOf) {
  ArrivingObject object(order.defaultFilePath);
  const HttpAnswer answer =
      transfer.perform(presignedRequest(url, credential),
                       [&object](const char *bytes, std::size_t count) { return object.take(bytes, count); });
  const auto failed = [&](KaResultCode result) { return SavedObject{.result = result, .statusCode = answer.status}; };
  if (answer.sinkRefused) return failed(object.failure(order.defaultFilePath));
  if (const KaResultCode result = objectResultOf(answer); result != KaResultCode::Success) return failed(result);

  const std::optional<QString> name = nameOf(answer);
  SavedObject saved = {.result = name ? KaResultCode::Success : KaResultCode::DefaultFileName,
                       .statusCode = answer.status,
                       .outputFileSize = answer.bodySize};
  const bool isRight = name && answer.bodySize == order.refFileSize;
  if (!isRight && !order.bKeepWhatComes) return saved;
  if (!object.finish(order.modified)) return failed(object.failure(order.defaultFilePath));
  // What has taken so long may have outlived its link: then it is as if nothing had come.
  const SavedObject nothing = {.result = KaResultCode::NoHttpStatus};
  if (transfer.shallEnd()) return nothing;
  using enum ArrivingObject::Placing::Outcome;
  const auto [outcome, path] = object.publish(name.value_or(QString()), [this] { return transfer.shallEnd(); });
  if (outcome == Ended) return nothing;
  if (outcome == Failed) return failed(object.failure(path));
  saved.outputFilePath = path;
  saved.bConfirmed = isRight;
  saved.bNew = outcome == Saved;
  return saved;
}

ServerAnswer KaServerRequest::getAWSS3ObjectTag(const KaCredential &credential, const QString &objectKey) {
  const SignedRequest made = signedRequest(credential, objectKey, u"GET"_s, u"tagging="_s);
  HttpAnswer answer = transfer.perform(httpRequest(made, "GET"));
  const KaResultCode result = checkHTTPResponse(answer.status);
  if (result != KaResultCode::Success)
    writeFailureLog(u"getAWSS3ObjectTag"_s, made, answer.status, QString::fromUtf8(answer.body.left(kMostLoggedBody)));
  return {.result = result, .statusCode = answer.status, .data = std::move(answer.body)};
}

ObjectHead KaServerRequest::headAWSS3Object(const KaCredential &credential, const QString &objectKey) {
  const SignedRequest made = signedRequest(credential, objectKey, u"HEAD"_s, {});
  const HttpAnswer answer = transfer.perform(httpRequest(made, "HEAD"));
  const StatusMeaning meaning = meaningOf(answer.status);
  const ObjectHead head = {.result = meaning.result,
                           .isThere = meaning.document == StatusMeaning::Document::There,
                           .statusCode = answer.status,
                           .contentLength = answer.status == 0 ? 0 : answer.contentLength};
  if (head.result != KaResultCode::Success)
    writeFailureLog(u"HeadAWSS3Object"_s, made, head.statusCode,
                    u"expectedFileSize:"_s + QString::number(head.contentLength));
  return head;
}

TagVerdict KaServerRequest::checkObjectTagIs10GStorage(const KaCredential &credential, const QString &objectKey) {
  const QString storagePeriod = u"x-strata-storage-period"_s;
  const ServerAnswer tags = getAWSS3ObjectTag(credential, objectKey);

  KaXMLParser parser;
  parser.setTarget({storagePeriod});
  // A document that breaks off may still have told the tag.
  static_cast<void>(parser.parseXML(tags.data, KaXMLParser::kKeyValueType));
  TagVerdict verdict = {.result = tags.result};
  if (parser.result().value(storagePeriod) != u"30"_s) return verdict;

  verdict.bDownloadContent = false;
  KaLogUtility::writeInfoLog(u"checkObjectTagIs10GStorage: XMLParse Result"_s,
                             {u"targetKeys:"_s + QStringList(parser.result().keys()).join(u", "_s),
                              u"targetValues:"_s + QStringList(parser.result().values()).join(u", "_s)});
  return verdict;
}
