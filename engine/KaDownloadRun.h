#pragma once

#include "engine/KaAppStatus.h"
#include "engine/KaContentDownload.h"
#include "engine/KaContentListing.h"
#include "engine/KaDownloadReport.h"
#include "engine/KaPass.h"
#include "engine/KaTargetStorage.h"
#include "platform/ThreadBound.h"
#include "service/KaFaultCause.h"
#include "service/KaResultCode.h"
#include "settings/KaDownloadOption.h"

#include <QString>

class KaBookkeeping;
class KaDownloadProcessorDelegate;
class KaDownloadSession;
class KaLookBack;
class KaPreviewDownload;
class KaServerRequest;
class KaStorage;
struct KaDownloadState;

/// One run over the account's storage: its passes, what the user is told of them, their reports, and the saving of the
/// bookkeeping. The session has begun with the run's link before. Download thread.
class KaDownloadRun {
public:
  /// All of it outlives this object.
  struct Parts {
    KaDownloadProcessorDelegate &delegate;
    KaDownloadState &state;
    KaServerRequest &request;
    KaStorage &storage;
    KaDownloadSession &session;
    KaBookkeeping &bookkeeping;
    KaLookBack &lookBack;
    KaContentListing &listing;
    KaContentDownload &content;
    KaPreviewDownload &preview;
  };
  explicit KaDownloadRun(const Parts &parts) : with(parts) {}
  KaDownloadRun(const KaDownloadRun &) = delete;
  KaDownloadRun &operator=(const KaDownloadRun &) = delete;

  /// Sets the state's bLinkSetup when a refresh of the token is refused; no wait for the next run is due then.
  /// @return the result of the last pass.
  [[nodiscard]] KaResultCode perform();

  /// Saves the record of every storage kind, reporting only when they are done.
  void saveAllRecords();

private:
  /// How far the opening of a pass came.
  enum class Opening {
    Ready,   ///< fresh token, fresh credentials
    Refused, ///< no credentials; told
    Stopped, ///< no token, or the session is over: there is nothing new to save
  };
  struct Opened {
    Opening opening = Opening::Stopped;
    KaResultCode result = KaResultCode::Success;
  };
  /// How far the rounds of the ordinary storage have come.
  struct ReCheck {
    int retryCount = 0;
    int emptyCount = 0;  ///< listings in a row that found nothing
    int idleCount = 0;   ///< passes in a row that saved nothing
    bool isLeft = false; ///< something that was listed last is for a later run
    quint64 savedCount = 0;
    KaResultCode passResult = KaResultCode::Success; ///< of the last pass
    KaResultCode result = KaResultCode::Success;
    bool isDone = false;
  };
  /// What the report of a pass says besides its times.
  struct PassReport {
    QString logStream;
    QString information;
  };

  [[nodiscard]] KaResultCode performBoth();
  [[nodiscard]] Opened openPass(const QString &title);
  [[nodiscard]] Opened renew();
  [[nodiscard]] KaResultCode judged(KaResultCode result) const;
  [[nodiscard]] KaListing list(KaTargetStorage targetStorage);
  [[nodiscard]] KaListing look(KaTargetStorage targetStorage, const QString &startAfter);
  void tellLook(bool isAnswered);
  [[nodiscard]] KaResultCode downloadUntilNothingIsNew();
  [[nodiscard]] ReCheck checkOnce(ReCheck soFar);
  [[nodiscard]] ReCheck takeContents(ReCheck soFar, KaListedImages images);
  [[nodiscard]] ReCheck conclude(ReCheck soFar);
  [[nodiscard]] ReCheck finish(ReCheck soFar);
  [[nodiscard]] KaPassOutcome downloadContents(const KaListedImages &images);
  [[nodiscard]] KaPassOutcome lookBack();
  [[nodiscard]] KaContentTarget ordinaryTarget() const;
  void reportPass(const KaPassOutcome &pass, KaDownloadReport::Moment start);
  [[nodiscard]] KaResultCode takeLongTermStorage();
  [[nodiscard]] KaPassOutcome takeLongTermContents();
  [[nodiscard]] KaPassOutcome takePreviews(quint64 savedBefore);
  void concludeLongTerm(const KaPassOutcome &both);
  void sendReport(const PassReport &pass, KaDownloadReport::Moment start, quint64 successCount);
  void saveRecord(KaTargetStorage targetStorage);

  void tellSettings(const KaServiceSettings &settings);
  void tellInitialAccess();
  void tellFailedRefresh();
  void tellFailure(KaResultCode result, KaTargetStorage storage = KaTargetStorage::Days30);
  [[nodiscard]] KaFaultCause causeOf(KaResultCode result) const;
  void tellNoTarget();
  void tellNothingNew();
  void tellComplete();
  void tellStillToCome();
  void tellPass(qsizetype files);
  void tellStatus(KaAppStatus status);
  void tellResult(KaResultCode result, bool userTrigger);

  const Parts with;
  const platform::ThreadBound thread;
  KaDownloadOption option;        ///< read anew with every listing: the user may have changed it
  bool notifyUserOfUpdate = true; ///< once a process: until the service's settings have named the latest version
  bool hadSettings = false;       ///< of the service, in a listing of this run
  bool offers10GStorage = true;   ///< by the service's settings, as they were last read
};
