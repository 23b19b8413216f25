#include "settings/FolderCheck.h"

#include "platform/Folders.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Longer roots leave too little room for the date folders and names below them.
constexpr qsizetype kMaxPathLength = 200;

bool isAtOrBelow(const QString &path, const QString &folder) {
  return path == folder || path.startsWith(folder.endsWith(u'/') ? folder : folder + u'/');
}

/// By the spelling alone: "/Systemx" is refused too.
bool hasReservedPrefix(const QString &path) {
  return path.startsWith("/Network"_L1) || path.startsWith("/System"_L1);
}

bool isReservedPlace(const QString &path, const QStringList &reservedFolders) {
  return hasReservedPrefix(path)
         || std::ranges::any_of(reservedFolders, [&path](const QString &folder) { return isAtOrBelow(path, folder); });
}

FolderFacts factsOf(const QString &path) {
  const QFileInfo info(path);
  FolderFacts facts;
  facts.resolvedPath = info.canonicalFilePath();
  // A path that is not there has no volume, whatever its parent lies on.
  if (!facts.resolvedPath.isEmpty()) facts.volume = platform::fileSystemInfo(facts.resolvedPath);
  facts.directory = info.isDir();
  facts.readable = info.isReadable();
  facts.writable = info.isWritable();
  facts.reservedFolders = platform::systemFolders() + platform::applicationFolders();
  return facts;
}

} // namespace

KaResultCode judgeDownloadFolder(const QString &path, const FolderFacts &facts) {
  if (!facts.volume) return KaResultCode::FolderNotAccessible;
  if (facts.volume->removable || facts.volume->unmountable || facts.volume->network)
    return KaResultCode::FolderNotSupported;
  // The place counts by every name that it has: a link elsewhere is no way round.
  if (isReservedPlace(path, facts.reservedFolders) || isReservedPlace(facts.resolvedPath, facts.reservedFolders))
    return KaResultCode::FolderNotSupported;
  if (!facts.directory || !facts.readable || !facts.writable) return KaResultCode::FolderNotAccessible;
  if (path.size() > kMaxPathLength) return KaResultCode::FolderPathTooLong;
  return KaResultCode::Success;
}

KaResultCode verifyDownloadFolder(const QString &path) {
  return judgeDownloadFolder(path, factsOf(path));
}
