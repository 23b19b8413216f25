#pragma once

#include "service/SaveOrder.h"
#include "service/ServerAnswer.h"

#include <QString>

#include <functional>

class KaPass;

/// One file that a pass fetches, and how its log entries call it.
struct FileOrder {
  QString logLine{};     ///< "ContentId=…" or "Index=…"
  QString missingName{}; ///< what the entry about a missing object names
  SaveOrder save{};      ///< with the size that the service told
  std::function<SavedObject(const SaveOrder &)> request;
};

enum class FileOutcome {
  Confirmed,   ///< on disk, new or from before, under its own name, of the right size
  Unconfirmed, ///< the fourth copy: it stays although its size or name is not the right one
  Missing,     ///< there is no such object (any more)
  Failed,      ///< the request's result tells; nothing is on disk
  Stopped,     ///< the pass must end; nothing is on disk
};

struct FetchedFile {
  FileOutcome outcome = FileOutcome::Failed;
  SavedObject saved{};
};

/// Asks up to four times, without a pause, until the size is right. Download thread.
[[nodiscard]] FetchedFile fetchFile(const FileOrder &order, const KaPass &pass);

/// The log entry of a file that stays, at @p path.
void writeSavedLog(const FileOrder &order, const SavedObject &saved, const QString &path);
