#pragma once

#include "platform/UnpublishedFile.h"
#include "service/KaResultCode.h"

#include <QDateTime>
#include <QString>

#include <cstddef>
#include <functional>
#include <optional>

/// An object on its way to disk. Its file is made at the first byte, so that an answer without one leaves nothing, and
/// has no name until publish. In order: take, finish, publish. One thread.
class ArrivingObject {
public:
  /// @param defaultFilePath  in the folder that it is to land in.
  explicit ArrivingObject(const QString &defaultFilePath);

  [[nodiscard]] bool take(const char *bytes, std::size_t count);
  /// It is whole: puts it on disk, with its date.
  [[nodiscard]] bool finish(const QDateTime &modified);

  struct Placing {
    enum class Outcome {
      Saved,
      WasThere, ///< a file of the same bytes has one of its names: nothing is made, and that file is left as it is
      Failed,
      Ended, ///< shallEnd says yes
    };
    Outcome outcome = Outcome::Failed;
    QString path{}; ///< where it is now, or what was tried last
  };
  /// Gives the file @p name, or the default name for an empty one, as the file system takes it; else the next one with
  /// a counter that is free.
  [[nodiscard]] Placing publish(const QString &name, const std::function<bool()> &shallEnd);

  /// What a failure means, with its log entry.
  [[nodiscard]] KaResultCode failure(const QString &path) const;

private:
  const QString defaultFilePath;
  const QString folder;
  std::optional<platform::UnpublishedFile> file;
};
