#include "engine/KaDownloadProcessor.h"

#include "engine/KaDownloadPieces.h"
#include "engine/KaDownloadProcessorDelegate.h"
#include "identity/KaLink.h"
#include "log/ExceptionGuard.h"
#include "log/KaLogUtility.h"
#include "platform/AppInfo.h"
#include "platform/ThreadName.h"

#include <chrono>
#include <optional>
#include <thread>

using namespace Qt::StringLiterals;

class KaDownloadProcessor::Private {
public:
  Private(KaDownloadProcessorDelegate &serving, KaLink &owner, const KaWaitClock &measuredBy)
      : delegate(serving), link(owner), clock(measuredBy), pieces(serving, owner, measuredBy) {}

  void downloadThread();

  KaDownloadProcessorDelegate &delegate;
  KaLink &link;
  const KaWaitClock clock;
  KaDownloadPieces pieces;
  KaDownloadState &state = pieces.state;
  KaWaitCondition pairingcnd{state.endAppFlag};
  KaWaitCondition logincnd{state.endAppFlag, clock}; ///< a run waits for the end of a login under way
  std::thread thread;                                ///< joined before anything above goes away

private:
  void runUntilEnd();
  void prepareRuns();
  [[nodiscard]] std::optional<KaLinkSnapshot> nextLink();
  void takeUp(const KaLinkSnapshot &with);
  [[nodiscard]] bool awaitNetwork();
  void tellUserOfNoNetwork();
  void runOnce();
  void waitForNextRun();
  [[nodiscard]] bool isNewsDue() const;

  /// When the thread last came back by news, or from a failure that may pass. Download thread.
  std::optional<platform::BootClock::time_point> cameBack;
  KaResultCode lastResult = KaResultCode::Success; ///< of the last run. Download thread
};

KaDownloadProcessor::KaDownloadProcessor(KaDownloadProcessorDelegate &delegate, KaLink &link, const KaWaitClock &clock)
    : d(std::make_unique<Private>(delegate, link, clock)) {
  d->thread = std::thread([this] { d->downloadThread(); });
  d->pairingcnd.awaitWaiter();
}

KaDownloadProcessor::~KaDownloadProcessor() {
  endDownloadProcess();
  join();
}

void KaDownloadProcessor::join() {
  if (d->thread.joinable()) d->thread.join();
}

void KaDownloadProcessor::startReceiving(bool initialAccess) {
  d->state.bInitialAccess = initialAccess;
  d->state.bStartAsked = true;
  cancelPollingWait();
}

void KaDownloadProcessor::getContentsNow() {
  d->state.bUserTrigger = true;
  d->state.waitcnd.signal();
}

void KaDownloadProcessor::newsFromOutside() {
  d->state.bNews = true;
  d->pieces.storage.networkChanged();
  d->state.waitcnd.lookAgain();
  d->logincnd.lookAgain();
}

void KaDownloadProcessor::loginEnded() {
  d->logincnd.signal();
}

void KaDownloadProcessor::cancelPollingWait() {
  d->pairingcnd.signal();
  d->logincnd.signal();
  d->state.waitcnd.signal();
}

void KaDownloadProcessor::endDownloadProcess() {
  d->state.endAppFlag = true;
  d->pieces.request.stopServerRequest();
  cancelPollingWait();
}

void KaDownloadProcessor::deleteCredential() {
  d->pieces.session.deleteCredential();
  d->pieces.request.stopServerRequest();
  d->state.waitcnd.signal();
}

void KaDownloadProcessor::Private::downloadThread() {
  platform::nameThisThread("download");
  const bool ended = runGuarded([this] { runUntilEnd(); });
  pairingcnd.retire();
  if (!ended) {
    delegate.noteWait({}); // for good
    delegate.setProcessingResult(KaResultCode::Unexpected, /*userTrigger=*/true);
  }
  const platform::AppInfo &info = platform::appInfo();
  KaLogUtility::writeInfoLog(u"DownloadThread End"_s,
                             {u"Version=v%1, %2, %3"_s.arg(info.version, info.buildDate, info.buildTime)});
  delegate.notifyDownloadProcessFinish();
}

void KaDownloadProcessor::Private::runUntilEnd() {
  KaLogUtility::writeInfoLog(u"DownloadThread Start"_s);
  while (!state.endAppFlag) {
    delegate.noteWait({});
    pairingcnd.wait([this] { return state.bStartAsked.load(); });
    if (state.endAppFlag) break;
    prepareRuns();
    while (const auto next = nextLink()) {
      takeUp(*next);
      if (!awaitNetwork()) continue;
      runOnce();
    }
  }
  pieces.run.saveAllRecords();
}

