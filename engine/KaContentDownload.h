#pragma once

#include "engine/KaContentListing.h"
#include "engine/KaKeptCopies.h"
#include "engine/KaLookBack.h"
#include "engine/KaPass.h"
#include "engine/KaTargetStorage.h"
#include "platform/ThreadBound.h"
#include "service/KaResultCode.h"

#include <QDateTime>
#include <QString>

#include <utility>

class KaBookkeeping;
class KaImageMetadata;
class KaStorage;
struct FileOrder;
struct KaMetadata;
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
  KaImageKey object{};
  KaImageKey listed{}; ///< the key that the listing knows the image by
  qint64 refFileSize = 0;
  QDateTime utcCaptureTime{};
  QString outputFilePath{}; ///< the destination folder
  KaTargetStorage targetSotrage = KaTargetStorage::Days30;
};

/// Fetches what a listing found, image by image. Download thread.
class KaContentDownload {
public:
  /// All of it outlives this object.
  struct Parts {
    KaPass::Parts pass;
    KaStorage &storage;
    KaImageMetadata &metadata;
    KaBookkeeping &bookkeeping;
  };
  explicit KaContentDownload(const Parts &parts) : with(parts) {}
  KaContentDownload(const KaContentDownload &) = delete;
  KaContentDownload &operator=(const KaContentDownload &) = delete;

  /// One pass over @p images, in their order. A failure is carried over: the images after it are passed over unless a
  /// later tag or variant check succeeds. @return the code that the last image left; DiskFull and FileNotSaved (folder
  /// not usable), too.
  [[nodiscard]] KaPassOutcome getContentsProcess(const KaListedImages &images, const KaContentTarget &target);
  /// The same, but no failure is carried over to the next image: each is tried by itself. Ends early when several in a
  /// row got no answer, the folder cannot be used, or there are no credentials left.
  [[nodiscard]] KaPassOutcome getEachByItself(const KaListedImages &images, const KaContentTarget &target);
  /// What the last of these made of its images. Once.
  [[nodiscard]] KaPassTrace takeTrace() { return std::exchange(traced, {}); }

private:
  struct Variant {
    KaImageKey key;
    qint64 size = 0;
  };

  [[nodiscard]] KaPass::Loop getOne(const KaListedImage &image, const KaContentTarget &target, KaPass &pass);
  [[nodiscard]] KaPass::Loop takeOne(const KaListedImage &image, const KaContentTarget &target, KaPass &pass);
  [[nodiscard]] bool belongsToStorage(const KaImageKey &key, const KaContentTarget &target, KaPass &pass);
  [[nodiscard]] Variant expandVariant(const KaListedImage &image, KaPass &pass);
  void saveVariant(const Variant &variant, const KaImageKey &listed, const KaContentTarget &target, KaPass &pass);
  void saveIntoFolders(const QStringList &folders, KaContentOrder order, const KaContentTarget &target, KaPass &pass);
  /// Fetches one file, up to four times until its size is right. The fourth copy stays, unrecorded and uncounted.
  /// @return ObjectMissing when there is no such object, else the request's code.
  [[nodiscard]] KaResultCode getContent(const KaContentOrder &order, KaPass &pass);
  QString settle(const KaContentOrder &order, const FileOrder &file, const SavedObject &saved);

  const Parts with;
  const platform::ThreadBound thread;
  KaKeptCopies keptCopies;
  KaPassTrace traced;
};
