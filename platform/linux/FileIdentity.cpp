#include "platform/FileIdentity.h"

#include <QFile>

#include <sys/stat.h>

namespace platform {

std::optional<FileIdentity> fileIdentity(const QString &path) {
  struct stat facts = {};
  if (::lstat(QFile::encodeName(path).constData(), &facts) != 0) return std::nullopt;
  return FileIdentity{.device = facts.st_dev,
                      .inode = facts.st_ino,
                      .size = facts.st_size,
                      .modified = facts.st_mtim.tv_sec,
                      .modifiedNanoseconds = facts.st_mtim.tv_nsec};
}

} // namespace platform
