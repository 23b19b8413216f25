#include "engine/KaDownloadRun.h"

#include "engine/KaContentDownload.h"
#include "engine/KaContentListing.h"
#include "engine/KaDownloadProcessorDelegate.h"
#include "engine/KaDownloadSession.h"
#include "engine/KaDownloadState.h"
#include "engine/KaPreviewDownload.h"
#include "log/KaLogUtility.h"
#include "service/KaApplicationConstants.h"
#include "service/KaServerRequest.h"

#include <chrono>

using namespace Qt::StringLiterals;

namespace {

/// So many empty listings in a row mean that all is there.
constexpr int kEmptyListings = 3;

bool isOn(const QString &checkBox) {
  return checkBox == u"true";
}

QString secondsText(std::chrono::milliseconds duration) {
  return QString::number(std::chrono::duration_cast<std::chrono::seconds>(duration).count());
}

} // namespace

KaResultCode KaDownloadRun::perform(bool notifyUserOfUpdate) {
  option = delegate.downloadOption();
  if (isOn(option.checkBoxCreateSubfolder)) KaLogUtility::writeInfoLog(u"Download CreateSubFolder Enabled"_s);
  if (isOn(option.checkBoxDownloadMetadata)) KaLogUtility::writeInfoLog(u"Download Metadata Enabled"_s);
  content.beginRun();

  KaResultCode result = KaResultCode::Success;
  const Opening opening = openPass(u"Start 30days Storage Download"_s, result);
  if (opening == Opening::Stopped) return result;
  if (opening == Opening::Ready) result = downloadUntilNothingIsNew(notifyUserOfUpdate);
  saveRecord(KaTargetStorage::Days30, u"Save GetImageInfo"_s);
  // The end of the program, and of the link, must not pass for a login that fails.
  if (!isOn(option.checkBox10GDownload) || state.endAppFlag || !delegate.bLoggedIn()) return result;
  return takeLongTermStorage(notifyUserOfUpdate);
}

KaDownloadRun::Opening KaDownloadRun::openPass(const QString &title, KaResultCode &result) {
  KaLogUtility::writeInfoLog(title);
  std::optional<QString> idToken = delegate.loadLinkageSetting();
  session.exchangeCodeVerifier(idToken);
  if (idToken) KaLogUtility::writeInfoLog(u"Load PairingInfo"_s);

  result = session.refreshIdToken(idToken);
  if (result != KaResultCode::Success) {
    state.bLinkSetup = true;
    reportFailure(KaResultCode::ValidationFailed);
    return Opening::Stopped;
  }
  if (state.endAppFlag) return Opening::Stopped;

  result = session.getCredential(*idToken);
  if (result == KaResultCode::Success) return Opening::Ready;
  reportFailure(result);
  return Opening::Refused;
}

KaResultCode KaDownloadRun::downloadUntilNothingIsNew(bool notifyUserOfUpdate) {
  ReCheck reCheck;
  while (!state.endAppFlag && reCheck.emptyCount < kEmptyListings)
    if (checkOnce(reCheck, notifyUserOfUpdate) == Round::Leave) break;
  return reCheck.result;
}

KaDownloadRun::Round KaDownloadRun::checkOnce(ReCheck &reCheck, bool notifyUserOfUpdate) {
  if (reCheck.retryCount > 0)
    KaLogUtility::writeInfoLog(u"Retry CheckImage"_s, {u"RetryCount=%1"_s.arg(reCheck.retryCount)});
  reCheck.result = listing.getContentsList(KaTargetStorage::Days30, notifyUserOfUpdate);
  option = delegate.downloadOption();
  if (reCheck.result == KaResultCode::Success) {
    reportInitialAccess();
    if (state.endAppFlag) return Round::Leave;
    if (takeContents(reCheck) == Round::Leave) return Round::Leave;
  }
  return state.endAppFlag ? Round::Leave : judge(reCheck);
}

KaDownloadRun::Round KaDownloadRun::takeContents(ReCheck &reCheck) {
  // A copy that stayed unconfirmed is for a later run: fetching it again and again would never end this one.
  listing.withhold(content.keptInThisRun());
  if (!listing.contentsDictionary().isEmpty()) {
    downloadContents();
    reCheck.emptyCount = 0;
  } else if (reCheck.retryCount == 0) {
    reportNoTarget();
    return Round::Leave;
  } else {
    ++reCheck.emptyCount;
  }
  ++reCheck.retryCount;
  return Round::Again;
}

