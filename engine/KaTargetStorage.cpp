#include "engine/KaTargetStorage.h"

using namespace Qt::StringLiterals;

namespace {

/// What a storage is called in the places that name it.
struct Names {
  QLatin1StringView keySuffix;
  QLatin1StringView record;
  QLatin1StringView savedLogTitle;
};

/// A further storage: the compiler asks for its names here, and below for its place in the list.
constexpr Names namesOf(KaTargetStorage targetStorage) {
  switch (targetStorage) {
  case KaTargetStorage::Days30:
    return {""_L1, "RecentDownloadData"_L1, "Save GetImageInfo"_L1};
  case KaTargetStorage::LongTerm10G:
    return {"_(10G)"_L1, "Recent10GDownloadData"_L1, "Save 10G GetImageInfo"_L1};
  case KaTargetStorage::Preview2K:
    return {"_(2K)"_L1, "RecentPreviewDownloadData"_L1, "Save 2K GetImageInfo"_L1};
  }
  return {};
}

/// Whether a value is one of the enumeration: only these have names.
constexpr bool isStorage(int value) {
  return !namesOf(static_cast<KaTargetStorage>(value)).record.isEmpty();
}

static_assert(isStorage(kTargetStorages.size() - 1) && !isStorage(kTargetStorages.size()),
              "kTargetStorages must list every storage");

} // namespace

QString uuidKey(const QString &userId, KaTargetStorage targetStorage) {
  return userId + namesOf(targetStorage).keySuffix;
}

QString recordName(KaTargetStorage targetStorage) {
  return namesOf(targetStorage).record;
}

QString savedLogTitle(KaTargetStorage targetStorage) {
  return namesOf(targetStorage).savedLogTitle;
}
