#pragma once

#include "app/KaDownloadDelegate.h"
#include "platform/Mutex.h"

#include <QStringList>
#include <QThread>

/// Notes every report in the order of arrival, those of other threads than the one that made it with "(thread) " in
/// front. Any thread.
class RecordingDelegate final : public KaDownloadDelegate {
public:
  void onChangeStatus(KaModelFacade &facade, KaAppStatus statusMode) override;
  void onProcessingResult(KaModelFacade &facade, KaResultCode result, bool userTrigger) override;
  void onCompleteLinkageSetting() override;
  void onSetEnableLogginMenu(bool enable) override;
  void onFinishDownloadProcess() override;
  void onChangeLinkage(bool linked) override;

  [[nodiscard]] QStringList reports() const;
  /// Those of the making thread alone.
  [[nodiscard]] QStringList ownReports() const;

private:
  void note(const QString &report);

  const Qt::HANDLE ownThread = QThread::currentThreadId();
  mutable platform::Mutex lock;
  QStringList noted KA_GUARDED_BY(lock);
};
