#pragma once

#include <QHash>
#include <QSet>
#include <QString>

#include <filesystem>
#include <optional>

/// The copies that stayed on disk although they could not be confirmed. Their objects come again with a later run, and
/// the new copy takes the old one's place, so that copies do not pile up. Lives as long as the process.
class KeptCopies {
public:
  /// From here on keysOfThisRun() starts anew.
  void beginRun() { runKeys.clear(); }
  [[nodiscard]] const QSet<QString> &keysOfThisRun() const { return runKeys; }

  /// Remembers that the file at @p path, in its final state, is the copy of the object @p key.
  void keep(const QString &key, const QString &path);

  /// Lets the new file at @p path take the place of the copy kept for @p key, if there is one and it is still exactly
  /// as it was left; else both stay. The copy counts as kept no longer.
  /// @return where the new file is now.
  [[nodiscard]] QString replaceKept(const QString &key, const QString &path);

private:
  struct Identity {
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    std::filesystem::file_time_type modified{};

    friend bool operator==(const Identity &, const Identity &) = default;
  };
  struct Copy {
    QString path;
    Identity identity;
  };

  [[nodiscard]] static std::optional<Identity> identityOf(const QString &path);

  QHash<QString, Copy> copies;
  QSet<QString> runKeys;
};
