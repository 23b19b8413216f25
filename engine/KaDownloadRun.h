#pragma once

#include "engine/KaDownloadReport.h"
#include "engine/KaTargetStorage.h"
#include "service/KaResultCode.h"
#include "settings/KaDownloadOption.h"

#include <QString>

class KaContentDownload;
class KaContentListing;
class KaDownloadProcessorDelegate;
class KaDownloadSession;
class KaPreviewDownload;
class KaServerRequest;
struct KaDownloadState;

/// One run over the account's storage: its passes, their reports, and the saving of the bookkeeping. Download thread.
class KaDownloadRun {
public:
  KaDownloadRun(KaDownloadProcessorDelegate &toTell, KaServerRequest &toReport, KaDownloadSession &current,
                KaContentListing &contentListing, KaContentDownload &contentDownload,
                KaPreviewDownload &previewDownload, KaDownloadState &shared)
      : delegate(toTell), request(toReport), session(current), listing(contentListing), content(contentDownload),
        preview(previewDownload), state(shared) {}
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

  /// What the report of a pass says besides its times.
  struct PassReport {
    QString logStream;
    QString information;
  };

  [[nodiscard]] Opening openPass(const QString &title, KaResultCode &result);
  [[nodiscard]] KaResultCode downloadUntilNothingIsNew(bool notifyUserOfUpdate);
  [[nodiscard]] Round checkOnce(ReCheck &reCheck, bool notifyUserOfUpdate);
  [[nodiscard]] Round takeContents(ReCheck &reCheck);
  [[nodiscard]] Round judge(const ReCheck &reCheck);
  void downloadContents();
  [[nodiscard]] KaResultCode takeLongTermStorage(bool notifyUserOfUpdate);
  [[nodiscard]] KaResultCode takeLongTermContents(bool notifyUserOfUpdate, quint64 &savedCount);
  [[nodiscard]] KaResultCode takePreviews(quint64 &savedCount);
  void concludeLongTerm(KaResultCode result, quint64 savedCount);
  void sendReport(const PassReport &pass, KaDownloadReport::Moment start, quint64 successCount);
  void reportInitialAccess();
  void reportFailure(KaResultCode result);
  void reportNoTarget();
  void saveRecord(KaTargetStorage targetStorage, const QString &logTitle);
  [[nodiscard]] bool save(KaTargetStorage targetStorage);

  KaDownloadProcessorDelegate &delegate;
  KaServerRequest &request;
  KaDownloadSession &session;
  KaContentListing &listing;
  KaContentDownload &content;
  KaPreviewDownload &preview;
  KaDownloadState &state;
  KaDownloadOption option; ///< read anew with every listing: the service may have changed it
};
