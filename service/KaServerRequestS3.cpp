#include "log/KaLogUtility.h"
#include "service/ArrivingObject.h"
#include "service/HttpStatus.h"
#include "service/KaServerRequest.h"
#include "service/KaXMLParser.h"
#include "service/SaveOrder.h"
#include "service/SavedFileName.h"
#include "service/StorageRequests.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kMostLoggedBody = 16 * 1024;

const auto kStoragePeriod = "x-strata-storage-period"_L1;

/// What the tags of an object tell of its storage period.
QHash<QString, QString> storagePeriodIn(const QByteArray &tags) {
  KaXMLParser parser;
  parser.setTarget({kStoragePeriod});
  // A document that breaks off may still have told the tag.
  static_cast<void>(parser.parseXML(tags, KaXMLParser::kKeyValueType));
  return parser.result();
}

bool is10GStorage(const QHash<QString, QString> &told) {
  return told.value(kStoragePeriod) != u"30"_s;
}

std::optional<QString> nameInHeader(const HttpAnswer &answer) {
  for (const auto &[name, value] : answer.headers)
    if (name == "x-amz-meta-file-name") return decodeFileNameHeader(value);
  return {};
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
  return presignedAnswer(storageConnections.perform(presignedRequest(url, credential), take, shallEnd));
}

ServerAnswer KaServerRequest::presignedAnswer(HttpAnswer answer) {
  ServerAnswer told = answerOf(std::move(answer), EmptyBody::IsNoBody);
  if (told.statusCode == 0) told.result = KaResultCode::NoHttpStatus;
  return told;
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
  ArrivedObject arrived = {.content = std::make_unique<ArrivingObject>(QFileInfo(order.defaultFilePath).path())};
  arrived.answer = storageConnections.perform(
      presignedRequest(url, credential),
      [&](const char *bytes, std::size_t count) { return arrived.content->take(bytes, count); }, shallEnd);
  if (const auto placed = placeObject(arrived, order, nameOf)) return *placed;
  return {
      .result = KaResultCode::FileNotSaved, .statusCode = arrived.answer.status, .triedPath = order.defaultFilePath};
}

std::optional<SavedObject> KaServerRequest::saveArrivedObject(const ArrivedObject &arrived, const SaveOrder &order) {
  return placeObject(arrived, order, nameInHeader);
}

std::optional<SavedObject> KaServerRequest::saveArrivedPreview(const ArrivedObject &arrived, const SaveOrder &order,
                                                               const std::optional<QString> &fileName) {
  return placeObject(arrived, order, [&fileName](const HttpAnswer &) { return fileName; });
}

std::optional<SavedObject> KaServerRequest::placeObject(const ArrivedObject &arrived, const SaveOrder &order,
                                                        const NameOf &nameOf) {
  const HttpAnswer &answer = arrived.answer;
  ArrivingObject &object = *arrived.content;
  const auto failed = [&](KaResultCode result) { return SavedObject{.result = result, .statusCode = answer.status}; };
  const auto notSaved = [&](const QString &path) {
    return SavedObject{.result = object.failure(), .statusCode = answer.status, .triedPath = path};
  };
  if (answer.sinkRefused) return notSaved(order.defaultFilePath);
  if (const KaResultCode result = objectResultOf(answer); result != KaResultCode::Success) return failed(result);

  const std::optional<QString> name = nameOf(answer);
  SavedObject saved = {.result = name ? KaResultCode::Success : KaResultCode::DefaultFileName,
                       .statusCode = answer.status,
                       .outputFileSize = object.size()};
  const bool isRight = name && object.size() == order.refFileSize;
  if (!isRight && !order.bKeepWhatComes) return saved;
  if (!object.sync()) return notSaved(order.defaultFilePath);
  object.setDates(order.modified);
  // What has taken so long may have outlived its link: then it is as if nothing had come.
  const SavedObject nothing = {.result = KaResultCode::NoHttpStatus};
  const auto ends = [this] { return shallEnd && shallEnd(); };
  if (ends()) return nothing;
  using enum ArrivingObject::Placing::Outcome;
  const auto [outcome, path] = object.publish(order.defaultFilePath, name.value_or(QString()), ends);
  if (outcome == Elsewhere) return std::nullopt;
  if (outcome == Ended) return nothing;
  if (outcome == Failed) return notSaved(path);
  saved.outputFilePath = path;
  saved.bConfirmed = isRight;
  saved.bNew = outcome == Saved;
  return saved;
}

ServerAnswer KaServerRequest::getAWSS3ObjectTag(const KaCredential &credential, const QString &objectKey) {
  const SignedRequest made = signedRequest(credential, objectKey, u"GET"_s, u"tagging="_s);
  ServerAnswer tags = tagsOf(storageConnections.perform(httpRequest(made, "GET"), {}, shallEnd));
  if (tags.result != KaResultCode::Success)
    writeFailureLog(u"getAWSS3ObjectTag"_s, made, tags.statusCode, QString::fromUtf8(tags.data.left(kMostLoggedBody)));
  return tags;
}

ServerAnswer KaServerRequest::tagsOf(HttpAnswer answer) {
  return {.result = checkHTTPResponse(answer.status), .statusCode = answer.status, .data = std::move(answer.body)};
}

ObjectHead KaServerRequest::headAWSS3Object(const KaCredential &credential, const QString &objectKey) {
  const SignedRequest made = signedRequest(credential, objectKey, u"HEAD"_s, {});
  const ObjectHead head = headOf(storageConnections.perform(httpRequest(made, "HEAD"), {}, shallEnd));
  if (head.result != KaResultCode::Success)
    writeFailureLog(u"HeadAWSS3Object"_s, made, head.statusCode,
                    u"expectedFileSize:"_s + QString::number(head.contentLength));
  return head;
}

ObjectHead KaServerRequest::headOf(const HttpAnswer &answer) {
  const StatusMeaning meaning = meaningOf(answer.status);
  return {.result = meaning.result,
          .isThere = meaning.document == StatusMeaning::Document::There,
          .statusCode = answer.status,
          .contentLength = answer.status == 0 ? 0 : answer.contentLength};
}

TagVerdict KaServerRequest::checkObjectTagIs10GStorage(const KaCredential &credential, const QString &objectKey) {
  return tagVerdictOf(getAWSS3ObjectTag(credential, objectKey));
}

TagVerdict KaServerRequest::tagVerdictOf(const ServerAnswer &tags) {
  const QHash<QString, QString> told = storagePeriodIn(tags.data);
  const TagVerdict verdict = {.result = tags.result, .bDownloadContent = is10GStorage(told)};
  if (!verdict.bDownloadContent)
    KaLogUtility::writeInfoLog(u"checkObjectTagIs10GStorage: XMLParse Result"_s,
                               {u"targetKeys:"_s + QStringList(told.keys()).join(u", "_s),
                                u"targetValues:"_s + QStringList(told.values()).join(u", "_s)});
  return verdict;
}

bool KaServerRequest::is10GStorageByTags(const QByteArray &tags) {
  return is10GStorage(storagePeriodIn(tags));
}