void KaDownloadProcessor::Private::prepareRuns() {
  state.bStartAsked = false;
  state.bUserTrigger = false;
  if (pieces.bookkeeping.load()) KaLogUtility::writeInfoLog(u"Load GetImageInfo"_s);
  state.waitTimes = delegate.loadWaitTimeInfo(KaWaitTimes());
  state.bLinkSetup = false;
}

/// The link that the next run begins with. A login under way holds it up; absent when a link has to be waited for.
std::optional<KaLinkSnapshot> KaDownloadProcessor::Private::nextLink() {
  while (!state.endAppFlag && !state.bLinkSetup) {
    if (auto snapshot = link.forRun()) return snapshot;
    const auto rest = link.loginRest();
    if (link.state() != KaLinkState::Linked) return std::nullopt;
    KaLogUtility::writeInfoLog(u"Login Wait"_s);
    delegate.noteWait({});
    logincnd.wait(rest, [this] { return link.state() != KaLinkState::Linked || link.forRun().has_value(); });
  }
  return std::nullopt;
}

void KaDownloadProcessor::Private::takeUp(const KaLinkSnapshot &next) {
  // Whatever the user asked for under another link, the first run of this one is not its answer.
  if (next.number != pieces.session.linkNumber()) state.bUserTrigger = false;
  state.bStartAsked = false;
  pieces.session.begin(next);
}

/// A run that is due waits for a network, in silence. @return false when its link is to be looked at anew.
bool KaDownloadProcessor::Private::awaitNetwork() {
  if (delegate.hasNetwork()) return true;
  // A run that lost its network has left the icon at work; what else it shows stays true.
  if (lastResult == KaResultCode::NoHttpStatus)
    pieces.session.tell([this] { delegate.setAppStatus(KaAppStatus::Normal); });
  KaLogUtility::writeInfoLog(u"Network Wait"_s);
  delegate.noteWait({});
  while (!pieces.session.isOver() && !delegate.hasNetwork()) {
    if (state.bUserTrigger.exchange(false)) tellUserOfNoNetwork();
    // No longer than the clock is looked at: the system need not tell of every network.
    state.waitcnd.wait(clock.lookInterval,
                       [this] { return state.bNews.exchange(false) || state.bUserTrigger || pieces.session.isOver(); });
  }
  cameBack = clock.now();
  const auto now = link.forRun();
  return now && now->number == pieces.session.linkNumber();
}

void KaDownloadProcessor::Private::tellUserOfNoNetwork() {
  pieces.session.noteFailureTold();
  pieces.session.tell([this] { delegate.setProcessingResult(KaResultCode::Offline, /*userTrigger=*/true); });
}

void KaDownloadProcessor::Private::runOnce() {
  KaLogUtility::writeInfoLog(u"Start Monitoring"_s);
  delegate.setEnableLoggin(false);
  state.bNews = false;
  lastResult = pieces.run.perform();
  if (lastResult == KaResultCode::NoHttpStatus) pieces.session.tell([this] { delegate.noteUnanswered(); });
  // What came during a run that had its answers is old.
  if (lastResult == KaResultCode::Success) state.bNews = false;
  // From here on a wish of the user's is one for the next run.
  state.bUserTrigger = false;
  delegate.setEnableLoggin(true);
  // A link that was made meanwhile has its first run at once.
  if (!pieces.session.isOver() && !state.bLinkSetup) waitForNextRun();
}

void KaDownloadProcessor::Private::waitForNextRun() {
  const bool mayPass = pieces.session.lastRefresh() == KaRefresh::MayPass;
  const bool isError = mayPass || lastResult == KaResultCode::NoHttpStatus;
  const auto wait = isError ? state.waitTimes.pollingError : state.waitTimes.pollingNormal;
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(wait);
  KaLogUtility::writeInfoLog(u"Polling Wait"_s, {u"pollingWaitTime=%1"_s.arg(seconds.count())});
  pieces.session.tell([&] { delegate.noteWait(wait); });
  state.waitcnd.wait(wait, [this] { return state.bUserTrigger || pieces.session.isLinkOver() || isNewsDue(); });
  if (!state.bUserTrigger && (mayPass || isNewsDue())) cameBack = clock.now();
}

bool KaDownloadProcessor::Private::isNewsDue() const {
  return state.bNews && (!cameBack || clock.now() - *cameBack >= state.waitTimes.pollingError);
}
