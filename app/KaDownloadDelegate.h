#pragma once

#include "engine/KaAppStatus.h"
#include "service/KaResultCode.h"

#include <QString>

class KaModelFacade;

/// Receives all that the facade has to tell, in this order:
///
/// - At start, from initializeLinkageSetting. Linked: onChangeStatus(Normal), onChangeLinkage(true); reports of the
///   first run may come before the latter. Not linked: onProcessingResult(NotLinked). Last, where nothing can be kept
///   in the app folder: onProcessingResult(Unexpected).
/// - A login that completes: the link is stored and awaits its folders, then onCompleteLinkageSetting,
///   onChangeLinkage(true). No run of it begins before KaModelFacade::confirmFolders. One that fails:
///   onProcessingResult alone, and the link stays as it was. The first that cannot be stored on disk:
///   onProcessingResult(Unexpected) behind the rest.
/// - A log-out, from closeLinkage: the link is over, then onChangeStatus(NotLinked), onProcessingResult(Unlinked),
///   onChangeLinkage(false). From then on no status and no result of that link's runs is told.
/// - A page of a login or a log-out that cannot be opened: onPageNotOpened alone, later. A login that was begun anew or
///   closed meanwhile tells nothing of its page.
/// - A run: onSetEnableLogginMenu(false), its statuses and results, onSetEnableLogginMenu(true). Where it left pictures
///   behind for lack of room or of a folder, onSavingTrouble comes once, behind the ordinary storage's result.
/// - A failure that passes by itself: once the login could not be verified (ValidationFailed), or the user was told of
///   no network (Offline), onChangeLinkage(true) follows the first verification that succeeds, if the link still
///   stands, before the statuses and results of what comes after it.
/// - onFinishDownloadProcess is the last call of the download thread.
///
/// Main thread: onCompleteLinkageSetting, onChangeLinkage, onPageNotOpened, and what belongs to start, login and
/// log-out. Download thread: what belongs to runs and their end. So the others come from either, and must not block.
class KaDownloadDelegate {
public:
  KaDownloadDelegate() = default;
  KaDownloadDelegate(const KaDownloadDelegate &) = delete;
  KaDownloadDelegate &operator=(const KaDownloadDelegate &) = delete;
  virtual ~KaDownloadDelegate() = default;

  virtual void onChangeStatus(KaModelFacade &facade, KaAppStatus statusMode) = 0;
  virtual void onProcessingResult(KaModelFacade &facade, KaResultCode result, bool userTrigger) = 0;
  virtual void onSavingTrouble(KaResultCode cause) = 0; ///< worth a message; status and link are as they were
  virtual void onCompleteLinkageSetting() = 0;          ///< a login has completed and was stored
  virtual void onPageNotOpened(const QString &url) = 0; ///< for its user alone: it may hold secrets
  virtual void onSetEnableLogginMenu(bool enable) = 0;  ///< the link / log-out entry may be used
  virtual void onFinishDownloadProcess() = 0;           ///< the download thread has ended
  virtual void onChangeLinkage(bool linked) = 0;        ///< a link is there, or none any more
};
