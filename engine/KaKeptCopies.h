#pragma once

#include "platform/FileIdentity.h"
#include "platform/ThreadBound.h"

#include <QHash>
#include <QString>

/// The copies that stayed on disk although they could not be confirmed. Their objects come again with a later run, and
/// the new copy takes the old one's place, so that copies do not pile up. Lives as long as the process. Download
/// thread.
class KaKeptCopies {
public:
  /// Remembers that the file at @p path, in its final state, is the copy of the object @p key.
  void keep(const QString &key, const QString &path);

  /// Lets the new file at @p path take the place of the copy kept for @p key, if there is one and it is still exactly
  /// as it was left; else both stay. The copy counts as kept no longer.
  /// @return where the new file is now.
  [[nodiscard]] QString replaceKept(const QString &key, const QString &path);

private:
  struct Copy {
    QString path;
    platform::FileIdentity identity;
  };

  const platform::ThreadBound thread;
  QHash<QString, Copy> copies;
};
