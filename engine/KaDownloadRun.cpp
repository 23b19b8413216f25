#include "engine/KaDownloadRun.h"

#include "engine/KaBookkeeping.h"
#include "engine/KaDownloadProcessorDelegate.h"
#include "engine/KaDownloadSession.h"
#include "engine/KaDownloadState.h"
#include "engine/KaLookBack.h"
#include "engine/KaPreviewDownload.h"
#include "engine/VersionOrder.h"
#include "log/KaLogUtility.h"
#include "platform/AppInfo.h"
#include "service/KaApplicationConstants.h"
#include "service/KaServerRequest.h"
#include "service/KaStorage.h"
#include "service/ServiceClock.h"

#include <QDateTime>

#include <chrono>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// So many empty listings in a row mean that all is there.
constexpr int kEmptyListings = 3;
/// After so many passes in a row that saved nothing, what is left is for a later run.
constexpr int kIdleRounds = 3;

bool isOn(const QString &checkBox) {
  return checkBox == u"true";
}

QString secondsText(std::chrono::milliseconds duration) {
  return QString::number(std::chrono::duration_cast<std::chrono::seconds>(duration).count());
}

} // namespace

KaResultCode KaDownloadRun::perform() {
  thread.check();
  tellLook(/*isAnswered=*/false);
  option = with.delegate.downloadOption();
  if (isOn(option.checkBoxCreateSubfolder)) KaLogUtility::writeInfoLog(u"Download CreateSubFolder Enabled"_s);
  if (isOn(option.checkBoxDownloadMetadata)) KaLogUtility::writeInfoLog(u"Download Metadata Enabled"_s);
  with.lookBack.beginRun(with.state.bUserTrigger);
  hadSettings = false;
  const auto result = performBoth();
  // Unless it was the result that was told.
  if (const auto trouble = with.lookBack.savingTrouble(); trouble && trouble->cause != result)
    with.session.tell([&] { with.delegate.notifySavingTrouble(trouble->cause, trouble->storage); });
  with.lookBack.endRun();
  tellStillToCome();
  with.storage.dropConnections();
  return result;
}

/// The ordinary storage, then the others.
KaResultCode KaDownloadRun::performBoth() {
  auto [opening, result] = openPass(u"Start 30days Storage Download"_s);
  if (opening == Opening::Stopped) return result;
  if (opening == Opening::Ready) result = downloadUntilNothingIsNew();
  saveRecord(KaTargetStorage::Days30);
  if (!isOn(option.checkBox10GDownload) || !offers10GStorage) {
    with.lookBack.noteListed({}, KaTargetStorage::LongTerm10G); // nothing of it is waited for
    return result;
  }
  if (with.session.isOver()) return result;
  if (with.session.lastRefresh() != KaRefresh::Succeeded) return result;
  if (result == KaResultCode::NoHttpStatus) with.session.tell([&] { with.delegate.noteUnanswered(); });
  return takeLongTermStorage();
}

KaDownloadRun::Opened KaDownloadRun::openPass(const QString &title) {
  KaLogUtility::writeInfoLog(title);
  with.session.exchangeCodeVerifier();
  KaLogUtility::writeInfoLog(u"Load PairingInfo"_s);
  return renew();
}

/// Fresh token, fresh credentials, or what became of them, told.
KaDownloadRun::Opened KaDownloadRun::renew() {
  // Lost in the middle of a run, as by a sleep: the next one waits for a network in silence.
  if (!with.delegate.hasNetwork()) {
    if (with.state.bUserTrigger) {
      with.session.noteFailureTold();
      tellResult(KaResultCode::Offline, /*userTrigger=*/true);
    } else {
      tellStatus(KaAppStatus::Normal);
    }
    return {Opening::Stopped, KaResultCode::NoHttpStatus};
  }
  KaResultCode result = with.session.refreshIdToken();
  if (result != KaResultCode::Success) {
    tellFailedRefresh();
    return {Opening::Stopped, result};
  }
  if (with.session.isOver()) return {Opening::Stopped, result};

  result = with.session.getCredential();
  if (result == KaResultCode::Success) {
    with.bookkeeping.openLedger();
    with.lookBack.takeUp(with.bookkeeping.account());
    return {Opening::Ready, result};
  }
  tellFailure(result);
  return {Opening::Refused, result};
}

