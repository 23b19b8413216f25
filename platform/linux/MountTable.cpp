#include "platform/linux/MountTable.h"

#include <poll.h>

#include <algorithm>
#include <array>

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
  const QList<QByteArray> fields = line.split(' ');
  const qsizetype separator = fields.indexOf("-", 6);
  if (separator < 0 || fields.size() < separator + 3) return std::nullopt;
  const QList<QByteArray> device = fields[2].split(':');
  if (device.size() != 2) return std::nullopt;
  return Mount{device[0].toUInt(), device[1].toUInt(), unescaped(fields[4]), QString::fromUtf8(fields[separator + 1]),
               QString::fromUtf8(unescaped(fields[separator + 2]))};
}

bool holds(const QByteArray &folder, const QByteArray &path) {
  return folder == "/" || path == folder || path.startsWith(folder + '/');
}

} // namespace

const QList<Mount> &MountTable::mounts() {
  if (hasChanged()) known = file.seek(0) ? parseMountTable(file.readAll()) : QList<Mount>();
  return known;
}

bool MountTable::hasChanged() {
  if (!file.isOpen()) return file.open(QFile::ReadOnly | QFile::Unbuffered);
  pollfd watched = {.fd = file.handle(), .events = POLLPRI, .revents = 0};
  return ::poll(&watched, 1, 0) != 0;
}

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
  constexpr std::array kTypes = {
      "nfs"_L1,         "nfs4"_L1,      "cifs"_L1,           "smb3"_L1,           "smbfs"_L1,          "ncpfs"_L1,
      "afs"_L1,         "coda"_L1,      "ceph"_L1,           "lustre"_L1,         "glusterfs"_L1,      "davfs"_L1,
      "gfs2"_L1,        "ocfs2"_L1,     "fuse.sshfs"_L1,     "fuse.davfs2"_L1,    "fuse.glusterfs"_L1, "fuse.ceph"_L1,
      "fuse.rclone"_L1, "fuse.s3fs"_L1, "fuse.curlftpfs"_L1, "fuse.gvfsd-fuse"_L1};
  return std::find(kTypes.begin(), kTypes.end(), type) != kTypes.end();
}

bool isUnmountablePlace(const QByteArray &mountPoint) {
  if (holds("/media", mountPoint) || holds("/run/media", mountPoint)) return true;
  const QList<QByteArray> names = mountPoint.split('/');
  if (names.contains(".gvfs")) return true;
  return holds("/run/user", mountPoint) && names.value(4) == "gvfs"; // below the number of the user
}

} // namespace platform
