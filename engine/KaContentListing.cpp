#include "engine/KaContentListing.h"

#include "engine/KaBookkeeping.h"
#include "engine/KaDownloadSession.h"
#include "platform/JsonValue.h"
#include "service/KaStorage.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const auto kSettingsKey = "conf/settings.json"_L1;

QStringList strings(const QJsonArray &array) {
  QStringList texts;
  for (const QJsonValue &value : array)
    if (value.isString()) texts << value.toString();
  return texts;
}

KaServiceSettings settingsIn(const QJsonObject &settings) {
  return {.latestVersion = platform::jsonString(settings, "kaLatestVersion"_L1),
          // Its value says nothing: a service without that storage leaves the member out.
          .offers10GStorage = settings.contains("isEnableDownload10GStorage"_L1),
          .applicationAliasIds = strings(settings.value("applicationAliasIds"_L1).toArray())};
}

/// Without a second copy of what may be a million keys.
void append(KaListedImages &images, KaListedImages more) {
  if (images.empty()) return images.swap(more);
  images.insert(images.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

bool comesBefore(const KaListedImage &left, const KaListedImage &right) {
  const int order = left.key.order().compare(right.key.order());
  // Equal names of several devices need an order too: it decides which of the files gets a counter.
  return order != 0 ? order < 0 : left.key.path() < right.key.path();
}

} // namespace

KaListing KaContentListing::getContentsList(KaTargetStorage targetStorage, const QString &lastDateTime) {
  thread.check();
  Devices devices = listDevices();
  if (devices.result != KaResultCode::Success || with.session.isOver()) return {.result = devices.result};

  KaListing listing;
  if (targetStorage != KaTargetStorage::LongTerm10G) {
    SettingsRead read = readSettings();
    if (read.result != KaResultCode::Success) return {.result = read.result};
    listing.settings = std::move(read.settings);
    devices.ids.removeIf([&](const QString &id) { return listing.settings->applicationAliasIds.contains(id); });
  }

  Items items = listItems(devices.ids, lastDateTime);
  KaLogUtility::writeInfoLog(u"GetContentsList"_s, {u"TargetImageNumBeforeExclude=%1"_s.arg(items.images.size())});
  listing.result = items.result;
  listing.isWhole = devices.isWhole && items.isWhole;
  if (with.session.isOver() || items.result != KaResultCode::Success) return listing;
  listing.images = sortImageList(excludeDownloaded(std::move(items.images), targetStorage));
  KaLogUtility::writeInfoLog(u"GetContentsList"_s, {u"TargetImageNumAfterExclude=%1"_s.arg(listing.images.size())});
  return listing;
}

KaContentListing::Devices KaContentListing::listDevices() {
  Devices devices;
  const QString prefix = u"images/original/"_s + with.bookkeeping.account() + u'/';
  const ListingOutcome outcome = with.storage.listDevices(prefix, [&devices](const ListingPage &page) {
    devices.ids << page.devices;
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetDeviceList, true, {u"DeviceList="_s + devices.ids.join(u',')});
  });
  devices.result = outcome.result;
  devices.isWhole = !outcome.isNotFound;
  if (outcome.result != KaResultCode::Success)
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetDeviceList, false, {httpLine(outcome.statusCode)});
  return devices;
}

KaContentListing::SettingsRead KaContentListing::readSettings() {
  const StoredDocument document = with.storage.document(kSettingsKey);
  const bool isMissing = document.state == StoredDocument::State::Missing;
  const auto object = isMissing ? QJsonObject() : platform::parseJsonObject(document.content);
  if (!object) {
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetExcludeDeviceList, false, {httpLine(document.statusCode)});
    // What is there but no object has been cut short or spoilt: it decides nothing.
    const bool isThere = document.state == StoredDocument::State::There;
    return {.result = isThere ? KaResultCode::NoBody : document.result};
  }
  KaServiceSettings settings = settingsIn(*object);
  settings.areThere = !isMissing;
  KaLogUtility::writeConnectionResultLog(KaLogStep::GetExcludeDeviceList, true,
                                         {u"ExcludeDeviceList="_s + settings.applicationAliasIds.join(u',')});
  return {.settings = std::move(settings)};
}

KaContentListing::Items KaContentListing::listItems(const QStringList &devices, const QString &lastDateTime) {
  std::vector<KaStorage::ObjectListing> listings;
  for (const QString &device : devices)
    listings.push_back({devicePrefix(device), devicePrefix(device) + u'/' + lastDateTime});
  with.storage.beginListings(listings, [this] { return with.session.isOver(); });
  Items items;
  for (const QString &device : devices) {
    if (with.session.isOver() || items.result != KaResultCode::Success) break;
    Items found = listDevice(device, lastDateTime);
    items.result = found.result;
    items.isWhole = items.isWhole && found.isWhole;
    append(items.images, std::move(found.images));
  }
  with.storage.endListings();
  return items;
}

QString KaContentListing::devicePrefix(const QString &device) const {
  return u"images/original/"_s + with.bookkeeping.account() + u'/' + device;
}

KaContentListing::Items KaContentListing::listDevice(const QString &device, const QString &lastDateTime) {
  const QString prefix = devicePrefix(device);
  const QString startAfter = prefix + u'/' + lastDateTime;
  const QString folder = prefix + u'/';
  const QStringList subject{u"DeviceID="_s + device, u"StartAfter="_s + startAfter};
  Items items;
  const ListingOutcome outcome = with.storage.listObjects(prefix, startAfter, [&](const ListingPage &page) {
    for (const ListedObject &object : page.contents) {
      KaImageKey key(object.key);
      // A listing by prefix also brings the devices whose id merely begins alike.
      if (object.key.startsWith(folder) && key.hasUploadHour()) items.images.push_back({std::move(key), object.size});
    }
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetImageList, true, subject);
  });
  items.result = outcome.result;
  items.isWhole = !outcome.isNotFound;
  if (outcome.result != KaResultCode::Success)
    KaLogUtility::writeConnectionResultLog(KaLogStep::GetImageList, false,
                                           subject + QStringList{httpLine(outcome.statusCode)});
  return items;
}

KaListedImages KaContentListing::excludeDownloaded(KaListedImages images, KaTargetStorage targetStorage) const {
  const bool logs = KaLogUtility::outputLog(); // else a million lines would be made for nobody
  qint64 index = 0;
  std::erase_if(images, [&](const KaListedImage &image) {
    if (logs)
      KaLogUtility::writeInfoLog(u"ContentInfo"_s,
                                 {u"Key:%1, ContentId:%2"_s.arg(QString::number(index++), image.key.contentId())});
    if (!with.bookkeeping.isTaken(image.key, targetStorage)) return false;
    KaLogUtility::writeInfoLog(u"Exclude"_s, {u"Message: This Content Is Already Downloaded."_s});
    return true;
  });
  return images;
}

KaListedImages sortImageList(KaListedImages images) {
  // One device's come in this order already.
  if (!std::is_sorted(images.begin(), images.end(), comesBefore)) std::sort(images.begin(), images.end(), comesBefore);
  const auto repeated =
      std::unique(images.begin(), images.end(),
                  [](const KaListedImage &left, const KaListedImage &right) { return left.key == right.key; });
  images.erase(repeated, images.end());
  return images;
}
