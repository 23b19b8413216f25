#include "service/KaStorage.h"

#include "service/HttpStatus.h"
#include "service/KaApplicationConstants.h"
#include "service/KaServerRequest.h"
#include "service/ListingXml.h"
#include "service/PresignedUrl.h"

#include <QDateTime>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

bool isMissing(const KaCredential &credential) {
  return credential.accessKeyId.isEmpty();
}

QString objectURL(const KaCredential &by, const QString &key) {
  return presignedObjectURL(by, KaApplicationConstants::awsS3BucketName(),
                            KaApplicationConstants::awsS3AccelerateHostName(), key);
}

StoredDocument documentOf(ServerAnswer answer) {
  using enum StoredDocument::State;
  StoredDocument stored = {.statusCode = answer.statusCode};
  if (meaningOf(answer.statusCode).document == StatusMeaning::Document::Missing) {
    stored.state = Missing;
  } else if (answer.result == KaResultCode::Success) {
    stored.state = There;
    stored.content = std::move(answer.data);
  } else {
    stored.result = answer.result;
  }
  return stored;
}

} // namespace

bool KaStorage::expiresWithin(std::chrono::seconds lead) const {
  const KaCredential by = credential();
  return isMissing(by) || QDateTime::currentSecsSinceEpoch() + lead.count() >= by.expireUnixTime.toLongLong();
}

ListingOutcome KaStorage::listDevices(const QString &prefix, const PageTaker &take) {
  return readPages({.prefix = prefix, .delimiter = u"/"_s}, take);
}

ListingOutcome KaStorage::listObjects(const QString &prefix, const QString &startAfter, const PageTaker &take) {
  return readPages({.prefix = prefix, .startAfter = startAfter}, take);
}

ListingOutcome KaStorage::readPages(ListParameters parameters, const PageTaker &take) {
  downloadThread.check();
  QSet<QString> tokensSent;
  for (;;) {
    const KaCredential by = credential(); // for each page: the link may have been closed
    if (isMissing(by)) return {.result = KaResultCode::LinkInvalid};
    const ServerAnswer answer =
        toSend.getAwsS3KeyList(presignedListURL(by, KaApplicationConstants::awsS3BucketName(),
                                                KaApplicationConstants::awsS3AccelerateHostName(), parameters),
                               by);
    if (answer.result != KaResultCode::Success) return {.result = answer.result, .statusCode = answer.statusCode};
    // "Not found" is an empty listing at its beginning; further on it would pass for the end of one that has more.
    const bool isNotFound = meaningOf(answer.statusCode).document == StatusMeaning::Document::Missing;
    if (isNotFound && !tokensSent.isEmpty()) return {.result = KaResultCode::NoBody, .statusCode = answer.statusCode};
    const std::optional<ListingAnswer> listed = listingPageIn(answer.data);
    const auto next = listed ? listed->nextContinuationToken : std::nullopt;
    if (!listed || (next && tokensSent.contains(*next)))
      return {.result = KaResultCode::NoBody, .statusCode = answer.statusCode};
    take(listed->page);
    if (!next) return {.statusCode = answer.statusCode, .isNotFound = isNotFound};
    parameters.continuationToken = *next;
    tokensSent.insert(*next);
  }
}

StoredDocument KaStorage::document(const QString &key) {
  downloadThread.check();
  const KaCredential by = credential();
  if (isMissing(by)) return {.result = KaResultCode::LinkInvalid};
  return documentOf(toSend.getAwsS3KeyList(objectURL(by, key), by));
}

StoredDocument KaStorage::previewList(const QString &account, const PieceTaker &take) {
  downloadThread.check();
  const KaCredential by = credential();
  if (isMissing(by)) return {.result = KaResultCode::LinkInvalid};
  const QString url = presignedObjectURL(by, KaApplicationConstants::awsS3PreviewListBucketName(),
                                         KaApplicationConstants::awsS3AccelerateHostName(), account + u".json"_s);
  return documentOf(toSend.getAwsPreviewlList(url, by, take));
}

ObjectHead KaStorage::head(const QString &key) {
  downloadThread.check();
  const KaCredential by = credential();
  return isMissing(by) ? ObjectHead{.result = KaResultCode::LinkInvalid} : toSend.headAWSS3Object(by, key);
}

TagVerdict KaStorage::checkObjectTagIs10GStorage(const QString &key) {
  downloadThread.check();
  const KaCredential by = credential();
  return isMissing(by) ? TagVerdict{.result = KaResultCode::LinkInvalid} : toSend.checkObjectTagIs10GStorage(by, key);
}

SavedObject KaStorage::save(const QString &key, const SaveOrder &order) {
  downloadThread.check();
  const KaCredential by = credential();
  if (isMissing(by)) return {.result = KaResultCode::LinkInvalid};
  return toSend.getAwsS3Object(objectURL(by, key), by, order);
}

SavedObject KaStorage::savePreview(const QString &key, const SaveOrder &order, const std::optional<QString> &fileName) {
  downloadThread.check();
  const KaCredential by = credential();
  if (isMissing(by)) return {.result = KaResultCode::LinkInvalid};
  return toSend.getAwsS3Preview(objectURL(by, key), by, order, fileName);
}
