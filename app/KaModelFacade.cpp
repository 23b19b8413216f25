#include "app/KaModelFacade.h"

#include "app/KaDownloadDelegate.h"
#include "app/LoginVerification.h"
#include "engine/KaDownloadProcessor.h"
#include "engine/KaTargetStorage.h"
#include "log/KaLogUtility.h"
#include "platform/NetworkNews.h"
#include "platform/NoDestructor.h"
#include "platform/SleepNews.h"
#include "platform/ThreadBound.h"
#include "service/KaProxyChoice.h"
#include "service/LoopbackHost.h"
#include "service/ServiceClock.h"
#include "settings/FolderCheck.h"
#include "settings/LedgerFiles.h"
#include "settings/SettingsFiles.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Of the result that this thread is telling. Two may tell at a time: of a run and of a login.
thread_local KaFaultCause toldCause = KaFaultCause::Unknown;

} // namespace

/// Where news comes from.
struct KaModelFacade::News {
  platform::NetworkNews network;
  platform::SleepNews sleep;
};

KaModelFacade &KaModelFacade::sharedInstance() {
  static platform::NoDestructor<KaModelFacade> instance;
  return *instance;
}

KaModelFacade::KaModelFacade() : dOption(defaultDownloadOption()) {
  // Without it the settings of the first dialog would be lost: saving them makes no folder.
  QStringList records;
  for (const KaTargetStorage storage : kTargetStorages)
    records << recordName(storage);
  canKeepFiles = openAppFolder(records);
  if (!canKeepFiles) KaLogUtility::writeErrorLog(u"the app folder cannot be written to"_s);
  dlProc = std::make_unique<KaDownloadProcessor>(*this, link);
}

KaModelFacade::~KaModelFacade() = default;

KaSnapshot KaModelFacade::snapshot() const {
  KaSnapshot now = keeper.snapshot();
  now.linkState = link.state();
  now.hasNetwork = isServiceOnLoopback() || platform::hasNetwork() || isProxyHere;
  now.clockAhead = ServiceClock::computerAhead();
  return now;
}

KaDownloadOption KaModelFacade::downloadOption() const {
  const platform::MutexLock lock(optionLock);
  return dOption;
}

bool KaModelFacade::setDownloadOption(const KaDownloadOption &option) {
  {
    const platform::MutexLock lock(optionLock);
    dOption = option;
  }
  return saveDownloadFolderSetting();
}

QString KaModelFacade::downloadOptionParentFolder() const {
  return downloadOption().parentFolder;
}

QString KaModelFacade::downloadOptionParent10GFolder() const {
  return downloadOption().parent10GFolder;
}

QString KaModelFacade::checkBox10GDownload() const {
  return downloadOption().checkBox10GDownload;
}

QString KaModelFacade::checkBoxCreateSubfolder() const {
  return downloadOption().checkBoxCreateSubfolder;
}

QString KaModelFacade::checkBoxDownloadMetadata() const {
  return downloadOption().checkBoxDownloadMetadata;
}

qint64 KaModelFacade::downloadOptionChildFolder() const {
  return downloadOption().childFolder;
}

bool KaModelFacade::saveDownloadFolderSetting() const {
  if (saveDownloadOption(downloadOption())) return true;
  KaLogUtility::writeErrorLog(u"the download settings cannot be saved"_s);
  return false;
}

bool KaModelFacade::loadDownloadFolderSetting() {
  if (const auto option = loadDownloadOption()) setDownloadOption(*option);
  return false;
}

KaResultCode KaModelFacade::verifyDownloadOptionParentFolder(const QString &path) const {
  return verifyDownloadFolder(path);
}

KaWaitTimes KaModelFacade::loadWaitTimeInfo(KaWaitTimes builtIn) const {
  return loadWaitTimes(builtIn);
}

bool KaModelFacade::hasNetwork() const {
  // Quitting may have to wait for it: a look-up that takes longer may be right the next time.
  constexpr std::chrono::milliseconds kWaitForProxy(300);
  if (isServiceOnLoopback()) return true;
  const bool isUp = platform::hasNetwork();
  isProxyHere = !isUp && isServiceProxyOnLoopback(kWaitForProxy);
  return isUp || isProxyHere;
}

void KaModelFacade::setDownloadDataUUID(const QString &key) {
  const platform::MutexLock lock(dataLock);
  if (!dData.contains(key)) dData.insert(key, KaDownloadData());
}

void KaModelFacade::setDownloadDataLastDateTime(const QString &key, const QString &lastDateTime) {
  const platform::MutexLock lock(dataLock);
  if (const auto record = dData.find(key); record != dData.end()) record->LastDateTime = lastDateTime;
}

void KaModelFacade::setDownloadDataAddContent(const QString &key, const QString &contentId) {
  const platform::MutexLock lock(dataLock);
  if (const auto record = dData.find(key); record != dData.end()) record->ContentIds.append(contentId);
}

void KaModelFacade::setDownloadDataRemoveContents(const QString &key) {
  const platform::MutexLock lock(dataLock);
  if (const auto record = dData.find(key); record != dData.end()) record->ContentIds.clear();
}

void KaModelFacade::setDownloadDataNewDate(const QString &key, const QString &lastDateTime, const QString &contentId) {
  const platform::MutexLock lock(dataLock);
  if (const auto record = dData.find(key); record != dData.end()) *record = {lastDateTime, {contentId}};
}

