#pragma once

#include "engine/KaPass.h"
#include "engine/PreviewList.h"
#include "platform/ThreadBound.h"
#include "service/KaResultCode.h"

#include <QDateTime>
#include <QString>

class KaBookkeeping;
class KaStorage;

/// Fetches the reduced previews that the service makes of a user's images. Download thread.
class KaPreviewDownload {
public:
  /// All of it outlives this object.
  struct Parts {
    KaPass::Parts pass;
    KaStorage &storage;
    KaBookkeeping &bookkeeping;
  };
  explicit KaPreviewDownload(const Parts &parts) : with(parts) {}
  KaPreviewDownload(const KaPreviewDownload &) = delete;
  KaPreviewDownload &operator=(const KaPreviewDownload &) = delete;

  /// Fetches the list and keeps what comes after the last preview taken. No list, or none that can be read, means no
  /// previews. @return the request's code, or the fault of the list; a failure keeps the list as it was.
  [[nodiscard]] KaResultCode getPreviewList();
  [[nodiscard]] const PreviewList &previewList() const { return previews; }

  /// Fetches what the list holds, which is empty from then on, each into its date folder below @p parentFolder.
  /// DiskFull, FileNotSaved (a folder that cannot be made) and a lost session are carried over: the entries after it
  /// are passed over.
  /// @return the code that the last entry left; FileNotSaved at once when the parent folder is not usable, and the
  /// request's code at once when a download fails.
  [[nodiscard]] KaPassOutcome getPreview(const QString &parentFolder, qint64 childFolder);

private:
  [[nodiscard]] KaPass::Loop getOne(const KaPreview &preview, qint64 childFolder, KaPass &pass);
  [[nodiscard]] KaPass::Loop saveByDate(const KaPreview &preview, qint64 childFolder, KaPass &pass);
  [[nodiscard]] KaPass::Loop save(const KaPreview &preview, const QDateTime &date, const QString &folder, KaPass &pass);

  const Parts with;
  const platform::ThreadBound thread;
  PreviewList previews;
};
