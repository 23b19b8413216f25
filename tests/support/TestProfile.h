#pragma once

#include <QByteArray>
#include <QHash>
#include <QStringList>
#include <QTemporaryDir>

#include <chrono>
#include <functional>

/// How much longer things may take under a sanitizer.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr int kSlowness = 5;
#else
inline constexpr int kSlowness = 1;
#endif

/// A home of a test's own, gone afterwards: HOME and every XDG folder point below it. Make it before anything reads
/// them.
class TestProfile {
public:
  explicit TestProfile(const QHash<QString, QString> &userDefaults = {});

  [[nodiscard]] QString path(const QString &relative = {}) const;
  [[nodiscard]] QString configFolder() const { return path(QStringLiteral("config")); }
  [[nodiscard]] QString dataFolder() const { return path(QStringLiteral("data")); }
  [[nodiscard]] QString appFolder() const;
  [[nodiscard]] QString picturesFolder() const { return path(QStringLiteral("Pictures")); }

  /// Writes the agent's user defaults file, before the agent's code first reads it.
  void writeUserDefaults(const QHash<QString, QString> &values) const;

private:
  QTemporaryDir home;
};

/// The environment tells of no proxy and no desktop.
void forgetDesktopProxies();

/// Writes a file anew, into a folder that is made when it is missing.
void writeFile(const QString &path, const QByteArray &content);
/// Nothing when the file cannot be read.
[[nodiscard]] QByteArray contentOf(const QString &path);

/// Paths relative to @p folder, of hidden files too, sorted.
[[nodiscard]] QStringList filesBelow(const QString &folder);

/// Waits until @p condition holds, running the event loop of the calling thread when it has one.
/// @return false when @p deadline passed first.
[[nodiscard]] bool waitFor(const std::function<bool()> &condition,
                           std::chrono::milliseconds deadline = std::chrono::seconds(20));
