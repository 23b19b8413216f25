#pragma once

#include <QHash>
#include <QString>
#include <QTemporaryDir>

#include <chrono>
#include <functional>

/// A home of a test's own, gone afterwards: HOME and every XDG folder point below it. Make it before anything reads
/// them.
class TestProfile {
public:
  TestProfile();

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

/// Waits until @p condition holds, running the event loop of the calling thread when it has one.
/// @return false when @p deadline passed first.
[[nodiscard]] bool waitFor(const std::function<bool()> &condition,
                           std::chrono::milliseconds deadline = std::chrono::seconds(20));
