#pragma once

#include "platform/UnpublishedFile.h"
#include "service/KaResultCode.h"

#include <QDateTime>
#include <QString>

#include <cstddef>
#include <functional>
#include <optional>

/// An object on its way to disk. Its file is made at the first byte, so that an answer without one leaves nothing, and
/// has no name until publish. In order: take, sync, setDates, publish. One thread at a time.
class ArrivingObject {
public:
  /// @param folder  where its file is made: on the file system that it is to land on.
  explicit ArrivingObject(QString folder);

  [[nodiscard]] bool take(const char *bytes, std::size_t count);
  /// What has been taken, in bytes.
  [[nodiscard]] qint64 size() const { return taken; }
  /// It is whole: puts it on disk, once.
  [[nodiscard]] bool sync();
  void setDates(const QDateTime &modified);

  struct Placing {
    enum class Outcome {
      Saved,
      WasThere,  ///< a file of the same bytes has one of its names: nothing is made, and that file is left as it is
      Elsewhere, ///< the folder lies on another file system
      Failed,
      Ended, ///< shallEnd says yes
    };
    Outcome outcome = Outcome::Failed;
    QString path{}; ///< where it is now, or what was tried last
  };
  /// Gives the file @p name beside @p defaultFilePath, or that path for an empty one, as the file system takes it; else
  /// the next one with a counter that is free.
  [[nodiscard]] Placing publish(const QString &defaultFilePath, const QString &name,
                                const std::function<bool()> &shallEnd);

  /// What a failure means.
  [[nodiscard]] KaResultCode failure() const;

private:
  const QString folder;
  std::optional<platform::UnpublishedFile> file;
  bool isSynced = false;
  qint64 taken = 0;
};
