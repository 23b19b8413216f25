#include "engine/KaContentListing.h"

#include "engine/KaDownloadProcessorDelegate.h"
#include "engine/KaDownloadSession.h"
#include "engine/KaDownloadState.h"
#include "engine/ListingParser.h"
#include "engine/ObjectKey.h"
#include "engine/PresignedUrl.h"
#include "engine/VersionOrder.h"
#include "platform/AppInfo.h"
#include "platform/JsonValue.h"
#include "service/KaApplicationConstants.h"
#include "service/KaServerRequest.h"
#include "settings/KaDownloadData.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

QString httpLine(qint64 statusCode) {
  return u"HTTP=%1"_s.arg(statusCode);
}

QStringList strings(const QJsonArray &array) {
  QStringList texts;
  for (const QJsonValue &value : array)
    if (value.isString()) texts << value.toString();
  return texts;
}

/// Whether @p key is an image of the device whose keys begin with @p prefix. A listing by prefix also brings the
/// devices whose id merely begins alike, and without an upload hour an object could be neither dated nor recorded.
bool isImageOf(const QString &prefix, const QString &key) {
  return key.startsWith(prefix) && key.size() > prefix.size() && key[prefix.size()] == u'/'
         && uploadHourFromPath(key).isValid();
}

/// The part of a key that decides its order: the last three components.
QStringView orderOf(const QString &key) {
  qsizetype start = key.size();
  for (int component = 0; component < 3 && start > 0; ++component)
    start = key.lastIndexOf(u'/', start - 1);
  return QStringView(key).mid(start + 1);
}

} // namespace

KaResultCode KaContentListing::getContentsList(KaTargetStorage targetStorage, bool notifyUserOfUpdate) {
  contents.clear();
  deviceArray.clear();
  if (const KaResultCode result = listDevices(); result != KaResultCode::Success) return result;
  if (state.endAppFlag) return KaResultCode::Success;

  QStringList devices = deviceArray;
  if (targetStorage != KaTargetStorage::LongTerm10G)
    if (const KaResultCode result = readSettings(notifyUserOfUpdate, devices); result != KaResultCode::Success)
      return result;

  const KaResultCode result = listItems(devices, targetStorage);
  KaLogUtility::writeInfoLog(u"GetContentsList"_s, {u"TargetImageNumBeforeExclude=%1"_s.arg(contents.size())});
  if (state.endAppFlag || result != KaResultCode::Success) return result;
  excludeDownloaded(targetStorage);
  KaLogUtility::writeInfoLog(u"GetContentsList"_s, {u"TargetImageNumAfterExclude=%1"_s.arg(contents.size())});
  return KaResultCode::Success;
}

void KaContentListing::withhold(const QSet<QString> &keys) {
  for (const QString &key : keys)
    contents.remove(key);
}

void KaContentListing::saveImageInfo(const QString &contentId, const QString &date, const QString &hour,
                                     KaTargetStorage targetStorage) {
  const QString key = recordKey(targetStorage);
  if (targetStorage == KaTargetStorage::LongTerm10G) return delegate.setDownloadDataAddContent(key, contentId);

  const auto lastDateTime = delegate.downloadDataLastDateTime(key);
  if (!lastDateTime) return;
  const QString dateTime = date + u'/' + hour;
  if (*lastDateTime == dateTime) delegate.setDownloadDataAddContent(key, contentId);
  if (*lastDateTime < dateTime) delegate.setDownloadDataNewDate(key, dateTime, contentId);
}

KaResultCode KaContentListing::readPages(KaLogStep step, const QStringList &subject, ListParameters parameters,
                                         const PageTaker &take) {
  const QString bucket = KaApplicationConstants::awsS3BucketName();
  const auto [credential, keys] = session.access();
  const QString base =
      baseURLString(u"https"_s, bucket, KaApplicationConstants::awsS3AccelerateHostName(), {}, u"list-type=2"_s);
  const QString options =
      optionURLString(keys.accessKeyId, keys.expireUnixTime,
                      SignatureString(keys.expireUnixTime, bucket, keys.secretKey, keys.sessionToken));

  QSet<QString> tokensSent;
  for (;;) {
    const ServerAnswer answer = request.getAwsS3KeyList(createS3URLString(base, options, parameters), credential);
    ListingPage page;
    KaResultCode result = answer.result;
    if (result == KaResultCode::Success) result = parseXML(answer.data, page);
    if (page.nextContinuationToken && tokensSent.contains(*page.nextContinuationToken)) result = KaResultCode::NoBody;
    if (result != KaResultCode::Success) {
      KaLogUtility::writeConnectionResultLog(step, false, subject + QStringList{httpLine(answer.statusCode)});
      return result;
    }
    KaLogUtility::writeConnectionResultLog(step, true, subject + take(page));
    if (!page.nextContinuationToken) return KaResultCode::Success;
    parameters.continuationToken = *page.nextContinuationToken;
    tokensSent.insert(parameters.continuationToken);
  }
}

