#pragma once

#include "app/settings/KaDownloadData.h"
#include "engine/KaDownloadProcessorDelegate.h"

#include <QHash>

#include <condition_variable>
#include <mutex>
#include <set>

/// Answers the engine from memory, so that a measured run is the engine's work alone.
class BenchDelegate final : public KaDownloadProcessorDelegate {
public:
  BenchDelegate(const QString &parentFolder, const QString &idToken);

  /// Ids that every listing shall find taken already.
  void markTaken(const QStringList &contentIds) { taken = contentIds; }
  /// Until the engine reports that a run found nothing or is complete.
  /// @return the result that ended it; Success for "nothing to do".
  [[nodiscard]] KaResultCode waitForRunEnd();

  [[nodiscard]] KaDownloadOption downloadOption() const override { return option; }
  void setDownloadOption(const KaDownloadOption &newOption) override { option = newOption; }
  [[nodiscard]] KaResultCode verifyDownloadOptionParentFolder(const QString &) const override {
    return KaResultCode::Success;
  }
  void loadWaitTimeInfo(KaWaitTimes &waitTimes) const override;
  [[nodiscard]] bool bLoggedIn() const override { return true; }
  [[nodiscard]] std::optional<QString> loadLinkageSetting() const override { return token; }
  bool saveLinkageSetting(const QString &idToken) override;
  void setDownloadDataUUID(const QString &key) override;
  void setDownloadDataAddContent(const QString &key, const QString &contentId) override;
  void setDownloadDataNewDate(const QString &key, const QString &lastDateTime, const QString &contentId) override;
  [[nodiscard]] std::optional<QString> downloadDataLastDateTime(const QString &key) const override;
  [[nodiscard]] std::optional<QStringList> downloadDataContentIds(const QString &key) const override;
  [[nodiscard]] bool loadGetImageInfo(const QString &) override { return true; }
  [[nodiscard]] bool saveGetImageInfo(const QString &, const QString &) override { return true; }
  void setAppStatus(KaAppStatus status) override;
  void setProcessingResult(KaResultCode result, bool userTrigger) override;
  void setEnableLoggin(bool) override {}
  void notifyDownloadProcessFinish() override {}

private:
  void endRun(KaResultCode result);

  KaDownloadOption option;
  QString token;
  QStringList taken;
  QHash<QString, KaDownloadData> records;
  std::mutex endLock;
  std::condition_variable ended;
  std::optional<KaResultCode> end; // endLock
};
