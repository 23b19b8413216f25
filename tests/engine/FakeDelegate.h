#pragma once

#include "app/settings/KaDownloadData.h"
#include "engine/KaDownloadProcessorDelegate.h"

#include <QHash>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

/// Answers the engine from memory and notes what it was told, as one line each: "result 3 by user", "status 1",
/// "enableLoggin 0", "load NAME", "save NAME KEY", "saveLinkage", "finish". Any thread.
class FakeDelegate final : public KaDownloadProcessorDelegate {
public:
  struct Answers {
    KaDownloadOption option;
    KaWaitTimes waits{.pollingNormal = std::chrono::hours(1),
                      .pollingError = std::chrono::hours(1),
                      .reCheck = std::chrono::milliseconds(1),
                      .exifRetry = std::chrono::milliseconds(1)};
    bool loggedIn = true;
    bool saves = true;
    std::optional<QString> token;
    KaResultCode folderVerdict = KaResultCode::Success;
    QHash<QString, KaDownloadData> records;
    std::function<void()> onBLoggedIn; ///< called without the lock held
  };

  void change(const std::function<void(Answers &)> &edit);
  [[nodiscard]] Answers answers() const;
  [[nodiscard]] QStringList events() const;
  void forgetEvents();
  /// @return false when the event did not come @p times within 20 s.
  [[nodiscard]] bool waitForEvent(const QString &event, int times = 1) const;

  [[nodiscard]] KaDownloadOption downloadOption() const override;
  void setDownloadOption(const KaDownloadOption &option) override;
  [[nodiscard]] KaResultCode verifyDownloadOptionParentFolder(const QString &path) const override;
  void loadWaitTimeInfo(KaWaitTimes &waitTimes) const override;
  [[nodiscard]] bool bLoggedIn() const override;
  [[nodiscard]] std::optional<QString> loadLinkageSetting() const override;
  bool saveLinkageSetting(const QString &idToken) override;
  void setDownloadDataUUID(const QString &key) override;
  void setDownloadDataAddContent(const QString &key, const QString &contentId) override;
  void setDownloadDataNewDate(const QString &key, const QString &lastDateTime, const QString &contentId) override;
  [[nodiscard]] std::optional<QString> downloadDataLastDateTime(const QString &key) const override;
  [[nodiscard]] std::optional<QStringList> downloadDataContentIds(const QString &key) const override;
  [[nodiscard]] bool loadGetImageInfo(const QString &fileName) override;
  [[nodiscard]] bool saveGetImageInfo(const QString &fileName, const QString &uuidKey) override;
  void setAppStatus(KaAppStatus status) override;
  void setProcessingResult(KaResultCode result, bool userTrigger) override;
  void setEnableLoggin(bool enable) override;
  void notifyDownloadProcessFinish() override;

private:
  void note(const QString &event);

  mutable std::mutex mutex;
  mutable std::condition_variable noted;
  Answers current;  // mutex
  QStringList told; // mutex
};
