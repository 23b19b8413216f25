#pragma once

#include <QByteArray>
#include <QString>

#include <map>
#include <optional>

#include <sys/types.h>

/// What the disk has been told to keep. A power cut leaves of a file what was flushed of it, and of a name what was
/// flushed with its folder, or the name that it bears at that instant: whichever is worse. One thread at a time.
class FlushedDisk {
public:
  /// @p folder, with all below it, is on disk as it is now.
  void keep(const QString &folder);
  /// A file or a folder has been flushed.
  void flush(int descriptor);
  /// The file of that number is new, or gone: numbers come again.
  void forget(ino_t number);
  /// @return 0 where there is no file at @p path.
  [[nodiscard]] static ino_t numberOf(const QString &path);

  /// Makes of @p copy what is found of @p folder after a cut now.
  /// @param isFlushedAlone  of the names, too.
  void restore(const QString &folder, const QString &copy, bool isFlushedAlone) const;

private:
  /// The names of a folder with the contents; absent for folders.
  using Names = std::map<QString, std::optional<QByteArray>>;

  [[nodiscard]] Names namesIn(const QString &folder) const;

  std::map<ino_t, QByteArray> contents;
  std::map<QString, Names> folders;
};
