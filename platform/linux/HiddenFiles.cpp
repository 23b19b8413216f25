#include "platform/linux/HiddenFiles.h"

#include "platform/Mutex.h"
#include "platform/NoDestructor.h"
#include "platform/linux/FileDescriptor.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QUuid>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

/// Tells a name in few characters: itself it may be too long to stand within another one.
QByteArray markOf(const QByteArray &reservedName) {
  return QCryptographicHash::hash(reservedName, QCryptographicHash::Sha256).toHex().left(32);
}

/// Whether this process has not asked for @p folder before.
bool isFirstLookAt(const QString &folder) {
  struct Seen {
    Mutex lock;
    QSet<QString> folders KA_GUARDED_BY(lock);
  };
  static NoDestructor<Seen> seen;
  const MutexLock scope(seen->lock);
  if (seen->folders.contains(folder)) return false;
  seen->folders.insert(folder);
  return true;
}

void removeReservation(const QDir &folder, const QByteArray &mark) {
  for (const QFileInfo &entry : folder.entryInfoList(QDir::Files | QDir::NoSymLinks | QDir::Hidden)) {
    const bool isReserved = entry.size() == 0 && markOf(QFile::encodeName(entry.fileName())) == mark;
    if (isReserved) ::unlink(QFile::encodeName(entry.filePath()).constData());
  }
}

} // namespace

QByteArray hiddenPath(const QString &folder, const QByteArray &reservedName) {
  const QByteArray id = QUuid::createUuid().toByteArray(QUuid::Id128);
  const QByteArray mark = reservedName.isEmpty() ? QByteArray() : '-' + markOf(reservedName);
  return QFile::encodeName(folder) + "/.downloaderpictora-" + id + mark + ".part";
}

void sweepHiddenFiles(const QString &folder) {
  if (!isFirstLookAt(folder)) return;
  const QDir directory(folder);
  for (const QString &name : directory.entryList({u".downloaderpictora-*.part"_s}, QDir::Files | QDir::Hidden)) {
    const QByteArray path = QFile::encodeName(directory.filePath(name));
    const FileDescriptor file(::open(path.constData(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW));
    if (!file || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0) continue;
    const QByteArray mark = name.section(u'-', 2).section(u'.', 0, 0).toLatin1();
    if (!mark.isEmpty()) removeReservation(directory, mark); // first: without its mark it would stay
    ::unlink(path.constData());
  }
}

} // namespace platform
