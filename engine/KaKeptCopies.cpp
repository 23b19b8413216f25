#include "engine/KaKeptCopies.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>

namespace {

std::filesystem::path filePath(const QString &path) {
  return QFile::encodeName(path).toStdString();
}

/// @p stem without the counter against equal names that may end it.
QString withoutCounter(const QString &stem) {
  const qsizetype digits =
      std::find_if(stem.rbegin(), stem.rend(), [](QChar c) { return c < u'0' || c > u'9'; }) - stem.rbegin();
  const qsizetype mark = stem.size() - digits - 1;
  const bool isCounter = digits > 0 && mark >= 0 && stem[mark] == u'_' && stem[mark + 1] != u'0';
  return isCounter ? stem.left(mark) : stem;
}

/// Whether only the counter against equal names tells the two apart.
bool differByCounter(const QString &first, const QString &second) {
  const QFileInfo one(first);
  const QFileInfo other(second);
  if (one.path() != other.path() || one.suffix() != other.suffix()) return false;
  const QString oneStem = one.completeBaseName();
  const QString otherStem = other.completeBaseName();
  const QString oneBase = withoutCounter(oneStem);
  const QString otherBase = withoutCounter(otherStem);
  return oneStem == otherBase || oneBase == otherStem || oneBase == otherBase;
}

} // namespace

void KaKeptCopies::keep(const QString &key, const QString &path, bool isNew) {
  thread.check();
  if (!isNew) return;
  if (const auto identity = platform::fileIdentity(path)) copies.insert(key, {path, *identity});
}

QString KaKeptCopies::replaceKept(const QString &key, const QString &path, bool isNew) {
  thread.check();
  if (!copies.contains(key)) return path;
  if (!isNew && copies[key].path == path) return path;
  const Copy copy = copies.take(key);

  const auto now = platform::fileIdentity(copy.path);
  if (!now || *now != copy.identity) return path;

  std::error_code error;
  if (!isNew || !differByCounter(copy.path, path)) {
    std::filesystem::remove(filePath(copy.path), error);
    return path;
  }
  // A new file may have got the name and, with a reused inode, the very identity of a copy that is gone: then this
  // renames it to itself.
  std::filesystem::rename(filePath(path), filePath(copy.path), error);
  return error ? path : copy.path;
}
