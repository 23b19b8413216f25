#include "engine/KaPreviewDownload.h"

#include "engine/DiskSpace.h"
#include "engine/FileFetch.h"
#include "engine/KaDownloadProcessorDelegate.h"
#include "engine/KaDownloadSession.h"
#include "engine/KaDownloadState.h"
#include "engine/KaImageMetadata.h"
#include "engine/KaTargetStorage.h"
#include "engine/ObjectKey.h"
#include "engine/OutputFolder.h"
#include "log/KaLogUtility.h"
#include "platform/FileDates.h"
#include "service/KaServerRequest.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kNotFound = 404;

QString contentIdLine(const KaPreview &preview) {
  return u"ContentId="_s + preview.preview_object_key;
}

/// When the picture was taken, else (untold, unreadable, or a time that a change of the clock left out) the hour it was
/// uploaded in; invalid when neither tells.
QDateTime dateOf(const KaPreview &preview) {
  if (const auto shot = getDateTimeFromString(preview.shooting_time, KaDateFormat::ShootingTime)) {
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetExif, true,
                                           {contentIdLine(preview), u"ShootingTime="_s + preview.shooting_time});
    return *shot;
  }
  KaLogUtility::writeConnectionResultLog(KaLogStep::GetExif, false,
                                         {contentIdLine(preview), u"UploadTime="_s + preview.upload_time});
  return uploadHour(preview.upload_time.section(u'/', 0, 0), preview.upload_time.section(u'/', 1));
}

} // namespace

KaResultCode KaPreviewDownload::getPreviewList() {
  const ServerAnswer answer = request.getAwsS3KeyList(session.previewListURL(), session.access().credential);
  const QString httpLine = u"HTTP="_s + QString::number(answer.statusCode);
  if (answer.statusCode == kNotFound) {
    previews.clear();
    KaLogUtility::writeInfoLog(u"GetPreviewList SUCCESS"_s, {httpLine});
    return KaResultCode::Success;
  }
  if (answer.result != KaResultCode::Success) {
    KaLogUtility::writeInfoLog(u"GetPreviewList FAILURE"_s, {httpLine});
    return answer.result;
  }
  previews = previewsIn(answer.data);
  dropTaken(previews, delegate.downloadDataContentIds(recordKey()).value_or(QStringList()).value(0).toLongLong());
  KaLogUtility::writeInfoLog(u"GetPreviewList SUCCESS"_s, {u"countPreviewList=%1"_s.arg(previews.size())});
  return KaResultCode::Success;
}

KaResultCode KaPreviewDownload::getPreview(const QString &parentFolder, qint64 childFolder) {
  Carried carried{KaResultCode::Success, delegate.loadLinkageSetting()};
  session.exchangeCodeVerifier(carried.linkage);
  successCount = 0;
  for (const KaPreview &preview : previews)
    if (getOne(preview, {parentFolder, childFolder}, carried) == Loop::Stop) break;
  return carried.rc;
}

KaPreviewDownload::Loop KaPreviewDownload::getOne(const KaPreview &preview, const Target &target, Carried &carried) {
  KaResultCode &rc = carried.rc;
  KaLogUtility::writeInfoLog(u"GetPreview Start"_s, {contentIdLine(preview)});
  if (rc == KaResultCode::Success) rc = session.renewIfExpiring(carried.linkage);
  if (state.endAppFlag || !delegate.bLoggedIn()) return Loop::Stop;
  // The failure carries over, on purpose, to all that follow.
  if (rc != KaResultCode::Success) return Loop::GoOn;

  if (delegate.verifyDownloadOptionParentFolder(target.parentFolder) != KaResultCode::Success) {
    rc = KaResultCode::FileNotSaved;
    return Loop::Stop;
  }
  if (!hasRoomFor(preview.file_size, target.parentFolder)) {
    rc = KaResultCode::DiskFull;
    return state.endAppFlag ? Loop::Stop : Loop::GoOn;
  }
  const QDateTime date = dateOf(preview);
  if (state.endAppFlag) return Loop::Stop;
  if (!date.isValid()) {
    KaLogUtility::writeInfoLog(u"GetPreview"_s, {u"Without a date it is passed over."_s, contentIdLine(preview)});
    return Loop::GoOn;
  }
  const QString folder = target.parentFolder + getOutputDateFolderString(date, target.childFolder);
  if (!filledFolders.make(folder, target.parentFolder)) {
    KaLogUtility::writeErrorLog(u"ERR_DOWNLOAD : Create outputFolder failed"_s);
    rc = KaResultCode::FileNotSaved;
    return Loop::GoOn;
  }
  return save(preview, date, folder, rc);
}

KaPreviewDownload::Loop KaPreviewDownload::save(const KaPreview &preview, const QDateTime &date, const QString &folder,
                                                KaResultCode &rc) {
  const QString url = session.contentURL(preview.preview_object_key);
  const QString defaultPath = defaultFilePath(folder, date, preview.preview_object_key);
  const QString indexText = u"Index=%1"_s.arg(preview.index);
  const FileOrder order{
      .logLine = indexText, .missingName = indexText, .refFileSize = preview.file_size, .request = [&] {
        return request.getAwsS3Preview(url, session.access().credential, defaultPath, preview.original_file_name);
      }};
  const auto [outcome, saved] = fetchFile(order, state);
  switch (outcome) {
  case FileOutcome::Confirmed:
  case FileOutcome::Unconfirmed:
    // Unlike an image's, the last copy of a preview counts: it can be had from the image at any time.
    settle(preview, date, order, saved);
    break;
  case FileOutcome::Missing:
    break;
  case FileOutcome::Failed:
    rc = saved.result;
    return Loop::Stop;
  case FileOutcome::Stopped:
    return Loop::Stop;
  }
  return state.endAppFlag ? Loop::Stop : Loop::GoOn;
}

void KaPreviewDownload::settle(const KaPreview &preview, const QDateTime &date, const FileOrder &order,
                               const SavedObject &saved) {
  platform::setFileDates(saved.outputFilePath, date);
  writeSavedLog(order, saved, saved.outputFilePath);
  delegate.setDownloadDataNewDate(recordKey(), QString(), QString::number(preview.index));
  ++successCount;
}

QString KaPreviewDownload::recordKey() const {
  return uuidKey(session.userUUID().value_or(QString()), KaTargetStorage::Preview2K);
}
