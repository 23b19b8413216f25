#include "platform/PrivateFile.h"

#include "platform/Folders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

/// Whether @p suffix is one that QSaveFile, and QSettings through it, gives a file until it is whole. A copy that
/// somebody has put aside under the likeliest word of that length is left alone.
bool isTemporary(QStringView suffix) {
  const auto isAlphanumeric = [](QChar c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9');
  };
  return suffix.size() == 6 && std::all_of(suffix.begin(), suffix.end(), isAlphanumeric) && suffix != u"backup";
}

} // namespace

bool writePrivateFile(const QString &path, const QByteArray &content) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return false;
  // Before the first byte: the new file starts with the mode of the old one or with what the umask allows.
  if (!file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)) return false;
  if (file.write(content) != content.size()) return false;
  // The content goes to disk by itself before it gets the name; the name does not.
  if (!file.commit()) return false;
  syncFolder(QFileInfo(path).canonicalPath());
  return true;
}

std::optional<QByteArray> readPrivateFile(const QString &path, qint64 limit) {
  const QFileInfo info(path);
  // Opening a pipe that somebody left there would wait for its other end.
  if (!info.isFile() || info.size() > limit) return std::nullopt;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QByteArray content = file.read(info.size() + 1);
  // One that grows meanwhile is not ours: we replace.
  if (file.error() != QFile::NoError || content.size() > info.size()) return std::nullopt;
  return content;
}

void sweepReplacements(const QString &folder, const QStringList &names) {
  const QStringList files = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
  for (const QString &file : files) {
    const qsizetype stop = file.lastIndexOf(u'.');
    if (stop > 0 && names.contains(file.first(stop)) && isTemporary(QStringView(file).sliced(stop + 1)))
      QFile::remove(folder + u'/' + file);
  }
}

} // namespace platform
