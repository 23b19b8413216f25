#pragma once

#include "engine/KaImageKey.h"
#include "engine/KaTargetStorage.h"
#include "log/KaLogUtility.h"
#include "platform/ThreadBound.h"
#include "service/KaResultCode.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

class KaBookkeeping;
class KaDownloadSession;
class KaStorage;
struct ListingOutcome;

/// One image of a listing, with its size in bytes.
struct KaListedImage {
  KaImageKey key{};
  qint64 size = 0;
};
using KaListedImages = std::vector<KaListedImage>;

/// What the service's settings object tells.
struct KaServiceSettings {
  bool areThere = true;                   ///< false: they were said to be missing, and tell nothing
  std::optional<QString> latestVersion{}; ///< of this program
  bool offers10GStorage = false;
  QStringList applicationAliasIds{}; ///< devices to leave out
};

/// What a listing found, as far as it came.
struct KaListing {
  KaResultCode result = KaResultCode::Success;
  bool isWhole = true;                         ///< false when a device's pages were said to be missing
  KaListedImages images{};                     ///< the new ones, in download order; empty unless it came to its end
  std::optional<KaServiceSettings> settings{}; ///< absent when they were not read
};

/// Finds out which objects of a storage are new. It only looks: telling and recording are others'. Download thread.
class KaContentListing {
public:
  /// All of it outlives this object.
  struct Parts {
    KaStorage &storage;
    const KaDownloadSession &session;
    const KaBookkeeping &bookkeeping;
  };
  explicit KaContentListing(const Parts &parts) : with(parts) {}
  KaContentListing(const KaContentListing &) = delete;
  KaContentListing &operator=(const KaContentListing &) = delete;

  /// What a storage holds and the bookkeeping does not. The settings are read unless the storage is the 10G one. Once
  /// the session is over, Success with nothing. @return NoBody, too, for an answer that cannot be parsed or pages that
  /// go round in circles; settings that are missing say nothing.
  /// @param lastDateTime  the upload hour "yyyyMMdd/HH" behind which it begins.
  [[nodiscard]] KaListing getContentsList(KaTargetStorage targetStorage, const QString &lastDateTime);

private:
  struct Devices {
    KaResultCode result = KaResultCode::Success;
    QStringList ids{};
    bool isWhole = true; ///< not if said to be missing
  };
  struct SettingsRead {
    KaResultCode result = KaResultCode::Success;
    std::optional<KaServiceSettings> settings{};
  };
  struct Items {
    KaResultCode result = KaResultCode::Success;
    bool isWhole = true;
    KaListedImages images{};
  };

  [[nodiscard]] Devices listDevices();
  [[nodiscard]] SettingsRead readSettings();
  [[nodiscard]] Items listItems(const QStringList &devices, const QString &lastDateTime);
  [[nodiscard]] QString devicePrefix(const QString &device) const;
  [[nodiscard]] Items listDevice(const QString &device, const QString &lastDateTime);
  [[nodiscard]] KaListedImages excludeDownloaded(KaListedImages images, KaTargetStorage targetStorage) const;

  const Parts with;
  const platform::ThreadBound thread;
};

/// In download order: by upload date, hour and file name, over all devices; a key that is there twice counts once.
[[nodiscard]] KaListedImages sortImageList(KaListedImages images);
