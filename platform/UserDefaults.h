#pragma once

#include "platform/Mutex.h"

#include <QHash>
#include <QString>

#include <memory>
#include <optional>

namespace platform {

/// The user's preferences, and below them defaults registered for this run. Any thread.
class UserDefaults {
public:
  /// Sweeps what a kill has left beside the file, so only the one agent of a profile makes one.
  /// @param path  the INI file; made, readable by the user alone, with the first value stored. More than
  /// kSmallFileLimit bytes, or what is no ordinary file, counts as none: the first value stored takes its place.
  explicit UserDefaults(const QString &path);
  ~UserDefaults();
  UserDefaults(const UserDefaults &) = delete;
  UserDefaults &operator=(const UserDefaults &) = delete;

  /// The stored value, else the registered default.
  [[nodiscard]] std::optional<QString> string(const QString &key) const;
  [[nodiscard]] bool boolValue(const QString &key) const;      ///< "YES", "true" or a number but 0; missing is false
  [[nodiscard]] qint64 integerValue(const QString &key) const; ///< the leading whole number, else 0
  [[nodiscard]] std::optional<double> doubleValue(const QString &key) const;

  /// On disk when it returns, name and all, as far as the disk allows: a kill or a power cut must not lose an answer
  /// that the user gave. In memory alone where what is in the file's place can be neither read nor removed.
  void setString(const QString &key, const QString &value);
  void setBool(const QString &key, bool value);
  void registerDefaults(const QHash<QString, QString> &defaults); ///< in memory only

private:
  class Private;
  std::unique_ptr<Private> d;
};

/// The agent's own: `$XDG_CONFIG_HOME/NORVALE INC/Downloaderpictora.conf`, found at the first call.
[[nodiscard]] UserDefaults &standardUserDefaults();

} // namespace platform
