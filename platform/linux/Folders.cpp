#include "platform/Folders.h"

#include "platform/linux/FileDescriptor.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace platform {

void dropRelativeBaseFolders() {
  for (const char *const variable :
       {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
    if (!qgetenv(variable).startsWith('/')) qunsetenv(variable);
}

QString applicationSupportFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

QString picturesFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
}

QString installedDataFolder() {
  return QDir::cleanPath(QCoreApplication::applicationDirPath() + u"/../share/downloaderpictora"_s);
}

QStringList applicationFolders() {
  return {u"/opt"_s,
          u"/snap"_s,
          u"/var/lib/flatpak"_s,
          u"/usr/share/applications"_s,
          applicationSupportFolder() + u"/applications"_s,
          QDir::homePath() + u"/.local/bin"_s};
}

QStringList systemFolders() {
  return {u"/bin"_s,  u"/boot"_s, u"/dev"_s,  u"/efi"_s, u"/etc"_s, u"/lib"_s,     u"/lib32"_s,     u"/lib64"_s,
          u"/proc"_s, u"/run"_s,  u"/sbin"_s, u"/sys"_s, u"/usr"_s, u"/var/lib"_s, u"/lost+found"_s};
}

QStringList externalVolumeRoots() {
  return {u"/media"_s, u"/run/media"_s, u"/mnt"_s};
}

bool makePrivateFolder(const QString &path) {
  const QFileInfo info(path);
  if (info.isDir()) return true;
  const QString parent = info.path();
  if (parent != path && !makePrivateFolder(parent)) return false;
  // Another process may have made it in between, which is as good.
  if (::mkdir(QFile::encodeName(path).constData(), 0700) != 0) return errno == EEXIST && QFileInfo(path).isDir();
  syncFolder(parent);
  return true;
}

void syncFolder(const QString &path) {
  const FileDescriptor folder(::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder) ::fsync(folder.get());
}

} // namespace platform
