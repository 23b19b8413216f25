#pragma once

#include "platform/linux/FileDescriptor.h"

#include <QString>

namespace platform {

/// The right to work on a profile, which one process has until it ends, however it does.
class ProfileLock {
public:
  enum class Outcome {
    Held,
    Taken,     ///< by another process
    Impossible ///< the folder takes no file, or its file system knows no locks
  };

  /// @param path  a file in a folder of the profile; made when it is missing.
  [[nodiscard]] Outcome tryLock(const QString &path);

private:
  FileDescriptor file; ///< holds the lock
};

} // namespace platform
