#include "platform/PrivateFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace platform {

bool writePrivateFile(const QString &path, const QByteArray &content) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return false;
  // Before the first byte: the new file starts with the mode of the old one or with what the umask allows.
  if (!file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)) return false;
  if (file.write(content) != content.size()) return false;
  return file.commit();
}

std::optional<QByteArray> readPrivateFile(const QString &path) {
  // Opening a pipe that somebody left there would wait for its other end.
  if (!QFileInfo(path).isFile()) return std::nullopt;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QByteArray content = file.readAll();
  if (file.error() != QFile::NoError) return std::nullopt;
  return content;
}

} // namespace platform