KaResultCode KaContentListing::listDevices() {
  return readPages(KaLogStep::GetDeviceList, {}, {.prefix = deviceListPrefix(), .delimiter = u"/"_s},
                   [this](const ListingPage &page) {
                     deviceArray << page.devices;
                     return QStringList{u"DeviceList="_s + deviceArray.join(u',')};
                   });
}

KaResultCode KaContentListing::readSettings(bool notifyUserOfUpdate, QStringList &devices) {
  const ServerAnswer answer =
      request.getAwsS3KeyList(session.contentURL(u"conf/settings.json"_s), session.access().credential);
  if (answer.result != KaResultCode::Success) {
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetExcludeDeviceList, false, {httpLine(answer.statusCode)});
    return answer.result;
  }
  const QJsonObject settings = parseJsonObject(answer.data).value_or(QJsonObject());

  const auto latest = jsonString(settings, "kaLatestVersion"_L1);
  if (notifyUserOfUpdate && latest && isLaterVersion(*latest, platform::appInfo().shortVersion))
    delegate.setProcessingResult(KaResultCode::NewVersionReleased, /*userTrigger=*/false);

  if (!settings.contains("isEnableDownload10GStorage"_L1)) {
    KaDownloadOption option = delegate.downloadOption();
    option.checkBox10GDownload = u"false"_s;
    delegate.setDownloadOption(option);
  }

  const QStringList aliases = strings(settings.value("applicationAliasIds"_L1).toArray());
  devices.removeIf([&](const QString &device) { return aliases.contains(device); });
  KaLogUtility::writeConnectionResultLog(KaLogStep::GetExcludeDeviceList, true,
                                         {u"ExcludeDeviceList="_s + aliases.join(u',')});
  return KaResultCode::Success;
}

KaResultCode KaContentListing::listItems(const QStringList &devices, KaTargetStorage targetStorage) {
  // The bookkeeping of the 10G storage knows no date: only the ids tell what was taken.
  const QString lastDateTime = targetStorage == KaTargetStorage::LongTerm10G
                                   ? KaDownloadData::defaultLastDateTime()
                                   : delegate.downloadDataLastDateTime(recordKey(targetStorage)).value_or(QString());
  for (const QString &device : devices) {
    if (state.endAppFlag) break;
    if (const KaResultCode result = listDevice(device, lastDateTime); result != KaResultCode::Success) return result;
  }
  return KaResultCode::Success;
}

KaResultCode KaContentListing::listDevice(const QString &device, const QString &lastDateTime) {
  const QString prefix = deviceListPrefix() + device;
  const QString startAfter = prefix + u'/' + lastDateTime;
  return readPages(KaLogStep::GetImageList, {u"DeviceID="_s + device, u"StartAfter="_s + startAfter},
                   {.prefix = prefix, .startAfter = startAfter}, [&](const ListingPage &page) {
                     for (const ListedObject &object : page.contents)
                       if (isImageOf(prefix, object.key)) contents.insert(object.key, object.size);
                     return QStringList();
                   });
}

void KaContentListing::excludeDownloaded(KaTargetStorage targetStorage) {
  const QStringList downloaded = delegate.downloadDataContentIds(recordKey(targetStorage)).value_or(QStringList());
  const QSet<QString> known(downloaded.begin(), downloaded.end());
  qint64 index = 0;
  const bool logs = KaLogUtility::outputLog(); // else a million lines would be made for nobody
  contents.removeIf([&](const KaContentsDictionary::iterator item) {
    const QString contentId = contentIdFromPath(item.key());
    if (logs)
      KaLogUtility::writeInfoLog(u"ContentInfo"_s,
                                 {u"Key:%1, ContentId:%2"_s.arg(QString::number(index++), contentId)});
    if (!known.contains(contentId)) return false;
    KaLogUtility::writeInfoLog(u"Exclude"_s, {u"Message: This Content Is Already Downloaded."_s});
    return true;
  });
}

QString KaContentListing::recordKey(KaTargetStorage targetStorage) const {
  return uuidKey(session.userUUID().value_or(QString()), targetStorage);
}

QString KaContentListing::deviceListPrefix() const {
  return u"images/original/"_s + session.userUUID().value_or(QString()) + u'/';
}

QStringList sortImageList(QStringList keys) {
  // In place: a million keys shall not stand in memory beside a copy that is easier to compare.
  std::sort(keys.begin(), keys.end(), [](const QString &left, const QString &right) {
    const int order = orderOf(left).compare(orderOf(right));
    // Equal names of several devices need an order too: it decides which of the files gets a counter.
    return order != 0 ? order < 0 : left < right;
  });
  return keys;
}