/// Credentials may end while the computer sleeps, in the middle of a request. That they are refused then says nothing
/// of the link: it is as if nobody had answered.
KaResultCode KaDownloadRun::judged(KaResultCode result) const {
  const bool isOutOfTime = result == KaResultCode::LinkInvalid && with.session.hasExpired();
  return isOutOfTime ? KaResultCode::NoHttpStatus : result;
}

/// A listing, and what the service's settings told on its way, also when a later step of it failed.
KaListing KaDownloadRun::list(KaTargetStorage targetStorage) {
  KaListing listing = look(targetStorage, with.bookkeeping.lastDateTime(targetStorage));
  if (!listing.isWhole) with.lookBack.noteLeftUndone();
  if (listing.settings) {
    hadSettings = hadSettings || listing.settings->areThere;
    tellSettings(*listing.settings);
  }
  if (listing.result == KaResultCode::Success) tellInitialAccess();
  return listing;
}

KaListing KaDownloadRun::look(KaTargetStorage targetStorage, const QString &startAfter) {
  tellLook(/*isAnswered=*/false);
  KaListing listing = with.listing.getContentsList(targetStorage, startAfter);
  listing.result = judged(listing.result);
  if (listing.result == KaResultCode::Success) tellLook(/*isAnswered=*/true);
  return listing;
}

void KaDownloadRun::tellLook(bool isAnswered) {
  with.session.tell([&] { isAnswered ? with.delegate.noteLooked() : with.delegate.noteLooking(); });
}

KaResultCode KaDownloadRun::downloadUntilNothingIsNew() {
  ReCheck reCheck;
  while (!reCheck.isDone && !with.session.isOver())
    reCheck = checkOnce(reCheck);
  return reCheck.result;
}

KaDownloadRun::ReCheck KaDownloadRun::checkOnce(ReCheck soFar) {
  if (soFar.retryCount > 0) {
    KaLogUtility::writeInfoLog(u"Retry CheckImage"_s, {u"RetryCount=%1"_s.arg(soFar.retryCount)});
    // A pass may have lost the credentials, and the wait may have outlasted them.
    if (with.session.isExpiring()) {
      const auto [opening, result] = renew();
      if (opening != Opening::Ready) return {.result = result, .isDone = true};
    }
  }
  KaListing listing = list(KaTargetStorage::Days30);
  option = with.delegate.downloadOption();
  soFar.result = listing.result;
  if (soFar.result == KaResultCode::Success && !with.session.isOver())
    soFar = takeContents(soFar, std::move(listing.images));
  return with.session.isOver() ? soFar : conclude(soFar);
}

KaDownloadRun::ReCheck KaDownloadRun::takeContents(ReCheck soFar, KaListedImages images) {
  const auto offered = images.size();
  images = with.lookBack.worthAsking(std::move(images), KaTargetStorage::Days30);
  soFar.isLeft = images.size() < offered;
  if (!images.empty()) {
    const KaPassOutcome pass = downloadContents(images);
    soFar.savedCount += pass.savedCount;
    soFar.passResult = pass.result;
    soFar.emptyCount = 0;
    soFar.idleCount = pass.savedCount == 0 ? soFar.idleCount + 1 : 0;
  } else {
    ++soFar.emptyCount;
  }
  ++soFar.retryCount;
  return soFar;
}

/// Tells the end of the re-checks, or waits for the next one.
KaDownloadRun::ReCheck KaDownloadRun::conclude(ReCheck soFar) {
  if (soFar.result != KaResultCode::Success) {
    tellFailure(soFar.result);
    soFar.isDone = true;
    return soFar;
  }
  const bool isNothingNew = soFar.retryCount == 1 && soFar.emptyCount == 1;
  const bool isThrough = soFar.emptyCount >= kEmptyListings || soFar.idleCount >= kIdleRounds;
  if (isNothingNew || isThrough) return finish(soFar);
  const auto wait = with.state.waitTimes.reCheck;
  KaLogUtility::writeInfoLog(u"reCheck Wait"_s, {u"reCheckWaitTime="_s + secondsText(wait)});
  with.storage.dropConnections();                          // nobody waits that long for a request
  with.session.tell([&] { with.delegate.noteLooking(); }); // nobody can say yet that all is here
  with.state.waitcnd.wait(wait, [this] { return with.session.isOver(); });
  return soFar;
}

