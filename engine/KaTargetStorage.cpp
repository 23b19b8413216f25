#include "engine/KaTargetStorage.h"

using namespace Qt::StringLiterals;

QString uuidKey(const QString &userId, KaTargetStorage targetStorage) {
  switch (targetStorage) {
  case KaTargetStorage::Days30:
    return userId;
  case KaTargetStorage::LongTerm10G:
    return userId + u"_(10G)"_s;
  case KaTargetStorage::Preview2K:
    return userId + u"_(2K)"_s;
  }
  return userId;
}

QString recordName(KaTargetStorage targetStorage) {
  switch (targetStorage) {
  case KaTargetStorage::Days30:
    return u"RecentDownloadData"_s;
  case KaTargetStorage::LongTerm10G:
    return u"Recent10GDownloadData"_s;
  case KaTargetStorage::Preview2K:
    return u"RecentPreviewDownloadData"_s;
  }
  return {};
}
