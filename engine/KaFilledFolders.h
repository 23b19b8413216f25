#pragma once

#include "platform/ThreadBound.h"

#include <QSet>
#include <QString>

#include <optional>

/// The folders that files land in. A picture's name need not be on disk before the bookkeeping that counts on it is:
/// so the disk is asked once for all pictures of a pass. Download thread.
class KaFilledFolders {
public:
  /// Makes @p folder with all that lie between; where the file system refuses a name, with one that it takes, the same
  /// each time. @return its path; absent, too, when it would leave @p parentFolder.
  [[nodiscard]] std::optional<QString> make(const QString &folder, const QString &parentFolder);

  /// Returns once the names in the folders that were asked for since the last time are on disk.
  void sync();

private:
  const platform::ThreadBound thread;
  QSet<QString> unsynced;
};
