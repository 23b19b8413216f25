#pragma once

#include "engine/KaDownloadProcessorDelegate.h"
#include "settings/KaDownloadData.h"

#include <QHash>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

/// Answers the engine from memory and notes what it was told, as one line each: "result 3 by user", "status 1",
/// "enableLoggin 0", "link holds", "load NAME", "save NAME KEY", "finish". Any thread.
class FakeDelegate final : public KaDownloadProcessorDelegate {
public:
  struct Answers {
    KaDownloadOption option;
    KaWaitTimes waits{.reCheck = std::chrono::milliseconds(1), .exifRetry = std::chrono::milliseconds(1)};
    bool saves = true;
    bool savesLedger = true;
    KaResultCode folderVerdict = KaResultCode::Success;
    std::function<KaResultCode()> judgeFolder; ///< instead of it
    bool hasNetwork = true;
    bool offers10GStorage = true;
    qsizetype stillToCome = -1;
    KaFaultCause cause = KaFaultCause::Unknown;        ///< as it was noted last
    KaTargetStorage storage = KaTargetStorage::Days30; ///< with it
    QStringList onlookers; ///< what those were told: "looking", "pass 2", "file NAME", "wait", "wait MILLISECONDS"
    QHash<QString, KaDownloadData> records;
    QHash<QString, KaLoadedLedger> ledgers;
    std::function<void(const QString &event)> onEvent; ///< called once it is noted, without the lock held
  };

  void change(const std::function<void(Answers &)> &edit) {
    const std::lock_guard lock(mutex);
    edit(current);
  }
  [[nodiscard]] Answers answers() const;
  /// From now on, for who asks anew, nothing was ever taken.
  void forgetTaken() {
    change([](Answers &answers) {
      answers.records.clear();
      answers.ledgers.clear();
    });
  }
  [[nodiscard]] QStringList events() const;
  void forgetEvents();
  /// @return false when the event did not come @p times within @p seconds.
  [[nodiscard]] bool waitForEvent(const QString &event, int times = 1, int seconds = 20) const;

  KaDownloadOption downloadOption() const override { return answers().option; }
  KaResultCode verifyDownloadOptionParentFolder(const QString &) const override {
    const Answers now = answers();
    return now.judgeFolder ? now.judgeFolder() : now.folderVerdict;
  }
  KaWaitTimes loadWaitTimeInfo(KaWaitTimes) const override { return answers().waits; }
  bool hasNetwork() const override { return answers().hasNetwork; }
  void setDownloadDataUUID(const QString &key) override {
    change([&](auto &now) { now.records[key]; });
  }
  void setDownloadDataAddContent(const QString &key, const QString &contentId) override {
    change([&](auto &now) { now.records[key].ContentIds << contentId; });
  }
  void setDownloadDataNewDate(const QString &key, const QString &lastDateTime, const QString &contentId) override {
    change([&](auto &now) { now.records[key] = {lastDateTime, {contentId}}; });
  }
  std::optional<QString> downloadDataLastDateTime(const QString &key) const override {
    return answers().records.value(key).LastDateTime;
  }
  std::optional<QStringList> downloadDataContentIds(const QString &key) const override {
    return answers().records.value(key).ContentIds;
  }
  bool loadGetImageInfo(const QString &fileName) override { return note(QStringLiteral("load ") + fileName); }
  bool saveGetImageInfo(const QString &fileName, const QString &uuidKey) override {
    return note(QStringLiteral("save ") + fileName + u' ' + uuidKey) && answers().saves;
  }
  KaLoadedLedger loadLedger(const QString &account) const override { return answers().ledgers.value(account); }
  bool saveLedger(const QString &account, KaLedger &ledger) override {
    change([&](auto &now) {
      if (now.savesLedger) now.ledgers[account] = {KaLoadedLedger::Outcome::Read, ledger};
    });
    return answers().savesLedger;
  }
  void setOffers10GStorage(bool offers) override {
    change([&](auto &now) { now.offers10GStorage = offers; });
  }
  void setStillToCome(qsizetype count) override {
    change([&](auto &now) { now.stillToCome = count; });
  }
  void setAppStatus(KaAppStatus status) override { note(QStringLiteral("status %1").arg(qint64(status))); }
  void setProcessingResult(KaResultCode result, bool userTrigger) override {
    note(QStringLiteral("result %1%2").arg(qint64(result)).arg(userTrigger ? u" by user" : u""));
  }
  void notifySavingTrouble(KaResultCode cause, KaTargetStorage storage) override {
    note(QStringLiteral("trouble %1%2").arg(qint64(cause)).arg(storage == KaTargetStorage::Days30 ? u"" : u" of 10G"));
  }
  void noteFaultCause(KaFaultCause cause, KaTargetStorage storage) override {
    change([&](auto &now) {
      now.cause = cause;
      now.storage = storage;
    });
  }
  void noteLooking() override { tellOnlookers(QStringLiteral("looking")); }
  void noteLooked() override { tellOnlookers(QStringLiteral("looked")); }
  void notePass(qsizetype files) override { tellOnlookers(QStringLiteral("pass %1").arg(files)); }
  void noteFile(const QString &saved) override { tellOnlookers(QStringLiteral("file ") + saved.section(u'/', -1)); }
  void noteWait(std::optional<std::chrono::milliseconds> longest) override {
    tellOnlookers(longest ? QStringLiteral("wait %1").arg(longest->count()) : QStringLiteral("wait"));
  }
  void noteNothingNew() override { tellOnlookers(QStringLiteral("nothing new")); }
  void noteUnanswered() override { tellOnlookers(QStringLiteral("unanswered")); }
  void noteUnsaved() override { tellOnlookers(QStringLiteral("unsaved")); }
  void setEnableLoggin(bool enable) override { note(QStringLiteral("enableLoggin %1").arg(int(enable))); }
  void notifyLinkHolds(KaLinkNumber) override { note(QStringLiteral("link holds")); }
  void notifyDownloadProcessFinish() override { note(QStringLiteral("finish")); }

private:
  bool note(const QString &event); ///< true
  void tellOnlookers(const QString &what) {
    change([&](auto &now) { now.onlookers << what; });
  }

  mutable std::mutex mutex;
  mutable std::condition_variable noted;
  Answers current;  // mutex
  QStringList told; // mutex
};
