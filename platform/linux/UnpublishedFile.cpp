#include "platform/UnpublishedFile.h"

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/HiddenFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

namespace platform {
namespace {

/// Another process's sweep may take a new file away before it is locked, hardly more often than once.
constexpr int kHiddenAttempts = 5;

/// Bytes that are compared at a time.
constexpr std::size_t kPiece = 256 * 1024;

bool readPiece(int file, char *bytes, std::size_t count, off_t from) {
  while (count > 0) {
    const ssize_t got = ::pread(file, bytes, count, from);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    bytes += got;
    from += got;
    count -= static_cast<std::size_t>(got);
  }
  return true;
}

/// Whether @p path is still the empty file that @p made tells of.
bool isStillEmpty(const QByteArray &path, const struct stat &made) {
  struct stat now = {};
  return ::lstat(path.constData(), &now) == 0 && now.st_dev == made.st_dev && now.st_ino == made.st_ino
         && now.st_size == 0;
}

} // namespace

class UnpublishedFile::Private {
public:
  Private() = default;
  Private(FileDescriptor opened, QByteArray hidden) : file(std::move(opened)), hiddenPath(std::move(hidden)) {}
  ~Private() {
    if (!hiddenPath.isEmpty()) ::unlink(hiddenPath.constData());
  }
  Private(const Private &) = delete;
  Private &operator=(const Private &) = delete;

  static std::unique_ptr<Private> createUnnamed(const QString &folder) {
    FileDescriptor file(::open(QFile::encodeName(folder).constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666));
    return file ? std::make_unique<Private>(std::move(file), QByteArray()) : nullptr;
  }

  static std::unique_ptr<Private> createHidden(const QString &folder) {
    sweepHiddenFiles(folder);
    for (int attempt = 0; attempt < kHiddenAttempts; ++attempt) {
      auto made = openHidden(folder);
      if (!made || ::access(made->hiddenPath.constData(), F_OK) == 0) return made;
    }
    return nullptr;
  }

