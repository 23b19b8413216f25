#include "engine/KaDownloadProcessor.h"

#include "engine/KaContentDownload.h"
#include "engine/KaContentListing.h"
#include "engine/KaDownloadProcessorDelegate.h"
#include "engine/KaDownloadRun.h"
#include "engine/KaDownloadSession.h"
#include "engine/KaDownloadState.h"
#include "engine/KaImageMetadata.h"
#include "engine/KaPreviewDownload.h"
#include "log/ExceptionGuard.h"
#include "log/KaLogUtility.h"
#include "platform/AppInfo.h"
#include "platform/ThreadName.h"
#include "service/KaServerRequest.h"

#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;

class KaDownloadProcessor::Private {
public:
  explicit Private(KaDownloadProcessorDelegate &toServe) : delegate(toServe) {}

  void downloadThread();

  KaDownloadProcessorDelegate &delegate;
  KaDownloadState state;
  KaWaitCondition pairingcnd{state.endAppFlag};
  KaServerRequest serverRequest{&state.endAppFlag};
  KaDownloadSession session{delegate, serverRequest};
  KaContentListing listing{delegate, serverRequest, session, state};
  KaImageMetadata metadata{serverRequest, session, state};
  KaContentDownload content{delegate, serverRequest, session, listing, metadata, state};
  KaPreviewDownload preview{delegate, serverRequest, session, state};
  KaDownloadRun run{delegate, serverRequest, session, listing, content, preview, state};
  std::thread thread; ///< joined before anything above goes away

private:
  void runUntilEnd();
  void prepareRuns();
  void runOnce(bool notifyUserOfUpdate);
  void waitForNextRun(KaResultCode lastResult);
  void loadWaitTimeInfo();
};

KaDownloadProcessor::KaDownloadProcessor(KaDownloadProcessorDelegate &delegate)
    : d(std::make_unique<Private>(delegate)) {
  d->thread = std::thread([this] { d->downloadThread(); });
  d->pairingcnd.awaitWaiter();
}

KaDownloadProcessor::~KaDownloadProcessor() {
  endDownloadProcess();
  d->thread.join();
}

void KaDownloadProcessor::startReceiving(bool initialAccess) {
  d->state.bInitialAccess = initialAccess;
  d->state.bStartAsked = true;
  d->pairingcnd.signal();
}

void KaDownloadProcessor::getContentsNow() {
  d->state.bUserTrigger = true;
  d->state.waitcnd.signal();
}

void KaDownloadProcessor::cancelPollingWait() {
  d->pairingcnd.signal();
  d->state.waitcnd.signal();
}

void KaDownloadProcessor::endDownloadProcess() {
  d->state.endAppFlag = true;
  d->serverRequest.stopServerRequest();
  d->pairingcnd.signal();
  d->state.waitcnd.signal();
}

void KaDownloadProcessor::deleteCredential() {
  d->session.deleteCredential();
}

void KaDownloadProcessor::Private::downloadThread() {
  platform::nameThisThread("download");
  const bool ended = runGuarded([this] { runUntilEnd(); });
  pairingcnd.retire();
  if (!ended) delegate.setProcessingResult(KaResultCode::Unexpected, /*userTrigger=*/true);
  const platform::AppInfo &info = platform::appInfo();
  KaLogUtility::writeInfoLog(u"DownloadThread End"_s,
                             {u"Version=v%1, %2, %3"_s.arg(info.version, info.buildDate, info.buildTime)});
  delegate.notifyDownloadProcessFinish();
}

void KaDownloadProcessor::Private::runUntilEnd() {
  KaLogUtility::writeInfoLog(u"DownloadThread Start"_s);
  bool notifyUserOfUpdate = true;
  while (!state.endAppFlag) {
    pairingcnd.wait(state.bStartAsked);
    if (state.endAppFlag) break;
    prepareRuns();
    while (!state.endAppFlag && !state.bLinkSetup && delegate.bLoggedIn()) {
      runOnce(notifyUserOfUpdate);
      notifyUserOfUpdate = false;
    }
  }
  run.saveAllRecords();
}

void KaDownloadProcessor::Private::prepareRuns() {
  state.bStartAsked = false;
  state.bUserTrigger = false;
  bool loaded = true;
  for (const auto storage : {KaTargetStorage::Days30, KaTargetStorage::LongTerm10G, KaTargetStorage::Preview2K})
    if (!delegate.loadGetImageInfo(recordName(storage))) loaded = false;
  if (loaded) KaLogUtility::writeInfoLog(u"Load GetImageInfo"_s);
  loadWaitTimeInfo();
  state.bLinkSetup = false;
}

void KaDownloadProcessor::Private::runOnce(bool notifyUserOfUpdate) {
  KaLogUtility::writeInfoLog(u"Start Monitoring"_s);
  delegate.setEnableLoggin(false);
  const KaResultCode result = run.perform(notifyUserOfUpdate);
  delegate.setEnableLoggin(true);
  if (state.endAppFlag || state.bLinkSetup || !delegate.bLoggedIn()) return;
  // A link that was made while the run of an earlier one ended has its first run at once.
  if (!state.bStartAsked.exchange(false)) waitForNextRun(result);
}

void KaDownloadProcessor::Private::waitForNextRun(KaResultCode lastResult) {
  state.bUserTrigger = false;
  const auto wait =
      lastResult == KaResultCode::NoHttpStatus ? state.waitTimes.pollingError : state.waitTimes.pollingNormal;
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(wait);
  KaLogUtility::writeInfoLog(u"Polling Wait"_s, {u"pollingWaitTime=%1"_s.arg(seconds.count())});
  state.waitcnd.wait(wait);
}

void KaDownloadProcessor::Private::loadWaitTimeInfo() {
  state.waitTimes = KaWaitTimes();
  delegate.loadWaitTimeInfo(state.waitTimes);
}
