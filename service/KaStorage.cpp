#include "service/KaStorage.h"

#include "log/KaLogUtility.h"
#include "service/HttpStatus.h"
#include "service/KaListingAhead.h"
#include "service/KaServerRequest.h"
#include "service/ListingXml.h"
#include "service/PresignedUrl.h"
#include "service/SaveOrder.h"
#include "service/StorageRequests.h"

#include <QDateTime>
#include <QSet>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

bool isMissing(const KaCredential &credential) {
  return credential.accessKeyId.isEmpty();
}

using Kind = StorageQuestion::Kind;

constexpr qint64 kFound = 200; ///< what a page that came before its turn was answered with

bool isSavingTrouble(KaResultCode result) {
  return result == KaResultCode::DiskFull || result == KaResultCode::FileNotSaved;
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

KaStorage::KaStorage(KaServerRequest &request)
    : toSend(request), asksAhead({request.connections(),
                                  [this] { return expiresWithin(kRenewalLead) ? KaCredential() : credential(); }}) {
}

KaStorage::~KaStorage() = default;

void KaStorage::dropConnections() {
  toSend.dropConnections();
}

void KaStorage::networkChanged() {
  toSend.networkChanged();
}

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

struct KaStorage::PageRead {
  ListingOutcome outcome;
  std::optional<ListingAnswer> listed; ///< absent, too, when it cannot be parsed
};

ListingOutcome KaStorage::readPages(ListParameters parameters, const PageTaker &take) {
  downloadThread.check();
  QSet<QString> tokensSent;
  for (;;) {
    const KaCredential by = credential(); // for each page: the link may have been closed
    if (isMissing(by)) return {.result = KaResultCode::LinkInvalid};
    const auto [outcome, listed] = readPage(by, parameters);
    if (outcome.result != KaResultCode::Success) return {.result = outcome.result, .statusCode = outcome.statusCode};
    // "Not found" is an empty listing at its beginning; further on it would pass for the end of one that has more.
    const auto next = listed ? listed->nextContinuationToken : std::nullopt;
    const bool goesRound = next && tokensSent.contains(*next);
    if (!listed || goesRound || (outcome.isNotFound && !tokensSent.isEmpty()))
      return {.result = KaResultCode::NoBody, .statusCode = outcome.statusCode};
    take(listed->page);
    if (!next) return outcome;
    parameters.continuationToken = *next;
    tokensSent.insert(*next);
  }
}

KaStorage::PageRead KaStorage::readPage(const KaCredential &by, const ListParameters &parameters) {
  if (auto page = listsAhead ? listsAhead->next(parameters) : std::nullopt)
    return {{.statusCode = kFound}, std::move(page)};
  const ServerAnswer answer = toSend.getAwsS3KeyList(presignedListURL(by, contentBucket(), parameters), by);
  const bool isNotFound = meaningOf(answer.statusCode).document == StatusMeaning::Document::Missing;
  const ListingOutcome outcome = {answer.result, answer.statusCode, isNotFound};
  return {outcome, answer.result == KaResultCode::Success ? listingPageIn(answer.data) : std::nullopt};
}

void KaStorage::beginListings(const std::vector<ObjectListing> &listings, std::function<bool()> shallEnd) {
  std::vector<ListParameters> first;
  for (const ObjectListing &listing : listings)
    first.push_back({.prefix = listing.prefix, .startAfter = listing.startAfter});
  listsAhead = std::make_unique<KaListingAhead>(
      KaListingAhead::Parts{toSend.connections(), [this] { return credential(); }, std::move(shallEnd)},
      std::move(first), asksAhead.mostAtATime());
}

void KaStorage::endListings() {
  listsAhead.reset();
}

StoredDocument KaStorage::document(const QString &key) {
  downloadThread.check();
  const KaCredential by = credential();
  if (isMissing(by)) return {.result = KaResultCode::LinkInvalid};
  if (auto arrived = asksAhead.take({Kind::Document, key}))
    return documentOf(KaServerRequest::presignedAnswer(std::move(arrived->answer)));
  KaStorageAhead::Own own(asksAhead);
  StoredDocument stored = documentOf(toSend.getAwsS3KeyList(objectURL(by, key), by));
  if (stored.state != StoredDocument::State::Failed) own.succeed();
  return stored;
}

StoredDocument KaStorage::previewList(const QString &account, const PieceTaker &take) {
  downloadThread.check();
  const KaCredential by = credential();
  if (isMissing(by)) return {.result = KaResultCode::LinkInvalid};
  const QString url = presignedObjectURL(by, previewListBucket(), account + u".json"_s);
  return documentOf(toSend.getAwsPreviewlList(url, by, take));
}

ObjectHead KaStorage::head(const QString &key) {
  downloadThread.check();
  const KaCredential by = credential();
  if (isMissing(by)) return {.result = KaResultCode::LinkInvalid};
  if (const auto arrived = asksAhead.take({Kind::Head, key})) return KaServerRequest::headOf(arrived->answer);
  KaStorageAhead::Own own(asksAhead);
  const ObjectHead told = toSend.headAWSS3Object(by, key);
  if (told.result == KaResultCode::Success) own.succeed();
  return told;
}

TagVerdict KaStorage::checkObjectTagIs10GStorage(const QString &key) {
  downloadThread.check();
  const KaCredential by = credential();
  if (isMissing(by)) return {.result = KaResultCode::LinkInvalid};
  if (auto arrived = asksAhead.take({Kind::Tags, key}))
    return KaServerRequest::tagVerdictOf(KaServerRequest::tagsOf(std::move(arrived->answer)));
  KaStorageAhead::Own own(asksAhead);
  const TagVerdict verdict = toSend.checkObjectTagIs10GStorage(by, key);
  if (verdict.result == KaResultCode::Success) own.succeed();
  return verdict;
}

SavedObject KaStorage::save(const QString &key, const SaveOrder &order) {
  downloadThread.check();
  const KaCredential by = credential();
  if (isMissing(by)) return {.result = KaResultCode::LinkInvalid};
  return saveBy(
      key, order.refFileSize, [&](const ArrivedObject &arrived) { return toSend.saveArrivedObject(arrived, order); },
      [&] { return toSend.getAwsS3Object(objectURL(by, key), by, order); });
}

SavedObject KaStorage::savePreview(const QString &key, const SaveOrder &order, const std::optional<QString> &fileName) {
  downloadThread.check();
  const KaCredential by = credential();
  if (isMissing(by)) return {.result = KaResultCode::LinkInvalid};
  return saveBy(
      key, order.refFileSize,
      [&](const ArrivedObject &arrived) { return toSend.saveArrivedPreview(arrived, order, fileName); },
      [&] { return toSend.getAwsS3Preview(objectURL(by, key), by, order, fileName); });
}

/// What is ahead takes room on the disk, too: only without it trouble with the disk is trouble.
SavedObject KaStorage::saveBy(const QString &key, qint64 size, const PlacingArrived &place, const Saving &save) {
  const auto saveAlone = [&] {
    KaStorageAhead::Own own(asksAhead, size);
    SavedObject saved = save();
    if (saved.outputFileSize > 0) own.succeed();
    return saved;
  };
  std::optional<SavedObject> saved;
  if (const auto arrived = asksAhead.take({Kind::Content, key})) {
    saved = place(*arrived);
    if (!saved) asksAhead.leaveContent();
  }
  if (!saved) saved = saveAlone();
  if (isSavingTrouble(saved->result) && asksAhead.giveUp()) saved = saveAlone();
  if (saved->result == KaResultCode::FileNotSaved)
    KaLogUtility::writeInfoLog(u"Save File Error"_s, {u"FilePath="_s + saved->triedPath});
  return std::move(*saved);
}
