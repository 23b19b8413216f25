#pragma once

#include "app/settings/KaDownloadOption.h"
#include "engine/KaTargetStorage.h"
#include "service/KaResultCode.h"

#include <QString>

class KaContentDownload;
class KaContentListing;
class KaDownloadProcessorDelegate;
class KaDownloadSession;
struct KaDownloadState;

/// One run over the account's storage: its passes, their reports, and the saving of the bookkeeping. Download thread.
class KaDownloadRun {
public:
  KaDownloadRun(KaDownloadProcessorDelegate &toTell, KaDownloadSession &current, KaContentListing &contentListing,
                KaContentDownload &contentDownload, KaDownloadState &shared)
      : delegate(toTell), session(current), listing(contentListing), content(contentDownload), state(shared) {}
  KaDownloadRun(const KaDownloadRun &) = delete;
  KaDownloadRun &operator=(const KaDownloadRun &) = delete;

  /// Sets the state's bLinkSetup when the token cannot be refreshed; no wait for the next run is due then.
  /// @return the result of the last pass.
  [[nodiscard]] KaResultCode perform(bool notifyUserOfUpdate);

  /// Saves the record of every storage kind, reporting only when they are done.
  void saveAllRecords();

private:
  /// How far a pass came.
  enum class Opening {
    Ready,   ///< fresh token, fresh credentials
    Refused, ///< no credentials; reported
    Stopped, ///< no token, or the program ends: nothing of this run is saved
  };
  /// What a round of re-checks leads to.
  enum class Round { Again, Leave };
  struct ReCheck {
    int retryCount = 0;
    int emptyCount = 0;
    KaResultCode result = KaResultCode::Success;
  };

  [[nodiscard]] Opening openPass(const QString &title, KaResultCode &result);
  [[nodiscard]] KaResultCode downloadUntilNothingIsNew(bool notifyUserOfUpdate);
  [[nodiscard]] Round checkOnce(ReCheck &reCheck, bool notifyUserOfUpdate);
  [[nodiscard]] Round takeContents(ReCheck &reCheck);
  [[nodiscard]] Round judge(const ReCheck &reCheck);
  void downloadContents();
  void reportInitialAccess();
  void reportFailure(KaResultCode result);
  void reportNoTarget();
  void saveRecord(KaTargetStorage targetStorage, const QString &logTitle);

  KaDownloadProcessorDelegate &delegate;
  KaDownloadSession &session;
  KaContentListing &listing;
  KaContentDownload &content;
  KaDownloadState &state;
  KaDownloadOption option; ///< read anew with every listing: the service may have changed it
};
