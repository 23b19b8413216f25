#include "engine/KaContentDownload.h"

#include "engine/DiskSpace.h"
#include "engine/FileFetch.h"
#include "engine/KaDownloadProcessorDelegate.h"
#include "engine/KaDownloadSession.h"
#include "engine/KaDownloadState.h"
#include "engine/KaImageMetadata.h"
#include "engine/ObjectKey.h"
#include "engine/OutputFolder.h"
#include "log/KaLogUtility.h"
#include "platform/FileDates.h"
#include "service/KaServerRequest.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kOk = 200;

QString contentIdLine(const QString &key) {
  return u"ContentId="_s + contentIdFromPath(key);
}

/// What a kept copy is known by: two storages may hold the same object, each in a folder of its own.
QString copyKey(const KaContentOrder &order) {
  const bool ordinary = order.targetSotrage == KaTargetStorage::Days30;
  return ordinary ? order.listedKey : recordName(order.targetSotrage) + u'/' + order.listedKey;
}

} // namespace

KaResultCode KaContentDownload::getContentsProcess(const KaContentsDictionary &contents,
                                                   const KaContentTarget &target) {
  const QStringList keys = sortImageList(contents.keys());
  Carried carried{KaResultCode::Success, delegate.loadLinkageSetting()};
  session.exchangeCodeVerifier(carried.linkage);
  successCount = 0;
  for (const QString &key : keys)
    if (getOne({key, contents.value(key)}, target, carried) == Loop::Stop) break;
  return carried.rc;
}

KaContentDownload::Loop KaContentDownload::getOne(const Variant &listed, const KaContentTarget &target,
                                                  Carried &carried) {
  KaResultCode &rc = carried.rc;
  KaLogUtility::writeInfoLog(u"GetContentLoop Start"_s, {contentIdLine(listed.key)});
  if (rc == KaResultCode::Success) rc = session.renewIfExpiring(carried.linkage);
  // A link that the user has closed brings no more: every check of every image that is left would be refused.
  if (state.endAppFlag || !delegate.bLoggedIn()) return Loop::Stop;
  if (!belongsToStorage(listed.key, target, rc)) return Loop::GoOn;
  if (state.endAppFlag) return Loop::Stop;

  const Variant variant = target.bExpandContent ? expandVariant(listed, rc) : listed;
  if (state.endAppFlag) return Loop::Stop;
  // The failure carries over, on purpose, until a check above succeeds for a later image.
  if (rc != KaResultCode::Success) return Loop::GoOn;

  if (delegate.verifyDownloadOptionParentFolder(target.parentFolder) != KaResultCode::Success) {
    rc = KaResultCode::FileNotSaved;
    return Loop::Stop;
  }
  if (!hasRoomFor(variant.size, target.parentFolder)) {
    rc = KaResultCode::DiskFull;
    return state.endAppFlag ? Loop::Stop : Loop::GoOn;
  }
  return saveVariant(variant, listed.key, target, rc);
}

bool KaContentDownload::belongsToStorage(const QString &key, const KaContentTarget &target, KaResultCode &rc) {
  if (target.targetStorage != KaTargetStorage::LongTerm10G) return true;
  const TagVerdict verdict = request.checkObjectTagIs10GStorage(session.access().credential, key);
  rc = verdict.result;
  if (!verdict.bDownloadContent) KaLogUtility::writeInfoLog(u"Skip Download"_s, {u"bDownloadContent:false"_s});
  return verdict.bDownloadContent;
}

KaContentDownload::Variant KaContentDownload::expandVariant(const Variant &listed, KaResultCode &rc) {
  const QString expandKey = expandImagePathFromImagePath(listed.key);
  const ObjectHead head = request.headAWSS3Object(session.access().credential, expandKey);
  rc = head.result;
  return head.statusCode == kOk ? Variant{expandKey, head.contentLength} : listed;
}

KaContentDownload::Loop KaContentDownload::saveVariant(const Variant &variant, const QString &listedKey,
                                                       const KaContentTarget &target, KaResultCode &rc) {
  const KaMetadata read = target.bExpandExif ? metadata.getExpandExif(variant.key) : metadata.getExif(variant.key);
  rc = read.result;
  const KaContentOrder order{.objectKey = variant.key,
                             .listedKey = listedKey,
                             .refFileSize = variant.size,
                             .utcCaptureTime = captureDate(read, listedKey),
                             .targetSotrage = target.targetStorage};
  if (rc == KaResultCode::CaptureTimeMissing) rc = KaResultCode::Success;

  QStringList ruleFolders;
  if (target.bExpandExif && rc == KaResultCode::Success)
    ruleFolders = getOutputRuleFolderArray(matchedRules(read.document));
  if (ruleFolders.isEmpty()) ruleFolders << QString();
  if (state.endAppFlag) return Loop::Stop;

  saveIntoFolders(ruleFolders, order, target, rc);
  return state.endAppFlag ? Loop::Stop : Loop::GoOn;
}

/// The first folder receives the file; the others are tried only while the object is reported missing.
void KaContentDownload::saveIntoFolders(const QStringList &folders, KaContentOrder order, const KaContentTarget &target,
                                        KaResultCode &rc) {
  const QString dateFolder = getOutputDateFolderString(order.utcCaptureTime, target.childFolder);
  for (const QString &ruleFolder : folders) {
    order.outputFilePath = target.parentFolder + ruleFolder + dateFolder;
    if (!filledFolders.make(order.outputFilePath, target.parentFolder)) {
      KaLogUtility::writeErrorLog(u"ERR_DOWNLOAD : Create outputFolder failed"_s,
                                  QStringList{u"outputFolderPath: "_s + order.outputFilePath});
      rc = KaResultCode::FileNotSaved;
      return;
    }
    rc = getContent(order);
    if (rc != KaResultCode::ObjectMissing) return;
    rc = KaResultCode::Success;
  }
}

KaResultCode KaContentDownload::getContent(const KaContentOrder &order) {
  const QString contentId = contentIdFromPath(order.objectKey);
  const QString url = session.contentURL(order.objectKey);
  const QString defaultPath = defaultFilePath(order.outputFilePath, order.utcCaptureTime, order.objectKey);
  const FileOrder file{
      .logLine = contentIdLine(order.objectKey),
      .missingName = contentId,
      .refFileSize = order.refFileSize,
      .request = [&] { return request.getAwsS3Object(url, session.access().credential, defaultPath); }};
  const auto [outcome, saved] = fetchFile(file, state);
  switch (outcome) {
  case FileOutcome::Confirmed:
    settle(order, file, saved);
    listing.saveImageInfo(contentId, getFolderNameFromPath(order.objectKey, 2),
                          getFolderNameFromPath(order.objectKey, 1), order.targetSotrage);
    ++successCount;
    return KaResultCode::Success;
  case FileOutcome::Unconfirmed:
    keptCopies.keep(copyKey(order), settle(order, file, saved));
    return KaResultCode::Success;
  case FileOutcome::Missing:
    return KaResultCode::ObjectMissing;
  case FileOutcome::Failed:
  case FileOutcome::Stopped:
    return saved.result;
  }
  Q_UNREACHABLE();
}

/// Gives a file that stays its dates and its final place. @return its path.
QString KaContentDownload::settle(const KaContentOrder &order, const FileOrder &file, const SavedObject &saved) {
  platform::setFileDates(saved.outputFilePath, order.utcCaptureTime);
  const QString path = keptCopies.replaceKept(copyKey(order), saved.outputFilePath);
  writeSavedLog(file, saved, path);
  return path;
}
