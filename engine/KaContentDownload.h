#pragma once

#include "engine/FilledFolders.h"
#include "engine/KaContentListing.h"
#include "engine/KaTargetStorage.h"
#include "engine/KeptCopies.h"
#include "service/KaResultCode.h"

#include <QDateTime>
#include <QString>

#include <optional>

class KaDownloadProcessorDelegate;
class KaDownloadSession;
class KaImageMetadata;
class KaServerRequest;
struct FileOrder;
struct KaDownloadState;
struct SavedObject;

/// Where and how a pass saves.
struct KaContentTarget {
  QString parentFolder{};
  qint64 childFolder = 0; ///< the date folder scheme
  KaTargetStorage targetStorage = KaTargetStorage::Days30;
  bool bExpandContent = false; ///< take the "expand" variant of an image where there is one
  bool bExpandExif = false;    ///< read the expand metadata and sort into rule folders
};

/// One file to fetch.
struct KaContentOrder {
  QString objectKey{};
  QString listedKey{}; ///< the key that the listing knows the image by
  qint64 refFileSize = 0;
  QDateTime utcCaptureTime{};
  QString outputFilePath{}; ///< the destination folder
  KaTargetStorage targetSotrage = KaTargetStorage::Days30;
};

/// Fetches what a listing found, image by image. Download thread.
class KaContentDownload {
public:
  KaContentDownload(KaDownloadProcessorDelegate &toAsk, KaServerRequest &toSend, KaDownloadSession &current,
                    KaContentListing &bookkeeping, KaImageMetadata &metadataReader, const KaDownloadState &shared)
      : delegate(toAsk), request(toSend), session(current), listing(bookkeeping), metadata(metadataReader),
        state(shared) {}
  KaContentDownload(const KaContentDownload &) = delete;
  KaContentDownload &operator=(const KaContentDownload &) = delete;

  /// One pass. A failure is carried over: the images after it are passed over unless a later tag or variant check
  /// succeeds. @return the code that the last image left; DiskFull and FileNotSaved (folder not usable), too.
  [[nodiscard]] KaResultCode getContentsProcess(const KaContentsDictionary &contents, const KaContentTarget &target);
  /// Files that the last pass saved and confirmed.
  [[nodiscard]] quint64 downloadSuccessCount() const { return successCount; }

  /// Fetches one file, up to four times until its size is right. The fourth copy stays, unrecorded and uncounted.
  /// @return ObjectMissing when there is no such object, else the request's code.
  [[nodiscard]] KaResultCode getContent(const KaContentOrder &order);

  /// A new run begins: copies that stay unrecorded from now on are in keptInThisRun(), those of the ordinary storage by
  /// their listed key.
  void beginRun() { keptCopies.beginRun(); }
  [[nodiscard]] const QSet<QString> &keptInThisRun() const { return keptCopies.keysOfThisRun(); }
  /// Due before the bookkeeping is saved, lest a power cut leaves it with pictures that have no name.
  void syncFolders() { filledFolders.sync(); }

private:
  enum class Loop { GoOn, Stop };
  /// What one image hands on to the next.
  struct Carried {
    KaResultCode rc = KaResultCode::Success;
    std::optional<QString> linkage;
  };
  struct Variant {
    QString key;
    qint64 size = 0;
  };

  [[nodiscard]] Loop getOne(const Variant &listed, const KaContentTarget &target, Carried &carried);
  [[nodiscard]] bool belongsToStorage(const QString &key, const KaContentTarget &target, KaResultCode &rc);
  [[nodiscard]] Variant expandVariant(const Variant &listed, KaResultCode &rc);
  [[nodiscard]] Loop saveVariant(const Variant &variant, const QString &listedKey, const KaContentTarget &target,
                                 KaResultCode &rc);
  void saveIntoFolders(const QStringList &folders, KaContentOrder order, const KaContentTarget &target,
                       KaResultCode &rc);
  QString settle(const KaContentOrder &order, const FileOrder &file, const SavedObject &saved);

  KaDownloadProcessorDelegate &delegate;
  KaServerRequest &request;
  KaDownloadSession &session;
  KaContentListing &listing;
  KaImageMetadata &metadata;
  const KaDownloadState &state;
  FilledFolders filledFolders;
  KeptCopies keptCopies;
  quint64 successCount = 0;
};