  static std::unique_ptr<Private> openHidden(const QString &folder) {
    const QByteArray path = platform::hiddenPath(folder);
    FileDescriptor file(::open(path.constData(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666));
    if (!file) return nullptr;
    auto made = std::make_unique<Private>(std::move(file), path);
    // Without locks on this file system the sweep cannot lock either, and then leaves the file alone.
    [[maybe_unused]] const int locked = ::flock(made->file.get(), LOCK_EX);
    return made;
  }

  bool check(bool success) {
    if (!success) fault = errno == ENOSPC || errno == EDQUOT ? FileFault::DiskFull : FileFault::Other;
    return success;
  }

  bool writeAll(const char *bytes, std::size_t count) {
    while (count > 0) {
      const ssize_t written = ::write(file.get(), bytes, count);
      if (written < 0 && errno == EINTR) continue;
      if (!check(written >= 0)) return false;
      bytes += written;
      count -= static_cast<std::size_t>(written);
    }
    return true;
  }

  bool isSameAs(const QByteArray &path, const std::function<bool()> &shallEnd) const {
    // Without a wait for the other end, should it be a pipe.
    const FileDescriptor other(::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat ours = {};
    struct stat theirs = {};
    if (!other || ::fstat(file.get(), &ours) != 0 || ::fstat(other.get(), &theirs) != 0) return false;
    if (!S_ISREG(theirs.st_mode) || theirs.st_size != ours.st_size) return false;

    std::vector<char> mine(kPiece);
    std::vector<char> its(kPiece);
    for (off_t at = 0; at < ours.st_size; at += static_cast<off_t>(kPiece)) {
      const auto count = std::min(kPiece, static_cast<std::size_t>(ours.st_size - at));
      const bool areRead =
          !shallEnd() && readPiece(file.get(), mine.data(), count, at) && readPiece(other.get(), its.data(), count, at);
      if (!areRead || std::memcmp(mine.data(), its.data(), count) != 0) return false;
    }
    return true;
  }

  /// Gives the content its name, unless something has that name already.
  bool giveName(const QByteArray &path) {
    if (hiddenPath.isEmpty()) {
      const QByteArray source = "/proc/self/fd/" + QByteArray::number(file.get());
      if (::linkat(AT_FDCWD, source.constData(), AT_FDCWD, path.constData(), AT_SYMLINK_FOLLOW) == 0) return true;
      // A file system that makes unnamed files may know no links all the same.
      const bool isUnknown = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS;
      if (!isUnknown || !becomeHidden(QFileInfo(QFile::decodeName(path)).path())) return false;
    } else {
      sweepHiddenFiles(QFileInfo(QFile::decodeName(path)).path()); // it may have been made in another folder
    }
    if (::renameat2(AT_FDCWD, hiddenPath.constData(), AT_FDCWD, path.constData(), RENAME_NOREPLACE) == 0) {
      hiddenPath.clear();
      return true;
    }
    if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) return false;
    if (::link(hiddenPath.constData(), path.constData()) == 0) return true; // the hidden name goes with this object
    return errno != EEXIST && takeReservedName(path);
  }

  /// Puts the content, with its dates, into a file that can be renamed.
  bool becomeHidden(const QString &folder) {
    const auto named = createHidden(folder);
    struct stat facts = {};
    if (!named || ::fstat(file.get(), &facts) != 0) return false;
    std::vector<char> piece(kPiece);
    for (off_t at = 0; at < facts.st_size; at += static_cast<off_t>(kPiece)) {
      const auto count = std::min(kPiece, static_cast<std::size_t>(facts.st_size - at));
      if (!readPiece(file.get(), piece.data(), count, at) || !named->writeAll(piece.data(), count)) return false;
    }
    if (::fdatasync(named->file.get()) != 0) return false;
    const timespec dates[] = {facts.st_atim, facts.st_mtim};
    [[maybe_unused]] const int set = ::futimens(named->file.get(), dates);
    std::swap(file, named->file);
    std::swap(hiddenPath, named->hiddenPath);
    return true;
  }

  /// For file systems that can rename over a file alone: over one of our own.
  bool takeReservedName(const QByteArray &path) {
    struct stat made = {};
    if (!tellReservation(path) || !reserve(path, made)) return false;
    const bool isOurs = isStillEmpty(path, made);
    if (isOurs && ::rename(hiddenPath.constData(), path.constData()) == 0) {
      hiddenPath.clear();
      return true;
    }
    // EEXIST would make the name count as taken, and so the next ones, without end.
    const int reason = isOurs && errno != EEXIST ? errno : EBUSY;
    if (isStillEmpty(path, made)) ::unlink(path.constData());
    errno = reason;
    return false;
  }

  /// So that a reservation can be found again should this process be killed.
  bool tellReservation(const QByteArray &path) {
    struct stat taken = {};
    if (::lstat(path.constData(), &taken) == 0) {
      errno = EEXIST;
      return false;
    }
    const QFileInfo target(QFile::decodeName(path));
    const QByteArray telling = platform::hiddenPath(target.path(), QFile::encodeName(target.fileName()));
    if (::rename(hiddenPath.constData(), telling.constData()) != 0) return false;
    hiddenPath = telling;
    return true;
  }

  /// It is not held open: where it is, file systems in user space keep what is renamed over under a name of theirs.
  static bool reserve(const QByteArray &path, struct stat &made) {
    const FileDescriptor reservation(::open(path.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666));
    return reservation && ::fstat(reservation.get(), &made) == 0;
  }

  Publish publish(const QByteArray &path) {
    if (giveName(path)) return Publish::Published;
    if (errno == EEXIST) return Publish::NameTaken;
    if (errno == EXDEV) return Publish::AcrossVolumes;
    // "No such file" where the folder is there: what one file system in user space says of characters.
    const bool isRefused = errno == EINVAL || errno == ENAMETOOLONG || errno == EILSEQ
                           || (errno == ENOENT && QFileInfo(QFile::decodeName(path)).dir().exists());
    if (isRefused) return Publish::NameRefused;
    check(false);
    return Publish::Failed;
  }

  FileDescriptor file;
  QByteArray hiddenPath; ///< empty for a file without a name
  std::optional<FileFault> fault;
};

UnpublishedFile::UnpublishedFile(std::unique_ptr<Private> made) : d(std::move(made)) {
}
UnpublishedFile::UnpublishedFile(UnpublishedFile &&) noexcept = default;
UnpublishedFile &UnpublishedFile::operator=(UnpublishedFile &&) noexcept = default;
UnpublishedFile::~UnpublishedFile() = default;

UnpublishedFile UnpublishedFile::create(const QString &folder, Naming naming) {
  std::unique_ptr<Private> made;
  if (naming == Naming::Unnamed) made = Private::createUnnamed(folder);
  // EISDIR: a kernel or file system that does not know unnamed files takes the folder for the file.
  const bool unsupported = errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL || errno == ENOSYS;
  if (!made && (naming == Naming::Hidden || unsupported)) made = Private::createHidden(folder);
  if (!made) {
    made = std::make_unique<Private>();
    made->check(false);
  }
  return UnpublishedFile(std::move(made));
}

bool UnpublishedFile::write(const char *bytes, std::size_t count) {
  return !d->fault && d->writeAll(bytes, count);
}

bool UnpublishedFile::sync() {
  return !d->fault && d->check(::fdatasync(d->file.get()) == 0);
}

void UnpublishedFile::setDates(const QDateTime &instant) {
  if (!instant.isValid()) return;
  const qint64 milliseconds = instant.toMSecsSinceEpoch();
  const qint64 remainder = ((milliseconds % 1000) + 1000) % 1000;
  const timespec modified{(milliseconds - remainder) / 1000, remainder * 1'000'000};
  // No Linux file system lets a program set the creation date. File systems in user space may drop a modification date
  // that comes without an access date.
  struct stat facts = {};
  if (::fstat(d->file.get(), &facts) != 0) return;
  const timespec dates[] = {facts.st_atim, modified};
  [[maybe_unused]] const int set = ::futimens(d->file.get(), dates);
}

bool UnpublishedFile::isSameAs(const QString &path, const std::function<bool()> &shallEnd) const {
  return !d->fault && d->isSameAs(QFile::encodeName(path), shallEnd);
}

UnpublishedFile::Publish UnpublishedFile::publish(const QString &path) {
  return d->fault ? Publish::Failed : d->publish(QFile::encodeName(QFileInfo(path).absoluteFilePath()));
}

std::optional<FileFault> UnpublishedFile::fault() const {
  return d->fault;
}

} // namespace platform
