#include "platform/linux/MountTable.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

/// The kernel writes blanks, tabs, line feeds and backslashes as three octal digits.
QByteArray unescaped(const QByteArray &field) {
  QByteArray text;
  for (qsizetype i = 0; i < field.size(); ++i) {
    bool isOctal = false;
    const int code = field[i] == '\\' ? field.mid(i + 1, 3).toInt(&isOctal, 8) : 0;
    text += isOctal ? static_cast<char>(code) : field[i];
    if (isOctal) i += 3;
  }
  return text;
}

std::optional<Mount> parseLine(const QByteArray &line) {
  const QList<QByteArray> fields = line.simplified().split(' ');
  const qsizetype separator = fields.indexOf("-", 6);
  if (separator < 0 || fields.size() < separator + 3) return std::nullopt;
  const QList<QByteArray> device = fields[2].split(':');
  if (device.size() != 2) return std::nullopt;
  return Mount{device[0].toUInt(),
               device[1].toUInt(),
               unescaped(fields[4]),
               fields[5].split(',').contains("ro"),
               QString::fromUtf8(fields[separator + 1]),
               QString::fromUtf8(unescaped(fields[separator + 2]))};
}

bool holds(const QByteArray &folder, const QByteArray &path) {
  return folder == "/" || path == folder || path.startsWith(folder + '/');
}

} // namespace

QList<Mount> parseMountTable(const QByteArray &text) {
  QList<Mount> mounts;
  for (const QByteArray &line : text.split('\n')) {
    if (auto mount = parseLine(line)) mounts << std::move(*mount);
  }
  return mounts;
}

std::optional<Mount> mountOf(const QList<Mount> &mounts, const QByteArray &path) {
  const Mount *best = nullptr;
  for (const Mount &mount : mounts) {
    // Of two mounts on one point the later covers the earlier.
    if (holds(mount.mountPoint, path) && (!best || mount.mountPoint.size() >= best->mountPoint.size())) best = &mount;
  }
  return best ? std::optional(*best) : std::nullopt;
}

bool isNetworkFileSystem(const QString &type) {
  static const QStringList kTypes = {
      u"nfs"_s,         u"nfs4"_s,      u"cifs"_s,           u"smb3"_s,           u"smbfs"_s,          u"ncpfs"_s,
      u"afs"_s,         u"coda"_s,      u"ceph"_s,           u"lustre"_s,         u"glusterfs"_s,      u"davfs"_s,
      u"gfs2"_s,        u"ocfs2"_s,     u"fuse.sshfs"_s,     u"fuse.davfs2"_s,    u"fuse.glusterfs"_s, u"fuse.ceph"_s,
      u"fuse.rclone"_s, u"fuse.s3fs"_s, u"fuse.curlftpfs"_s, u"fuse.gvfsd-fuse"_s};
  return kTypes.contains(type);
}

bool isUnmountablePlace(const QByteArray &mountPoint) {
  static const QRegularExpression kGvfs(u"^/run/user/[0-9]+/gvfs(/|$)|/\\.gvfs(/|$)"_s);
  return holds("/media", mountPoint) || holds("/run/media", mountPoint)
         || kGvfs.match(QString::fromUtf8(mountPoint)).hasMatch();
}

} // namespace platform
