#pragma once

#include "engine/KaTargetStorage.h"
#include "platform/ThreadBound.h"

#include <QString>
#include <QStringList>

class KaDownloadProcessorDelegate;
class KaDownloadSession;
class KaFilledFolders;
class KaImageKey;

/// What was taken of each storage of the session's user, so that nothing is fetched twice. Download thread.
class KaBookkeeping {
public:
  /// All of it outlives this object.
  struct Parts {
    KaDownloadProcessorDelegate &delegate;
    const KaDownloadSession &session;
    KaFilledFolders &filledFolders;
  };
  explicit KaBookkeeping(const Parts &parts) : with(parts) {}
  KaBookkeeping(const KaBookkeeping &) = delete;
  KaBookkeeping &operator=(const KaBookkeeping &) = delete;

  /// Reads the record of every storage. @return whether each could be read.
  bool load();
  /// Saves one record; the names of the files that it counts on reach the disk first. Needs hasUser().
  [[nodiscard]] bool save(KaTargetStorage targetStorage);
  /// Whether it is known whose records these are. Without a user there is nothing new to keep, and an empty record
  /// would replace what an earlier process kept.
  [[nodiscard]] bool hasUser() const;
  /// The user's id; empty while it is not known.
  [[nodiscard]] QString account() const;

  /// "yyyyMMdd/HH" of the newest hour taken; empty when nothing is known.
  [[nodiscard]] QString lastDateTime(KaTargetStorage targetStorage) const;
  [[nodiscard]] QStringList contentIds(KaTargetStorage targetStorage) const;
  /// The index of the last preview taken; 0 before the first.
  [[nodiscard]] qint64 lastPreview() const;

  /// Records an image that was saved. One of an older hour than the ordinary storage's record changes nothing.
  void saveImageInfo(const KaImageKey &image, KaTargetStorage targetStorage);
  /// Records a preview that was saved.
  void savePreviewInfo(qint64 index);

private:
  [[nodiscard]] QString recordKey(KaTargetStorage targetStorage) const;

  const Parts with;
  const platform::ThreadBound thread;
};
