#include "engine/KaFilledFolders.h"

#include "engine/OutputFolder.h"
#include "platform/FileNames.h"
#include "platform/Folders.h"
#include "platform/VolumeFacts.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace {

/// Makes one folder in @p above, or finds it there. @return its name, or one that the file system takes.
std::optional<QString> makeOne(const QDir &above, const QString &wanted) {
  QString name = QString::fromUtf8(platform::cutAtCodePoint(wanted.toUtf8(), platform::longestName(above.path())));
  for (;;) {
    const QFileInfo place(above.filePath(name));
    if (place.isDir() || above.mkdir(name)) return name;
    const QString plainer = platform::plainerName(name);
    // What is in the way took the name, which so is none that is refused.
    if (place.exists() || place.isSymLink() || plainer == name) return std::nullopt;
    name = plainer;
  }
}

std::optional<QString> makePath(const QString &folder, const QString &parentFolder) {
  if (QDir().mkpath(folder)) return folder;
  QDir made(QDir::cleanPath(parentFolder));
  const QStringList names = made.relativeFilePath(QDir::cleanPath(folder)).split(u'/');
  for (const QString &wanted : names) {
    const auto name = makeOne(made, wanted);
    if (!name) return std::nullopt;
    made.setPath(made.filePath(*name));
  }
  return made.path();
}

} // namespace

std::optional<QString> KaFilledFolders::make(const QString &folder, const QString &parentFolder) {
  thread.check();
  if (!staysInParentFolder(folder, parentFolder)) return std::nullopt;
  const auto made = makePath(folder, parentFolder);
  // A folder that is new has a name, too.
  for (QString filled = QDir::cleanPath(made.value_or(QString()));
       made && staysInParentFolder(filled, parentFolder) && !unsynced.contains(filled);
       filled = QFileInfo(filled).path())
    unsynced.insert(filled);
  return made;
}

void KaFilledFolders::sync() {
  thread.check();
  for (const QString &folder : std::exchange(unsynced, {}))
    platform::syncFolder(folder);
}
