#pragma once

#include "engine/FilledFolders.h"
#include "engine/PreviewList.h"
#include "service/KaResultCode.h"

#include <QDateTime>
#include <QString>

#include <optional>
#include <vector>

class KaDownloadProcessorDelegate;
class KaDownloadSession;
class KaServerRequest;
struct FileOrder;
struct KaDownloadState;
struct SavedObject;

/// Fetches the reduced previews that the service makes of a user's images. Download thread.
class KaPreviewDownload {
public:
  KaPreviewDownload(KaDownloadProcessorDelegate &toAsk, KaServerRequest &toSend, KaDownloadSession &current,
                    const KaDownloadState &shared)
      : delegate(toAsk), request(toSend), session(current), state(shared) {}
  KaPreviewDownload(const KaPreviewDownload &) = delete;
  KaPreviewDownload &operator=(const KaPreviewDownload &) = delete;

  /// Fetches the list and keeps what comes after the last preview taken. No list, or none that can be read, means no
  /// previews. @return the request's code; a failed one keeps the list as it was.
  [[nodiscard]] KaResultCode getPreviewList();
  [[nodiscard]] const std::vector<KaPreview> &previewList() const { return previews; }

  /// Fetches what the list holds, each into its date folder below @p parentFolder. DiskFull, FileNotSaved (a folder
  /// that cannot be made) and a lost session are carried over: the entries after it are passed over.
  /// @return the code that the last entry left; FileNotSaved at once when the parent folder is not usable, and the
  /// request's code at once when a download fails.
  [[nodiscard]] KaResultCode getPreview(const QString &parentFolder, qint64 childFolder);
  /// Files that the last getPreview saved.
  [[nodiscard]] quint64 downloadSuccessCount() const { return successCount; }
  /// Due before the bookkeeping is saved, lest a power cut leaves it with previews that have no name.
  void syncFolders() { filledFolders.sync(); }

private:
  enum class Loop { GoOn, Stop };
  struct Target {
    QString parentFolder;
    qint64 childFolder = 0;
  };
  struct Carried {
    KaResultCode rc = KaResultCode::Success;
    std::optional<QString> linkage;
  };

  [[nodiscard]] Loop getOne(const KaPreview &preview, const Target &target, Carried &carried);
  [[nodiscard]] Loop save(const KaPreview &preview, const QDateTime &date, const QString &folder, KaResultCode &rc);
  void settle(const KaPreview &preview, const QDateTime &date, const FileOrder &order, const SavedObject &saved);
  [[nodiscard]] QString recordKey() const;

  KaDownloadProcessorDelegate &delegate;
  KaServerRequest &request;
  KaDownloadSession &session;
  const KaDownloadState &state;
  FilledFolders filledFolders;
  std::vector<KaPreview> previews;
  quint64 successCount = 0;
};
