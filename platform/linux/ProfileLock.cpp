#include "platform/linux/ProfileLock.h"

#include <QFile>

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <utility>

namespace platform {

ProfileLock::Outcome ProfileLock::tryLock(const QString &path) {
  FileDescriptor opened(::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!opened) return Outcome::Impossible;
  if (::flock(opened.get(), LOCK_EX | LOCK_NB) != 0) return errno == EWOULDBLOCK ? Outcome::Taken : Outcome::Impossible;
  file = std::move(opened);
  return Outcome::Held;
}

} // namespace platform
