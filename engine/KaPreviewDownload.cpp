#include "engine/KaPreviewDownload.h"

#include "engine/FileFetch.h"
#include "engine/KaBookkeeping.h"
#include "engine/KaImageKey.h"
#include "engine/KaImageMetadata.h"
#include "engine/KaLookAhead.h"
#include "engine/OutputFolder.h"
#include "log/KaLogUtility.h"
#include "service/KaStorage.h"

#include <deque>
#include <utility>

using namespace Qt::StringLiterals;
using Loop = KaPass::Loop;

namespace {

QString contentIdLine(const KaPreview &preview) {
  return u"ContentId="_s + preview.preview_object_key;
}

/// When the picture was taken, else (untold or unreadable) the hour it was uploaded in, else now: passed over it would
/// be shut out by the index of the next one.
QDateTime dateOf(const KaPreview &preview) {
  if (const auto shot = getDateTimeFromString(preview.shooting_time, KaDateFormat::ShootingTime)) {
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetExif, true,
                                           {contentIdLine(preview), u"ShootingTime="_s + preview.shooting_time});
    return *shot;
  }
  KaLogUtility::writeConnectionResultLog(KaLogStep::GetExif, false,
                                         {contentIdLine(preview), u"UploadTime="_s + preview.upload_time});
  const QDateTime uploaded = uploadHour(preview.upload_time.section(u'/', 0, 0), preview.upload_time.section(u'/', 1));
  return uploaded.isValid() ? uploaded : QDateTime::currentDateTime();
}

} // namespace

KaResultCode KaPreviewDownload::getPreviewList() {
  thread.check();
  PreviewList list;
  const StoredDocument document =
      with.storage.previewList(with.bookkeeping.account(),
                               [&list](const char *bytes, std::size_t count) { return list.takePiece(bytes, count); });
  const bool isMissing = document.state == StoredDocument::State::Missing;
  const KaResultCode result = list.fault() != KaResultCode::Success ? list.fault() : document.result;
  if (result != KaResultCode::Success) {
    KaLogUtility::writeInfoLog(u"GetPreviewList FAILURE"_s, {httpLine(document.statusCode)});
    return result;
  }
  list.close(with.bookkeeping.lastPreview());
  previews = std::move(list);
  KaLogUtility::writeInfoLog(u"GetPreviewList SUCCESS"_s, {isMissing ? httpLine(document.statusCode)
                                                                     : u"countPreviewList=%1"_s.arg(previews.count())});
  return KaResultCode::Success;
}

KaPassOutcome KaPreviewDownload::getPreview(const QString &parentFolder, qint64 childFolder) {
  thread.check();
  KaPass pass(with.pass, parentFolder);
  const PreviewList list = std::exchange(previews, PreviewList()); // the next pass has a new one
  KaLookAhead ahead({with.storage, with.pass.session}, parentFolder);
  std::deque<KaPreview> next; // as far as is looked ahead
  const auto takeFirst = [&] {
    ahead.moveOn();
    const Loop loop = getOne(next.front(), childFolder, pass);
    pass.endItem();
    if (loop == Loop::Stop) return false;
    with.bookkeeping.saveNowAndThen(KaTargetStorage::Preview2K);
    next.pop_front();
    return true;
  };
  bool goesOn = true;
  list.visit([&](const KaPreview &preview) {
    ahead.offer(preview);
    next.push_back(preview);
    goesOn = static_cast<qsizetype>(next.size()) < KaLookAhead::kItems || takeFirst();
    return goesOn;
  });
  while (goesOn && !next.empty())
    goesOn = takeFirst();
  return pass.outcome();
}

Loop KaPreviewDownload::getOne(const KaPreview &preview, qint64 childFolder, KaPass &pass) {
  if (!pass.beginItem(u"GetPreview Start"_s, contentIdLine(preview))) return Loop::Stop;
  switch (pass.judgeItem(preview.file_size)) {
  case KaPass::Verdict::Take:
    return saveByDate(preview, childFolder, pass);
  case KaPass::Verdict::PassOver:
    return Loop::GoOn;
  case KaPass::Verdict::Stop:
    return Loop::Stop;
  }
  Q_UNREACHABLE();
}

Loop KaPreviewDownload::saveByDate(const KaPreview &preview, qint64 childFolder, KaPass &pass) {
  const QDateTime date = dateOf(preview);
  if (pass.isOver()) return Loop::Stop;
  const auto folder = pass.makeFolder(pass.parentFolder() + getOutputDateFolderString(date, childFolder));
  if (!folder) {
    KaLogUtility::writeErrorLog(u"ERR_DOWNLOAD : Create outputFolder failed"_s);
    return Loop::GoOn;
  }
  return save(preview, date, *folder, pass);
}

Loop KaPreviewDownload::save(const KaPreview &preview, const QDateTime &date, const QString &folder, KaPass &pass) {
  const QString &key = preview.preview_object_key;
  const QString defaultPath = defaultFilePath(folder, date, KaImageKey(key).extension());
  const QString indexText = u"Index=%1"_s.arg(preview.index);
  const FileOrder order{.logLine = indexText,
                        .missingName = indexText,
                        .save = {.defaultFilePath = defaultPath, .refFileSize = preview.file_size, .modified = date},
                        .request = [&](const SaveOrder &save) {
                          return with.storage.savePreview(key, save, preview.original_file_name);
                        }};
  const auto [outcome, saved] = fetchFile(order, pass);
  switch (outcome) {
  case FileOutcome::Confirmed:
  case FileOutcome::Unconfirmed:
    // Unlike an image's, the last copy of a preview counts: it can be had from the image at any time.
    writeSavedLog(order, saved, saved.outputFilePath);
    with.bookkeeping.savePreviewInfo(preview.index);
    pass.countSaved(saved.bNew ? saved.outputFilePath : QString());
    return pass.next();
  case FileOutcome::Missing:
    return pass.next();
  case FileOutcome::Failed:
    pass.carry(saved.result);
    return Loop::Stop;
  case FileOutcome::Stopped:
    return Loop::Stop;
  }
  Q_UNREACHABLE();
}