KaDownloadRun::Round KaDownloadRun::judge(const ReCheck &reCheck) {
  if (reCheck.result == KaResultCode::Success && reCheck.emptyCount < kEmptyListings) {
    KaLogUtility::writeInfoLog(u"reCheck Wait"_s, {u"reCheckWaitTime="_s + secondsText(state.waitTimes.reCheck)});
    state.waitcnd.wait(state.waitTimes.reCheck);
    return Round::Again;
  }
  if (reCheck.result == KaResultCode::Success) {
    delegate.setProcessingResult(KaResultCode::DownloadComplete, /*userTrigger=*/false);
    KaLogUtility::writeInfoLog(u"Download Complete"_s);
    delegate.setAppStatus(KaAppStatus::Normal);
  } else if (reCheck.result == KaResultCode::NothingToDownload) {
    if (state.bUserTrigger) delegate.setProcessingResult(reCheck.result, /*userTrigger=*/true);
    KaLogUtility::writeInfoLog(u"No Download Target"_s);
    delegate.setAppStatus(KaAppStatus::Normal);
  } else {
    reportFailure(reCheck.result);
  }
  return Round::Leave;
}

void KaDownloadRun::reportFailure(KaResultCode result) {
  // What a run meets once the user has closed the link under it is no news.
  if (!delegate.bLoggedIn()) return;
  if (result == KaResultCode::NoHttpStatus) {
    delegate.setAppStatus(KaAppStatus::Downloading);
  } else {
    delegate.setProcessingResult(result, state.bUserTrigger);
  }
}

void KaDownloadRun::downloadContents() {
  delegate.setAppStatus(KaAppStatus::Downloading);
  const bool expand = isOn(option.checkBoxDownloadMetadata);
  const auto start = std::chrono::system_clock::now();
  const KaResultCode result =
      content.getContentsProcess(listing.contentsDictionary(), {.parentFolder = option.parentFolder,
                                                                .childFolder = option.childFolder,
                                                                .targetStorage = KaTargetStorage::Days30,
                                                                .bExpandContent = expand,
                                                                .bExpandExif = isOn(option.checkBoxCreateSubfolder)});
  // What was saved is told even when the pass failed afterwards.
  if (content.downloadSuccessCount() != 0)
    sendReport({KaApplicationConstants::awsLogsStreamName(), expand ? u"recent"_s : u"original"_s}, start,
               content.downloadSuccessCount());
  KaLogUtility::writeConnectionResultLog(KaLogStep::Complete, result == KaResultCode::Success);
}

/// The 10G storage and the previews, which belong together. @return the result of the last pass that ran.
KaResultCode KaDownloadRun::takeLongTermStorage(bool notifyUserOfUpdate) {
  KaResultCode result = KaResultCode::Success;
  const Opening opening = openPass(u"Start 10G Storage Download"_s, result);
  if (opening == Opening::Stopped) return result;
  if (opening == Opening::Ready) {
    quint64 savedCount = 0;
    result = takeLongTermContents(notifyUserOfUpdate, savedCount);
    if (result == KaResultCode::Success && !state.endAppFlag) result = takePreviews(savedCount);
    if (!state.endAppFlag) concludeLongTerm(result, savedCount);
  }
  saveRecord(KaTargetStorage::LongTerm10G, u"Save 10G GetImageInfo"_s);
  saveRecord(KaTargetStorage::Preview2K, u"Save 2K GetImageInfo"_s);
  return result;
}

KaResultCode KaDownloadRun::takeLongTermContents(bool notifyUserOfUpdate, quint64 &savedCount) {
  KaResultCode result = listing.getContentsList(KaTargetStorage::LongTerm10G, notifyUserOfUpdate);
  if (result != KaResultCode::Success) return result;
  reportInitialAccess();
  if (state.endAppFlag) return result;
  if (listing.contentsDictionary().isEmpty()) {
    KaLogUtility::writeInfoLog(u"No Download Target"_s);
    return result;
  }
  delegate.setAppStatus(KaAppStatus::Downloading);
  const auto start = std::chrono::system_clock::now();
  result = content.getContentsProcess(listing.contentsDictionary(), {.parentFolder = option.parent10GFolder,
                                                                     .childFolder = option.childFolder,
                                                                     .targetStorage = KaTargetStorage::LongTerm10G});
  savedCount = content.downloadSuccessCount();
  if (result == KaResultCode::Success && savedCount != 0)
    sendReport({awsLogs10GStreamName(), u"10G"_s}, start, savedCount);
  KaLogUtility::writeConnectionResultLog(KaLogStep::Complete, result == KaResultCode::Success);
  return result;
}

