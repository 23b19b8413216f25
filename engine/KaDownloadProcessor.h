#pragma once

#include "engine/KaWaitClock.h"

#include <memory>

class KaDownloadProcessorDelegate;
class KaLink;

/// The download thread: sleeps until the account is linked, then runs again and again (refresh, list, fetch, record)
/// with a wait between runs, until it is told to end. All public operations may be called from any thread.
class KaDownloadProcessor {
public:
  /// Starts the thread and returns once it stands at its first wait. @p delegate and @p link outlive this object.
  KaDownloadProcessor(KaDownloadProcessorDelegate &delegate, KaLink &link, const KaWaitClock &clock = {});
  /// Ends the thread and joins it.
  ~KaDownloadProcessor();
  KaDownloadProcessor(const KaDownloadProcessor &) = delete;
  KaDownloadProcessor &operator=(const KaDownloadProcessor &) = delete;

  /// Tells of a link: wakes the thread that waits for one, or for its next run. The run that follows is not the user's.
  /// @param initialAccess  the coming run is the first of a new link.
  void startReceiving(bool initialAccess);
  /// Asks for a run now: marks it as the user's and cuts a wait between runs or re-checks short.
  void getContentsNow();
  /// Wakes every wait, asking for nothing.
  void cancelPollingWait();
  /// The network may have changed, or the computer has woken: a wait whose time is over ends, and so does one for a
  /// network or for the next run, the latter at most once per error polling wait.
  void newsFromOutside();
  /// A login under way holds no run up any more. Disturbs no other wait.
  void loginEnded();
  /// Tells the thread to end: a request in flight stops, waits end, the bookkeeping is saved. Returns at once.
  void endDownloadProcess();
  /// Waits for the end of a thread that was told to. Main thread.
  void join();
  /// Forgets the temporary credentials, and ends the request in flight and waits of the run: its link is over.
  void deleteCredential();

private:
  class Private;
  std::unique_ptr<Private> d;
};
