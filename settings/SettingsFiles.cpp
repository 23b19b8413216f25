#include "settings/SettingsFiles.h"

#include "identity/KaCryptionUtility.h"
#include "log/ExceptionGuard.h"
#include "platform/Folders.h"
#include "platform/JsonValue.h"
#include "platform/PrivateFile.h"
#include "platform/UserDefaults.h"
#include "settings/PropertyList.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kParentFolder = "ParentFolder"_L1;
constexpr auto kParent10GFolder = "Parent10GFolder"_L1;
constexpr auto kCheckBox10GDownload = "CheckBox10GDownload"_L1;
constexpr auto kCheckBoxCreateSubfolder = "CheckBoxCreateSubfolder"_L1;
constexpr auto kCheckBoxDownloadMetadata = "CheckBoxDownloadMetadataKey"_L1;
constexpr auto kChildFolder = "ChildFolder"_L1;

constexpr auto kContentIds = "ContentIDs"_L1;
constexpr auto kLastDateTime = "LastDateTime"_L1;

/// Keeps an absurd override within what clocks can count.
constexpr qint64 kLongestWaitSeconds = 100LL * 365 * 24 * 3600;

QString inAppFolder(const QString &fileName) {
  return appFolder() + u'/' + fileName;
}

QString settingsFile() {
  return inAppFolder(u"DownloadSettingData.plist"_s);
}

PropertyList toPropertyList(const KaDownloadOption &option) {
  const std::array<std::pair<QLatin1StringView, QString>, 5> texts = {{
      {kParentFolder, option.parentFolder},
      {kParent10GFolder, option.parent10GFolder},
      {kCheckBox10GDownload, option.checkBox10GDownload},
      {kCheckBoxCreateSubfolder, option.checkBoxCreateSubfolder},
      {kCheckBoxDownloadMetadata, option.checkBoxDownloadMetadata},
  }};
  PropertyList list;
  for (const auto &[key, value] : texts) {
    if (value.isNull()) return list;
    list.set(key, value);
  }
  list.set(kChildFolder, option.childFolder);
  return list;
}

std::optional<KaDownloadOption> fromPropertyList(const PropertyList &list) {
  KaDownloadOption option;
  option.parentFolder = list.text(kParentFolder);
  option.parent10GFolder = list.text(kParent10GFolder);
  option.checkBox10GDownload = list.text(kCheckBox10GDownload);
  option.checkBoxCreateSubfolder = list.text(kCheckBoxCreateSubfolder);
  option.checkBoxDownloadMetadata = list.text(kCheckBoxDownloadMetadata);
  option.childFolder = list.integer(kChildFolder);
  if (option.parentFolder.isNull() || option.parent10GFolder.isNull()) return std::nullopt;
  return option;
}

QByteArray toJson(const QString &uuidKey, const KaDownloadData &data) {
  const QJsonObject record{{kContentIds, QJsonArray::fromStringList(data.ContentIds)},
                           {kLastDateTime, data.LastDateTime}};
  return QJsonDocument(QJsonObject{{uuidKey, record}}).toJson(QJsonDocument::Compact);
}

std::optional<KaDownloadData> recordFromJson(const QJsonValue &value) {
  const QJsonObject record = value.toObject();
  const auto lastDateTime = jsonString(record, kLastDateTime);
  const QJsonValue contentIds = record.value(kContentIds);
  if (!lastDateTime || !contentIds.isArray()) return std::nullopt;

  KaDownloadData data{*lastDateTime, {}};
  const QJsonArray ids = contentIds.toArray();
  data.ContentIds.reserve(ids.size());
  for (const auto &id : ids)
    if (id.isString()) data.ContentIds.append(id.toString());
  return data;
}

std::optional<QHash<QString, KaDownloadData>> fromJson(const QByteArray &json) {
  const auto targets = parseJsonObject(json);
  if (!targets) return std::nullopt;
  QHash<QString, KaDownloadData> records;
  for (auto target = targets->begin(); target != targets->end(); ++target)
    if (const auto data = recordFromJson(target.value())) records.insert(target.key(), *data);
  return records;
}

void overrideWait(std::chrono::milliseconds &wait, const QString &key) {
  const qint64 seconds = platform::standardUserDefaults().integerValue(key);
  if (seconds > 0) wait = std::chrono::seconds(std::min(seconds, kLongestWaitSeconds));
}

/// The user's pictures folder by its real name, so that a link that moves later does not split the downloads.
QString realPicturesFolder() {
  const QString folder = platform::picturesFolder();
  QDir().mkpath(folder);
  const QString resolved = QFileInfo(folder).canonicalFilePath();
  return resolved.isEmpty() ? folder : resolved;
}

} // namespace

QString appFolder() {
  return platform::applicationSupportFolder() + u"/NORVALE INC/Downloaderpictora"_s;
}

bool ensureAppFolder() {
  return platform::makePrivateFolder(appFolder());
}

KaDownloadOption defaultDownloadOption() {
  const QString pictures = realPicturesFolder();
  KaDownloadOption option;
  option.parentFolder = pictures + u"/Transferred"_s;
  option.parent10GFolder = pictures + u"/Transferred(10G)"_s;
  QDir().mkpath(option.parentFolder);
  QDir().mkpath(option.parent10GFolder);
  return option;
}

bool saveDownloadOption(const KaDownloadOption &option) {
  bool saved = false;
  const bool ended = runGuarded([&] {
    const auto xml = toPropertyList(option).toXml();
    saved = xml && writePrivateFile(settingsFile(), *xml);
  });
  return ended && saved;
}

std::optional<KaDownloadOption> loadDownloadOption() {
  std::optional<KaDownloadOption> option;
  const bool ended = runGuarded([&] {
    const auto xml = readPrivateFile(settingsFile());
    const auto list = xml ? PropertyList::fromXml(*xml) : std::nullopt;
    if (list) option = fromPropertyList(*list);
  });
  return ended ? option : std::nullopt;
}

bool saveBookkeeping(const QString &fileName, const QString &uuidKey, const KaDownloadData &data) {
  bool saved = false;
  const bool ended = runGuarded([&] {
    if (!ensureAppFolder()) return;
    const auto enciphered = KaCryptionUtility::encrypt(QString::fromUtf8(toJson(uuidKey, data)));
    saved = enciphered && writePrivateFile(inAppFolder(fileName), enciphered->toUtf8());
  });
  return ended && saved;
}

std::optional<QHash<QString, KaDownloadData>> loadBookkeeping(const QString &fileName) {
  std::optional<QHash<QString, KaDownloadData>> records;
  const bool ended = runGuarded([&] {
    const auto content = readPrivateFile(inAppFolder(fileName));
    const auto json = content ? KaCryptionUtility::decrypt(QString::fromUtf8(*content)) : std::nullopt;
    if (json) records = fromJson(json->toUtf8());
  });
  return ended ? records : std::nullopt;
}

void loadWaitTimeOverrides(KaWaitTimes &waitTimes) {
  overrideWait(waitTimes.pollingNormal, u"PollingNormalWaitTime"_s);
  overrideWait(waitTimes.pollingError, u"PollingErrorWaitTime"_s);
  overrideWait(waitTimes.reCheck, u"ImageRetryWaitTime"_s);
  overrideWait(waitTimes.exifRetry, u"ExifRetryWaitTime"_s);
}
