#pragma once

#include "tests/support/TestProfile.h"

#include <QByteArray>
#include <QString>

#include <sys/types.h>

#include <optional>

/// Stands first in PATH, as long as it lives, as what opens URLs and notes what it was asked to open.
class FakeBrowser {
public:
  explicit FakeBrowser(const TestProfile &profile);
  ~FakeBrowser();

  /// The URL that it was asked to open since the last call; waits for one.
  [[nodiscard]] std::optional<QString> takeUrl() const;
  /// The leave to come in front that came with the last URL, by its two names.
  [[nodiscard]] QString lastToken() const;
  /// Whether there is one.
  [[nodiscard]] bool hasUrl() const;
  /// From now on it opens nothing and does not end by itself for a while.
  void hang() const;
  /// The process that hangs; the caller ends it.
  [[nodiscard]] pid_t hangingProcess() const;
  /// From now on it says that it could open nothing.
  void fail() const;
  /// From now on there is nothing on this desktop that could open a URL.
  void uninstall() const;

private:
  void install(const QByteArray &afterwards = {}) const;

  const QString folder;
  const QString notePath;
  const QByteArray pathBefore;
};
