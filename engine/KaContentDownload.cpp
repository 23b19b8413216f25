#include "engine/KaContentDownload.h"

#include "engine/FileFetch.h"
#include "engine/KaBookkeeping.h"
#include "engine/KaImageMetadata.h"
#include "engine/KaLookAhead.h"
#include "engine/OutputFolder.h"
#include "log/KaLogUtility.h"
#include "service/KaStorage.h"

using namespace Qt::StringLiterals;
using Loop = KaPass::Loop;

namespace {

/// So many in a row that get no answer: the line is dead, and the others are for a later run.
constexpr int kMostUnanswered = 3;

QString contentIdLine(const KaImageKey &key) {
  return u"ContentId="_s + key.contentId();
}

/// What a kept copy is known by: two storages may hold the same object, each in a folder of its own.
QString copyKey(const KaContentOrder &order) {
  const bool ordinary = order.targetSotrage == KaTargetStorage::Days30;
  return ordinary ? order.listed.path() : recordName(order.targetSotrage) + u'/' + order.listed.path();
}

/// Never none: without a rule a file lands in the date folder alone.
QStringList ruleFolders(const KaMetadata &metadata, bool sorting) {
  const QStringList folders = sorting ? getOutputRuleFolderArray(matchedRules(metadata.document)) : QStringList();
  return folders.isEmpty() ? QStringList{QString()} : folders;
}

} // namespace

KaPassOutcome KaContentDownload::getContentsProcess(const KaListedImages &images, const KaContentTarget &target) {
  thread.check();
  traced = {};
  KaPass pass(with.pass, target.parentFolder);
  KaLookAhead ahead({with.storage, with.pass.session}, images, target);
  for (const KaListedImage &image : images) {
    ahead.moveOn();
    if (getOne(image, target, pass) == Loop::Stop) break;
    with.bookkeeping.saveNowAndThen(target.targetStorage);
  }
  return pass.outcome();
}

KaPassOutcome KaContentDownload::getEachByItself(const KaListedImages &images, const KaContentTarget &target) {
  thread.check();
  traced = {};
  KaPassOutcome all;
  KaLookAhead ahead({with.storage, with.pass.session}, images, target);
  for (int unanswered = 0; const KaListedImage &image : images) {
    ahead.moveOn();
    KaPass pass(with.pass, target.parentFolder);
    const Loop loop = getOne(image, target, pass);
    all.savedCount += pass.outcome().savedCount;
    if (pass.carried() != KaResultCode::Success) all.result = pass.carried();
    unanswered = pass.carried() == KaResultCode::NoHttpStatus ? unanswered + 1 : 0;
    if (loop == Loop::Stop || unanswered == kMostUnanswered || !pass.hasCredentials()) break;
    with.bookkeeping.saveNowAndThen(target.targetStorage);
  }
  return all;
}

/// Looks at one image, and notes what became of it.
Loop KaContentDownload::getOne(const KaListedImage &image, const KaContentTarget &target, KaPass &pass) {
  // Where each image has requests of its own before it is judged, none is merely passed over.
  const bool hasOwnRequests = target.bExpandContent || target.targetStorage == KaTargetStorage::LongTerm10G;
  const bool isAsked = hasOwnRequests || pass.carried() == KaResultCode::Success;
  const Loop loop = takeOne(image, target, pass);
  if (isAsked && pass.hasCredentials()) traced.asked.insert(image.key.path(), pass.carried());
  pass.endItem();
  return loop;
}

Loop KaContentDownload::takeOne(const KaListedImage &image, const KaContentTarget &target, KaPass &pass) {
  if (!pass.beginItem(u"GetContentLoop Start"_s, contentIdLine(image.key))) return Loop::Stop;
  if (!belongsToStorage(image.key, target, pass)) return Loop::GoOn;
  if (pass.isOver()) return Loop::Stop;
  const Variant variant = target.bExpandContent ? expandVariant(image, pass) : Variant{image.key, image.size};
  if (pass.isOver()) return Loop::Stop;

  switch (pass.judgeItem(variant.size)) {
  case KaPass::Verdict::Take:
    saveVariant(variant, image.key, target, pass);
    return pass.next();
  case KaPass::Verdict::PassOver:
    return Loop::GoOn;
  case KaPass::Verdict::Stop:
    return Loop::Stop;
  }
  Q_UNREACHABLE();
}

