#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

namespace platform {

/// Tells a file from every other one and from its own earlier and later states. Of a file that is gone it tells
/// nothing: the next one may get the same inode.
struct FileIdentity {
  quint64 device = 0;
  quint64 inode = 0;
  qint64 size = 0;                ///< bytes
  qint64 modified = 0;            ///< whole seconds since 1970
  qint64 modifiedNanoseconds = 0; ///< after that: in one number they would only reach from 1677 to 2262

  friend bool operator==(const FileIdentity &, const FileIdentity &) = default;
};

/// Of what stands at @p path itself: a symbolic link there is not followed. Absent when nothing does, or when the
/// system does not tell. Any thread.
[[nodiscard]] std::optional<FileIdentity> fileIdentity(const QString &path);

} // namespace platform