KaResultCode KaDownloadRun::takePreviews(quint64 &savedCount) {
  KaResultCode result = preview.getPreviewList();
  if (result != KaResultCode::Success || preview.previewList().empty()) return result;
  delegate.setAppStatus(KaAppStatus::Downloading);
  const auto start = std::chrono::system_clock::now();
  result = preview.getPreview(option.parent10GFolder, option.childFolder);
  savedCount += preview.downloadSuccessCount();
  // Both passes decide whether a report is due, but it tells of this one alone: its count may be 0.
  if (result == KaResultCode::Success && savedCount != 0)
    sendReport({awsLogs10GStreamName(), u"2K"_s}, start, preview.downloadSuccessCount());
  return result;
}

void KaDownloadRun::concludeLongTerm(KaResultCode result, quint64 savedCount) {
  if (result != KaResultCode::Success) return reportFailure(result);
  if (savedCount == 0) {
    KaLogUtility::writeInfoLog(u"No Download Target"_s);
  } else {
    delegate.setProcessingResult(KaResultCode::Download10GComplete, /*userTrigger=*/false);
    KaLogUtility::writeInfoLog(u"Download Complete"_s);
  }
  delegate.setAppStatus(KaAppStatus::Normal);
}

void KaDownloadRun::sendReport(const PassReport &pass, KaDownloadReport::Moment start, quint64 successCount) {
  const auto now = std::chrono::system_clock::now();
  const KaDownloadReport report{.userId = session.userUUID().value_or(QString()),
                                .logGroup = KaApplicationConstants::awsLogsGroupName(),
                                .logStream = pass.logStream,
                                .startDate = start,
                                .endDate = now,
                                .successCount = successCount,
                                .information = pass.information};
  // Best effort: a report that fails changes nothing.
  request.notifyDownloadCompletion(session.access().credential, createLogMessage(report, now));
}

void KaDownloadRun::reportInitialAccess() {
  if (!state.bInitialAccess.exchange(false)) return;
  delegate.setProcessingResult(KaResultCode::InitialAccessComplete, /*userTrigger=*/false);
  KaLogUtility::writeInfoLog(u"Initial Access Complete"_s);
}

void KaDownloadRun::reportNoTarget() {
  KaLogUtility::writeInfoLog(u"No Download Target"_s);
  if (state.bUserTrigger) {
    delegate.setProcessingResult(KaResultCode::NothingToDownload, /*userTrigger=*/true);
  } else {
    delegate.setAppStatus(KaAppStatus::Normal);
  }
}

void KaDownloadRun::saveRecord(KaTargetStorage targetStorage, const QString &logTitle) {
  // Without a user there is nothing new to keep, and an empty record would replace what an earlier process kept.
  if (!session.userUUID()) return;
  if (save(targetStorage)) {
    KaLogUtility::writeInfoLog(logTitle);
  } else {
    delegate.setProcessingResult(KaResultCode::Unexpected, state.bUserTrigger);
  }
}

void KaDownloadRun::saveAllRecords() {
  if (!session.userUUID()) return;
  bool saved = true;
  for (const auto storage : {KaTargetStorage::Days30, KaTargetStorage::LongTerm10G, KaTargetStorage::Preview2K})
    if (!save(storage)) saved = false;
  if (saved) {
    KaLogUtility::writeInfoLog(u"Save GetImageInfo"_s);
  } else {
    delegate.setProcessingResult(KaResultCode::Unexpected, /*userTrigger=*/false);
  }
}

bool KaDownloadRun::save(KaTargetStorage targetStorage) {
  content.syncFolders();
  preview.syncFolders();
  return delegate.saveGetImageInfo(recordName(targetStorage), uuidKey(*session.userUUID(), targetStorage));
}