/// Looks back, if that is due, and tells how the ordinary storage's part of the run has ended.
KaDownloadRun::ReCheck KaDownloadRun::finish(ReCheck soFar) {
  soFar.isDone = true;
  const KaPassOutcome late = lookBack();
  if (with.session.isOver()) return soFar;
  tellStillToCome(); // whoever hears that all is well asks for it
  const bool isLeft = soFar.isLeft || soFar.idleCount >= kIdleRounds;
  const bool hasOnlyFailed = isLeft && soFar.savedCount + late.savedCount == 0;
  if (hasOnlyFailed) {
    tellNothingNew(); // neither complete nor nothing to do: what was asked for was told of before
  } else if (soFar.retryCount == 1 && late.savedCount == 0) {
    tellNoTarget();
  } else {
    tellComplete();
  }
  // Nobody answered: the next run comes as after a listing without an answer.
  const bool isUnanswered = hasOnlyFailed && soFar.passResult == KaResultCode::NoHttpStatus;
  if (isUnanswered || late.result == KaResultCode::NoHttpStatus) soFar.result = KaResultCode::NoHttpStatus;
  return soFar;
}

void KaDownloadRun::tellComplete() {
  tellResult(KaResultCode::DownloadComplete, /*userTrigger=*/false);
  KaLogUtility::writeInfoLog(u"Download Complete"_s);
  tellStatus(KaAppStatus::Normal);
}

/// Looks through the ordinary storage once more, for what no listing from the last hour on brings.
KaPassOutcome KaDownloadRun::lookBack() {
  if (!with.lookBack.isDue()) return {};
  const QString start = with.lookBack.startAfter(QDateTime::currentDateTimeUtc());
  KaLogUtility::writeInfoLog(u"Look Back"_s, {u"StartAfter="_s + start});
  KaListing listing = look(KaTargetStorage::Days30, start);
  // Settings that were there a moment ago: without them a month of the devices that they leave out would come.
  if (hadSettings && listing.settings && !listing.settings->areThere)
    listing = {.result = listing.result, .isWhole = false};
  const bool hasListed = listing.result == KaResultCode::Success && listing.isWhole;
  if (!hasListed) with.lookBack.noteLeftUndone();
  if (listing.result != KaResultCode::Success || with.session.isOver()) return {.result = listing.result};
  if (hasListed) {
    with.bookkeeping.forgetBefore(start);
    with.lookBack.noteListed(listing.images, KaTargetStorage::Days30);
  }
  const KaListedImages images = with.lookBack.worthAskingSilentLast(std::move(listing.images));
  if (images.empty()) return {};
  tellPass(static_cast<qsizetype>(images.size()));
  const auto begin = std::chrono::system_clock::now();
  KaPassOutcome pass = with.content.getEachByItself(images, ordinaryTarget());
  with.lookBack.noteRound(images, with.content.takeTrace(), pass, KaTargetStorage::Days30);
  reportPass(pass, begin);
  return pass;
}

KaPassOutcome KaDownloadRun::downloadContents(const KaListedImages &images) {
  tellPass(static_cast<qsizetype>(images.size()));
  const auto start = std::chrono::system_clock::now();
  KaPassOutcome pass = with.content.getContentsProcess(images, ordinaryTarget());
  with.lookBack.noteRound(images, with.content.takeTrace(), pass, KaTargetStorage::Days30);
  reportPass(pass, start);
  KaLogUtility::writeConnectionResultLog(KaLogStep::Complete, pass.result == KaResultCode::Success);
  return pass;
}

KaContentTarget KaDownloadRun::ordinaryTarget() const {
  return {.parentFolder = option.parentFolder,
          .childFolder = option.childFolder,
          .targetStorage = KaTargetStorage::Days30,
          .bExpandContent = isOn(option.checkBoxDownloadMetadata),
          .bExpandExif = isOn(option.checkBoxCreateSubfolder)};
}

/// What a pass of the ordinary storage saved is told, and kept, even when it failed afterwards.
void KaDownloadRun::reportPass(const KaPassOutcome &pass, KaDownloadReport::Moment start) {
  if (pass.savedCount == 0) return;
  // First: a report may take long. One that fails is told when the run is over.
  static_cast<void>(with.bookkeeping.save(KaTargetStorage::Days30));
  const bool expand = isOn(option.checkBoxDownloadMetadata);
  sendReport({KaApplicationConstants::awsLogsStreamName(), expand ? u"recent"_s : u"original"_s}, start,
             pass.savedCount);
}

