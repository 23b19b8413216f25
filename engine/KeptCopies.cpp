#include "engine/KeptCopies.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

std::filesystem::path filePath(const QString &path) {
  return QFile::encodeName(path).toStdString();
}

/// Whether only the counter against equal names tells the two apart.
bool differByCounter(const QString &first, const QString &second) {
  static const QRegularExpression counter(u"_[1-9][0-9]*$"_s);
  const QFileInfo one(first);
  const QFileInfo other(second);
  if (one.path() != other.path() || one.suffix() != other.suffix()) return false;
  const QString oneStem = one.completeBaseName();
  const QString otherStem = other.completeBaseName();
  const QString oneBase = QString(oneStem).remove(counter);
  const QString otherBase = QString(otherStem).remove(counter);
  return oneStem == otherBase || oneBase == otherStem || oneBase == otherBase;
}

} // namespace

void KeptCopies::keep(const QString &key, const QString &path) {
  runKeys.insert(key);
  if (const auto identity = identityOf(path)) copies.insert(key, {path, *identity});
}

QString KeptCopies::replaceKept(const QString &key, const QString &path) {
  if (!copies.contains(key)) return path;
  const Copy copy = copies.take(key);

  const auto now = identityOf(copy.path);
  if (!now || *now != copy.identity) return path;

  std::error_code error;
  if (!differByCounter(copy.path, path)) {
    std::filesystem::remove(filePath(copy.path), error);
    return path;
  }
  // A new file may have got the name and, with a reused inode, the very identity of a copy that is gone: then this
  // renames it to itself.
  std::filesystem::rename(filePath(path), filePath(copy.path), error);
  return error ? path : copy.path;
}

std::optional<KeptCopies::Identity> KeptCopies::identityOf(const QString &path) {
  struct stat facts {};
  if (::lstat(QFile::encodeName(path).constData(), &facts) != 0) return std::nullopt;
  std::error_code error;
  const auto modified = std::filesystem::last_write_time(filePath(path), error);
  if (error) return std::nullopt;
  return Identity{facts.st_dev, facts.st_ino, facts.st_size, modified};
}
