#include "engine/KaFilledFolders.h"

#include "engine/OutputFolder.h"
#include "platform/Folders.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

bool KaFilledFolders::make(const QString &folder, const QString &parentFolder) {
  thread.check();
  if (!staysInParentFolder(folder, parentFolder) || !QDir().mkpath(folder)) return false;
  // A folder that is new has a name, too.
  for (QString filled = QDir::cleanPath(folder);
       staysInParentFolder(filled, parentFolder) && !unsynced.contains(filled); filled = QFileInfo(filled).path())
    unsynced.insert(filled);
  return true;
}

void KaFilledFolders::sync() {
  thread.check();
  for (const QString &folder : std::exchange(unsynced, {}))
    platform::syncFolder(folder);
}