bool KaContentDownload::belongsToStorage(const KaImageKey &key, const KaContentTarget &target, KaPass &pass) {
  if (target.targetStorage != KaTargetStorage::LongTerm10G) return true;
  const TagVerdict verdict = with.storage.checkObjectTagIs10GStorage(key.path());
  pass.carry(verdict.result);
  if (!verdict.bDownloadContent) traced.declined.insert(key.path());
  if (!verdict.bDownloadContent) KaLogUtility::writeInfoLog(u"Skip Download"_s, {u"bDownloadContent:false"_s});
  return verdict.bDownloadContent;
}

KaContentDownload::Variant KaContentDownload::expandVariant(const KaListedImage &image, KaPass &pass) {
  KaImageKey expandKey = image.key.expandImagePathFromImagePath();
  const ObjectHead head = with.storage.head(expandKey.path());
  pass.carry(head.result);
  return head.isThere ? Variant{std::move(expandKey), head.contentLength} : Variant{image.key, image.size};
}

void KaContentDownload::saveVariant(const Variant &variant, const KaImageKey &listed, const KaContentTarget &target,
                                    KaPass &pass) {
  const KaMetadata metadata =
      target.bExpandExif ? with.metadata.getExpandExif(variant.key) : with.metadata.getExif(variant.key);
  const bool readable = metadata.result == KaResultCode::Success || metadata.result == KaResultCode::CaptureTimeMissing;
  pass.carry(readable ? KaResultCode::Success : metadata.result);
  const KaContentOrder order{.object = variant.key,
                             .listed = listed,
                             .refFileSize = variant.size,
                             .utcCaptureTime = captureDate(metadata, listed),
                             .targetSotrage = target.targetStorage};
  if (!pass.isOver()) saveIntoFolders(ruleFolders(metadata, target.bExpandExif && readable), order, target, pass);
}

/// The first folder receives the file; the others are tried only while the object is reported missing.
void KaContentDownload::saveIntoFolders(const QStringList &folders, KaContentOrder order, const KaContentTarget &target,
                                        KaPass &pass) {
  const QString dateFolder = getOutputDateFolderString(order.utcCaptureTime, target.childFolder);
  for (const QString &ruleFolder : folders) {
    const QString wanted = target.parentFolder + ruleFolder + dateFolder;
    const auto folder = pass.makeFolder(wanted);
    if (!folder)
      return KaLogUtility::writeErrorLog(u"ERR_DOWNLOAD : Create outputFolder failed"_s,
                                         QStringList{u"outputFolderPath: "_s + wanted});
    order.outputFilePath = *folder;
    const KaResultCode result = getContent(order, pass);
    const bool missing = result == KaResultCode::ObjectMissing;
    pass.carry(missing ? KaResultCode::Success : result);
    if (!missing) return;
  }
}

KaResultCode KaContentDownload::getContent(const KaContentOrder &order, KaPass &pass) {
  const QString defaultPath = defaultFilePath(order.outputFilePath, order.utcCaptureTime, order.object.extension());
  const FileOrder file{
      .logLine = contentIdLine(order.object),
      .missingName = order.object.contentId(),
      .save = {.defaultFilePath = defaultPath, .refFileSize = order.refFileSize, .modified = order.utcCaptureTime},
      .request = [&](const SaveOrder &save) { return with.storage.save(order.object.path(), save); }};
  const auto [outcome, saved] = fetchFile(file, pass);
  switch (outcome) {
  case FileOutcome::Confirmed: {
    const QString path = settle(order, file, saved);
    with.bookkeeping.saveImageInfo(order.object, order.targetSotrage);
    with.bookkeeping.settle(order.listed, order.targetSotrage);
    pass.countSaved(saved.bNew ? path : QString());
    return KaResultCode::Success;
  }
  case FileOutcome::Unconfirmed:
    keptCopies.keep(copyKey(order), settle(order, file, saved), saved.bNew);
    traced.unsure.insert(order.listed.path());
    // Whole, but its name is lost: no further copy would have one.
    if (saved.result == KaResultCode::DefaultFileName && saved.outputFileSize == order.refFileSize)
      with.bookkeeping.settle(order.listed, order.targetSotrage);
    return KaResultCode::Success;
  case FileOutcome::Missing:
    return KaResultCode::ObjectMissing;
  case FileOutcome::Failed:
  case FileOutcome::Stopped:
    return saved.result;
  }
  Q_UNREACHABLE();
}

/// Gives a file that stays its final place. @return its path.
QString KaContentDownload::settle(const KaContentOrder &order, const FileOrder &file, const SavedObject &saved) {
  const QString path = keptCopies.replaceKept(copyKey(order), saved.outputFilePath, saved.bNew);
  writeSavedLog(file, saved, path);
  return path;
}
