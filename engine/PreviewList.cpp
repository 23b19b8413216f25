#include "engine/PreviewList.h"

#include "log/KaLogUtility.h"
#include "platform/JsonValue.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// Absent when the member is missing or no whole number.
std::optional<qint64> jsonInteger(const QJsonObject &object, QLatin1StringView name) {
  const QJsonValue value = object.value(name);
  // Only what is no whole number takes both fallbacks.
  if (value.toInteger(0) != value.toInteger(1)) return std::nullopt;
  return value.toInteger();
}

std::optional<KaPreview> previewIn(const QJsonValue &value) {
  const QJsonObject entry = value.toObject();
  const auto index = jsonInteger(entry, "index"_L1);
  const auto size = jsonInteger(entry, "file_size"_L1);
  const auto key = platform::jsonString(entry, "preview_object_key"_L1);
  const auto name = platform::jsonString(entry, "original_file_name"_L1);
  // Nothing known is as good as nothing said.
  const bool unknown = entry.contains("shooting_time"_L1) && entry.value("shooting_time"_L1).isNull();
  const auto shot = unknown ? QString() : platform::jsonString(entry, "shooting_time"_L1);
  const auto uploaded = platform::jsonString(entry, "upload_time"_L1);
  if (!index || !size || !key || !name || !shot || !uploaded) return std::nullopt;
  return KaPreview{*index, *key, *size, *name, *shot, *uploaded};
}

} // namespace

std::vector<KaPreview> previewsIn(const QByteArray &document) {
  const QJsonArray data = platform::parseJsonObject(document).value_or(QJsonObject()).value("data"_L1).toArray();
  std::vector<KaPreview> previews;
  previews.reserve(static_cast<std::size_t>(data.size()));
  for (const QJsonValue &value : data)
    if (auto preview = previewIn(value)) previews.push_back(std::move(*preview));
  if (const qsizetype passedOver = data.size() - qsizetype(previews.size()); passedOver > 0)
    KaLogUtility::writeInfoLog(u"GetPreviewList"_s, {u"Incomplete entries passed over: %1"_s.arg(passedOver)});
  return previews;
}

std::vector<KaPreview> withoutTaken(std::vector<KaPreview> previews, qint64 threshold) {
  const auto firstNew = std::find_if(previews.begin(), previews.end(),
                                     [threshold](const KaPreview &preview) { return preview.index > threshold; });
  previews.erase(previews.begin(), firstNew);
  return previews;
}
