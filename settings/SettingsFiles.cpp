#include "settings/SettingsFiles.h"

#include "identity/KaCryptionUtility.h"
#include "log/ExceptionGuard.h"
#include "log/UnreadableFile.h"
#include "platform/Folders.h"
#include "platform/JsonValue.h"
#include "platform/PrivateFile.h"
#include "platform/UserDefaults.h"
#include "settings/PropertyList.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kParentFolder = "ParentFolder"_L1;
constexpr auto kParent10GFolder = "Parent10GFolder"_L1;
constexpr auto kCheckBox10GDownload = "CheckBox10GDownload"_L1;
constexpr auto kCheckBoxCreateSubfolder = "CheckBoxCreateSubfolder"_L1;
/// The odd "Key" stays: settings of users are stored under it.
constexpr auto kCheckBoxDownloadMetadata = "CheckBoxDownloadMetadataKey"_L1;
constexpr auto kChildFolder = "ChildFolder"_L1;

constexpr auto kContentIds = "ContentIDs"_L1;
constexpr auto kLastDateTime = "LastDateTime"_L1;

/// Keeps an absurd override within what clocks can count.
constexpr qint64 kLongestWaitSeconds = 100LL * 365 * 24 * 3600;

QString inAppFolder(const QString &fileName) {
  return appFolder() + u'/' + fileName;
}

constexpr auto kSettingsFile = "DownloadSettingData.plist"_L1;

/// Bytes. A million pictures of the 10G storage take less than a tenth of it.
constexpr qint64 kRecordLimit = 256LL << 20;

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
  return platform::toCompactJson({{uuidKey, record}});
}

std::optional<KaDownloadData> recordFromJson(const QJsonValue &value) {
  const QJsonObject record = value.toObject();
  const auto lastDateTime = platform::jsonString(record, kLastDateTime);
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
  const auto targets = platform::parseJsonObject(json);
  if (!targets) return std::nullopt;
  QHash<QString, KaDownloadData> records;
  for (auto target = targets->begin(); target != targets->end(); ++target)
    if (const auto data = recordFromJson(target.value())) records.insert(target.key(), *data);
  return records;
}

std::chrono::milliseconds waitFrom(const QString &key, std::chrono::milliseconds builtIn) {
  const qint64 seconds = platform::standardUserDefaults().integerValue(key);
  return seconds > 0 ? std::chrono::seconds(std::min(seconds, kLongestWaitSeconds)) : builtIn;
}

/// The user's pictures folder by its real name, so that a link that moves later does not split the downloads.
QString realPicturesFolder() {
  const QString folder = platform::picturesFolder();
  QDir().mkpath(folder);
  const QString resolved = QFileInfo(folder).canonicalFilePath();
  return resolved.isEmpty() ? folder : resolved;
}

/// Those of which something is there, be it what a kill has left.
QStringList ledgerFiles() {
  QStringList names = QDir(appFolder()).entryList({u"Ledger_*"_s}, QDir::Files | QDir::Hidden);
  for (QString &name : names)
    name = name.section(u'.', 0, 0);
  return names;
}

} // namespace

QString appFolder() {
  return platform::applicationSupportFolder() + u"/NORVALE INC/Downloaderpictora"_s;
}

bool ensureAppFolder() {
  return platform::makePrivateFolder(appFolder());
}

bool openAppFolder(const QStringList &records) {
  if (!ensureAppFolder()) return false;
  platform::sweepReplacements(appFolder(), records + ledgerFiles() + QStringList{kSettingsFile});
  return QFileInfo(appFolder()).isWritable();
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
  return guardedOr(false, [&] {
    const auto xml = toPropertyList(option).toXml();
    return xml && platform::writePrivateFile(inAppFolder(kSettingsFile), *xml);
  });
}

std::optional<KaDownloadOption> loadDownloadOption() {
  return guardedOr(std::optional<KaDownloadOption>(), [] {
    const QString path = inAppFolder(kSettingsFile);
    const auto xml = platform::readPrivateFile(path);
    const auto list = xml ? PropertyList::fromXml(*xml) : std::nullopt;
    const auto option = list ? fromPropertyList(*list) : std::nullopt;
    if (!option) writeUnreadableFileLog(path);
    return option;
  });
}

bool saveBookkeeping(const QString &fileName, const QString &uuidKey, const KaDownloadData &data) {
  return guardedOr(false, [&] {
    if (!ensureAppFolder()) return false;
    const auto enciphered = KaCryptionUtility::encrypt(QString::fromUtf8(toJson(uuidKey, data)));
    return enciphered && platform::writePrivateFile(inAppFolder(fileName), enciphered->toUtf8());
  });
}

std::optional<QHash<QString, KaDownloadData>> loadBookkeeping(const QString &fileName) {
  return guardedOr(std::optional<QHash<QString, KaDownloadData>>(), [&] {
    const QString path = inAppFolder(fileName);
    const auto content = platform::readPrivateFile(path, kRecordLimit);
    const auto json = content ? KaCryptionUtility::decrypt(QString::fromUtf8(*content)) : std::nullopt;
    const auto records = json ? fromJson(json->toUtf8()) : std::nullopt;
    if (!records) writeUnreadableFileLog(path);
    return records;
  });
}

KaWaitTimes loadWaitTimes(const KaWaitTimes &builtIn) {
  return {.pollingNormal = waitFrom(u"PollingNormalWaitTime"_s, builtIn.pollingNormal),
          .pollingError = waitFrom(u"PollingErrorWaitTime"_s, builtIn.pollingError),
          .reCheck = waitFrom(u"ImageRetryWaitTime"_s, builtIn.reCheck),
          .exifRetry = waitFrom(u"ExifRetryWaitTime"_s, builtIn.exifRetry)};
}
