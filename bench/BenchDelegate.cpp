#include "bench/BenchDelegate.h"

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

BenchDelegate::BenchDelegate(const QString &parentFolder, const QString &idToken) : token(idToken) {
  option.parentFolder = parentFolder;
  option.parent10GFolder = parentFolder;
  option.checkBox10GDownload = u"false"_s;
  option.checkBoxCreateSubfolder = u"false"_s;
  option.checkBoxDownloadMetadata = u"false"_s;
}

KaResultCode BenchDelegate::waitForRunEnd() {
  std::unique_lock lock(endLock);
  ended.wait(lock, [this] { return end.has_value(); });
  return *end;
}

void BenchDelegate::loadWaitTimeInfo(KaWaitTimes &waitTimes) const {
  waitTimes = {.pollingNormal = 1h, .pollingError = 1h, .reCheck = 1ms, .exifRetry = 1ms};
}

bool BenchDelegate::saveLinkageSetting(const QString &idToken) {
  token = idToken;
  return true;
}

void BenchDelegate::setDownloadDataUUID(const QString &key) {
  if (!records.contains(key)) records.insert(key, {.ContentIds = taken});
}

void BenchDelegate::setDownloadDataAddContent(const QString &key, const QString &contentId) {
  records[key].ContentIds << contentId;
}

void BenchDelegate::setDownloadDataNewDate(const QString &key, const QString &lastDateTime, const QString &contentId) {
  records[key] = {lastDateTime, {contentId}};
}

std::optional<QString> BenchDelegate::downloadDataLastDateTime(const QString &key) const {
  return records.value(key).LastDateTime;
}

std::optional<QStringList> BenchDelegate::downloadDataContentIds(const QString &key) const {
  return records.value(key).ContentIds;
}

void BenchDelegate::setAppStatus(KaAppStatus status) {
  if (status != KaAppStatus::Downloading) endRun(KaResultCode::Success);
}

void BenchDelegate::setProcessingResult(KaResultCode result, bool) {
  endRun(result);
}

void BenchDelegate::endRun(KaResultCode result) {
  const std::lock_guard lock(endLock);
  if (!end) end = result;
  ended.notify_all();
}