/// The 10G storage and the previews, which belong together. @return the result of the last pass that ran.
KaResultCode KaDownloadRun::takeLongTermStorage() {
  const auto [opening, opened] = openPass(u"Start 10G Storage Download"_s);
  KaPassOutcome both{.result = opened};
  if (opening == Opening::Stopped) return opened;
  if (opening == Opening::Ready) {
    both = takeLongTermContents();
    if (both.result == KaResultCode::Success && !with.session.isOver()) {
      const KaPassOutcome previews = takePreviews(both.savedCount);
      both = {.result = previews.result, .savedCount = both.savedCount + previews.savedCount};
    }
    both.result = judged(both.result);
    if (!with.session.isOver()) concludeLongTerm(both);
  }
  saveRecord(KaTargetStorage::LongTerm10G);
  saveRecord(KaTargetStorage::Preview2K);
  return both.result;
}

KaPassOutcome KaDownloadRun::takeLongTermContents() {
  KaListing listing = list(KaTargetStorage::LongTerm10G);
  if (listing.result != KaResultCode::Success || with.session.isOver()) return {.result = listing.result};
  if (listing.isWhole) with.lookBack.noteListed(listing.images, KaTargetStorage::LongTerm10G);
  const KaListedImages images = with.lookBack.worthAsking(std::move(listing.images), KaTargetStorage::LongTerm10G);
  if (images.empty()) {
    KaLogUtility::writeInfoLog(u"No Download Target"_s);
    return {};
  }
  tellPass(static_cast<qsizetype>(images.size()));
  const auto start = std::chrono::system_clock::now();
  const KaPassOutcome pass = with.content.getContentsProcess(images, {.parentFolder = option.parent10GFolder,
                                                                      .childFolder = option.childFolder,
                                                                      .targetStorage = KaTargetStorage::LongTerm10G});
  with.lookBack.noteRound(images, with.content.takeTrace(), pass, KaTargetStorage::LongTerm10G);
  // Before the previews begin, which may take long. One that fails is told when the run is over.
  if (pass.savedCount != 0) static_cast<void>(with.bookkeeping.save(KaTargetStorage::LongTerm10G));
  const bool succeeded = pass.result == KaResultCode::Success;
  if (succeeded && pass.savedCount != 0) sendReport({awsLogs10GStreamName(), u"10G"_s}, start, pass.savedCount);
  KaLogUtility::writeConnectionResultLog(KaLogStep::Complete, succeeded);
  return pass;
}

KaPassOutcome KaDownloadRun::takePreviews(quint64 savedBefore) {
  tellLook(/*isAnswered=*/false);
  const KaResultCode listed = with.preview.getPreviewList();
  if (listed != KaResultCode::Success || with.preview.previewList().empty()) return {.result = listed};
  tellPass(with.preview.previewList().count());
  const auto start = std::chrono::system_clock::now();
  const KaPassOutcome pass = with.preview.getPreview(option.parent10GFolder, option.childFolder);
  // Both passes decide whether a report is due, but it tells of this one alone: its count may be 0.
  if (pass.result == KaResultCode::Success && savedBefore + pass.savedCount != 0)
    sendReport({awsLogs10GStreamName(), u"2K"_s}, start, pass.savedCount);
  return pass;
}

void KaDownloadRun::concludeLongTerm(const KaPassOutcome &both) {
  tellStillToCome();
  if (both.result != KaResultCode::Success) return tellFailure(both.result, KaTargetStorage::LongTerm10G);
  if (both.savedCount == 0) {
    KaLogUtility::writeInfoLog(u"No Download Target"_s);
    return tellNothingNew();
  }
  tellResult(KaResultCode::Download10GComplete, /*userTrigger=*/false);
  KaLogUtility::writeInfoLog(u"Download Complete"_s);
  tellStatus(KaAppStatus::Normal);
}

void KaDownloadRun::sendReport(const PassReport &pass, KaDownloadReport::Moment start, quint64 successCount) {
  const auto now = std::chrono::system_clock::now();
  const KaDownloadReport report{.userId = with.bookkeeping.account(),
                                .logGroup = KaApplicationConstants::awsLogsGroupName(),
                                .logStream = pass.logStream,
                                .startDate = start,
                                .endDate = now,
                                .successCount = successCount,
                                .information = pass.information};
  // Best effort: a report that fails changes nothing.
  with.request.notifyDownloadCompletion(with.storage.credential(), createLogMessage(report, now));
}

void KaDownloadRun::saveRecord(KaTargetStorage targetStorage) {
  if (!with.bookkeeping.hasUser()) return;
  if (with.bookkeeping.save(targetStorage)) {
    KaLogUtility::writeInfoLog(savedLogTitle(targetStorage));
  } else {
    tellResult(KaResultCode::Unexpected, with.state.bUserTrigger);
  }
}