void KaModelFacade::setDownloadData(const QString &key, const QString &lastDateTime, const QStringList &contentIds) {
  const platform::MutexLock lock(dataLock);
  dData.insert(key, {lastDateTime, contentIds});
}

std::optional<QString> KaModelFacade::downloadDataLastDateTime(const QString &key) const {
  const auto record = downloadData(key);
  if (!record) return std::nullopt;
  return record->LastDateTime;
}

std::optional<QStringList> KaModelFacade::downloadDataContentIds(const QString &key) const {
  const auto record = downloadData(key);
  if (!record) return std::nullopt;
  return record->ContentIds;
}

std::optional<KaDownloadData> KaModelFacade::downloadData(const QString &key) const {
  const platform::MutexLock lock(dataLock);
  const auto record = dData.find(key);
  if (record == dData.end()) return std::nullopt;
  return *record;
}

bool KaModelFacade::saveGetImageInfo(const QString &fileName, const QString &uuidKey) {
  return saveBookkeeping(fileName, uuidKey, downloadData(uuidKey).value_or(KaDownloadData{u""_s, {}}));
}

bool KaModelFacade::loadGetImageInfo(const QString &fileName) {
  const auto records = loadBookkeeping(fileName);
  if (!records) return false;
  for (auto record = records->begin(); record != records->end(); ++record)
    setDownloadData(record.key(), record->LastDateTime, record->ContentIds);
  return true;
}

KaLoadedLedger KaModelFacade::loadLedger(const QString &account) const {
  return ::loadLedger(account);
}

bool KaModelFacade::saveLedger(const QString &account, KaLedger &ledger) {
  return ::saveLedger(account, ledger);
}

void KaModelFacade::setAppStatus(KaAppStatus status) {
  if (KaDownloadDelegate *const delegate = dlDelegate) delegate->onChangeStatus(*this, status);
}

void KaModelFacade::setProcessingResult(KaResultCode result, bool userTrigger) {
  KaFault told = std::exchange(next, {});
  told.result = result;
  tellResult(told, userTrigger);
}

void KaModelFacade::noteFaultCause(KaFaultCause cause, KaTargetStorage storage) {
  next.cause = cause;
  next.isOf10GStorage = storage != KaTargetStorage::Days30;
}

void KaModelFacade::tellResult(const KaFault &told, bool userTrigger) {
  // A callback that belongs to no login says nothing of a link that stands, nor of what has failed of that.
  const bool isStray = told.cause == KaFaultCause::NotAccepted && link.state() != KaLinkState::Unlinked;
  if (!isStray) keeper.noteResult(told);
  toldCause = told.cause;
  if (KaDownloadDelegate *const delegate = dlDelegate) delegate->onProcessingResult(*this, told.result, userTrigger);
  toldCause = KaFaultCause::Unknown;
}

KaFaultCause KaModelFacade::faultCause() const {
  return toldCause;
}

void KaModelFacade::notifySavingTrouble(KaResultCode cause, KaTargetStorage storage) {
  keeper.noteResult({.result = cause, .isOf10GStorage = storage != KaTargetStorage::Days30});
  if (KaDownloadDelegate *const delegate = dlDelegate) delegate->onSavingTrouble(cause);
}

void KaModelFacade::setEnableLoggin(bool enable) {
  if (!enable) keeper.noteRun();
  if (KaDownloadDelegate *const delegate = dlDelegate) delegate->onSetEnableLogginMenu(enable);
}

void KaModelFacade::notifyLinkHolds(KaLinkNumber number) {
  keeper.noteLinkHolds();
  mailbox.post([this, number] {
    KaDownloadDelegate *const delegate = dlDelegate;
    if (delegate && link.isCurrent(number)) delegate->onChangeLinkage(true);
  });
}

void KaModelFacade::notifyDownloadProcessFinish() {
  if (KaDownloadDelegate *const delegate = dlDelegate) delegate->onFinishDownloadProcess();
}

void KaModelFacade::downloadNow(bool initialAccess) {
  platform::assertMainThread();
  if (initialAccess) return dlProc->startReceiving(/*initialAccess=*/true);
  dlProc->getContentsNow();
}

void KaModelFacade::cancelPollingWait() {
  platform::assertMainThread();
  dlProc->cancelPollingWait();
}

void KaModelFacade::listenForNews() {
  platform::assertMainThread();
  news = std::make_unique<News>();
  QObject::connect(&news->network, &platform::NetworkNews::changed, &mailbox, [this] { newsFromOutside(); });
  QObject::connect(&news->sleep, &platform::SleepNews::wokeUp, &mailbox, [this] { newsFromOutside(); });
}

void KaModelFacade::newsFromOutside() {
  platform::assertMainThread();
  dlProc->newsFromOutside();
}

void KaModelFacade::endDownloadProcess() {
  platform::assertMainThread();
  news.reset();
  // A login under verification would outlive what it uses.
  logins.clear();
  dlProc->endDownloadProcess();
}

void KaModelFacade::joinDownloadProcess() {
  platform::assertMainThread();
  dlProc->join();
}

void KaModelFacade::switchLogMode() {
  KaLogUtility::switchLogStatus();
}

std::optional<QString> KaModelFacade::getOutputLogFilePath() const {
  return KaLogUtility::outputLogFilePath();
}
