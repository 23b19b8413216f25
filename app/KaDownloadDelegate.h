#pragma once

#include "engine/KaAppStatus.h"
#include "service/KaResultCode.h"

class KaModelFacade;

/// Receives all that the facade has to tell. Calls come on the facade's caller's thread, the download thread included.
class KaDownloadDelegate {
public:
  KaDownloadDelegate() = default;
  KaDownloadDelegate(const KaDownloadDelegate &) = delete;
  KaDownloadDelegate &operator=(const KaDownloadDelegate &) = delete;
  virtual ~KaDownloadDelegate() = default;

  virtual void onChangeStatus(KaModelFacade &facade, KaAppStatus statusMode) = 0;
  virtual void onProcessingResult(KaModelFacade &facade, KaResultCode result, bool userTrigger) = 0;
  virtual void onCompleteLinkageSetting() = 0;         ///< a login has completed and was stored; main thread
  virtual void onSetEnableLogginMenu(bool enable) = 0; ///< the link / log-out entry may be used
  virtual void onFinishDownloadProcess() = 0;          ///< the download thread has ended
  virtual void onChangeLinkage(bool linked) = 0;       ///< main thread
};
