#include "platform/UnpublishedFile.h"

#include "platform/linux/FileDescriptor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace platform {
namespace {

constexpr char kHiddenPattern[] = ".downloaderpictora-*.part";

/// Another process's sweep may take a new file away before it is locked, hardly more often than once.
constexpr int kHiddenAttempts = 5;

/// What a killed process left: nobody holds its lock any more.
void sweepHiddenFiles(const QString &folder) {
  const QDir directory(folder);
  const auto names = directory.entryList({QString::fromLatin1(kHiddenPattern)}, QDir::Files | QDir::Hidden);
  for (const QString &name : names) {
    const QByteArray path = QFile::encodeName(directory.filePath(name));
    const FileDescriptor file(::open(path.constData(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW));
    if (file && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0) ::unlink(path.constData());
  }
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
    FileDescriptor file(::open(QFile::encodeName(folder).constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666));
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
    const QByteArray path =
        QFile::encodeName(u"%1/.downloaderpictora-%2.part"_s.arg(folder, QUuid::createUuid().toString(QUuid::Id128)));
    FileDescriptor file(::open(path.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666));
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

  /// Gives the content its name, unless something has that name already.
  bool giveName(const QByteArray &path) {
    if (hiddenPath.isEmpty()) {
      const QByteArray source = "/proc/self/fd/" + QByteArray::number(file.get());
      return ::linkat(AT_FDCWD, source.constData(), AT_FDCWD, path.constData(), AT_SYMLINK_FOLLOW) == 0;
    }
    if (::renameat2(AT_FDCWD, hiddenPath.constData(), AT_FDCWD, path.constData(), RENAME_NOREPLACE) == 0) {
      hiddenPath.clear();
      return true;
    }
    if (errno != EINVAL && errno != ENOSYS) return false;
    return ::link(hiddenPath.constData(), path.constData()) == 0; // the hidden name goes with this object
  }

  Publish publish(const QByteArray &path) {
    if (giveName(path)) return Publish::Published;
    if (errno == EEXIST) return Publish::NameTaken;
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

UnpublishedFile::Publish UnpublishedFile::publish(const QString &path) {
  return d->fault ? Publish::Failed : d->publish(QFile::encodeName(QFileInfo(path).absoluteFilePath()));
}

std::optional<FileFault> UnpublishedFile::fault() const {
  return d->fault;
}

} // namespace platform