void KaDownloadRun::saveAllRecords() {
  thread.check();
  if (!with.bookkeeping.hasUser()) return;
  bool saved = true;
  for (const KaTargetStorage storage : kTargetStorages)
    if (!with.bookkeeping.save(storage)) saved = false;
  if (saved) {
    KaLogUtility::writeInfoLog(savedLogTitle(KaTargetStorage::Days30));
  } else {
    with.delegate.setProcessingResult(KaResultCode::Unexpected, /*userTrigger=*/false);
  }
}

void KaDownloadRun::tellSettings(const KaServiceSettings &settings) {
  with.session.tell([&] {
    const bool isNews = settings.latestVersion && std::exchange(notifyUserOfUpdate, false);
    if (isNews && isLaterVersion(*settings.latestVersion, platform::appInfo().shortVersion))
      with.delegate.setProcessingResult(KaResultCode::NewVersionReleased, /*userTrigger=*/false);
    offers10GStorage = settings.offers10GStorage;
    with.delegate.setOffers10GStorage(offers10GStorage);
  });
}

void KaDownloadRun::tellInitialAccess() {
  bool isInitial = false;
  // Looked at only while the link stands: else the end of an old one could take what is the new one's.
  with.session.tell([&] {
    isInitial = with.state.bInitialAccess.exchange(false);
    if (isInitial) with.delegate.setProcessingResult(KaResultCode::InitialAccessComplete, /*userTrigger=*/false);
  });
  if (isInitial) KaLogUtility::writeInfoLog(u"Initial Access Complete"_s);
}

/// A cause that may pass is told once until a refresh has succeeded, and whoever asks for a run.
void KaDownloadRun::tellFailedRefresh() {
  // The end of the program, and of the link, must not pass for a login that fails.
  if (with.session.isOver()) return;
  const bool isNews = with.session.noteRefreshFailureTold();
  if (with.session.lastRefresh() == KaRefresh::Refused) {
    with.state.bLinkSetup = true;
  } else if (!isNews && !with.state.bUserTrigger) {
    return;
  }
  tellFailure(KaResultCode::ValidationFailed);
}

void KaDownloadRun::tellFailure(KaResultCode result, KaTargetStorage storage) {
  if (result == KaResultCode::NoHttpStatus) {
    tellStatus(KaAppStatus::Downloading);
  } else {
    // Under whatever code: a pass hands on what a renewal before an image came to.
    if (with.session.lastRefresh() != KaRefresh::Succeeded) with.session.noteFailureTold();
    with.session.tell([&] {
      with.delegate.noteFaultCause(causeOf(result), storage);
      with.delegate.setProcessingResult(result, with.state.bUserTrigger);
    });
  }
}

KaFaultCause KaDownloadRun::causeOf(KaResultCode result) const {
  if (with.session.lastRefresh() != KaRefresh::Succeeded) return with.session.refreshFault();
  if (result != KaResultCode::LinkInvalid) return KaFaultCause::Unknown;
  return ServiceClock::isFarOff() ? KaFaultCause::WrongClock : KaFaultCause::Refused;
}

void KaDownloadRun::tellNoTarget() {
  KaLogUtility::writeInfoLog(u"No Download Target"_s);
  if (with.state.bUserTrigger) {
    tellResult(KaResultCode::NothingToDownload, /*userTrigger=*/true);
  } else {
    tellNothingNew();
  }
}

void KaDownloadRun::tellNothingNew() {
  with.session.tell([&] {
    with.delegate.noteNothingNew();
    with.delegate.setAppStatus(KaAppStatus::Normal);
  });
}

void KaDownloadRun::tellStillToCome() {
  with.session.tell([&] { with.delegate.setStillToCome(with.lookBack.countStillToCome()); });
}

void KaDownloadRun::tellPass(qsizetype files) {
  with.session.tell([&] {
    with.delegate.setAppStatus(KaAppStatus::Downloading);
    with.delegate.notePass(files);
  });
}

void KaDownloadRun::tellStatus(KaAppStatus status) {
  with.session.tell([&] { with.delegate.setAppStatus(status); });
}

void KaDownloadRun::tellResult(KaResultCode result, bool userTrigger) {
  with.session.tell([&] { with.delegate.setProcessingResult(result, userTrigger); });
}
