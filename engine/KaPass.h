#pragma once

#include "platform/ThreadBound.h"
#include "service/KaResultCode.h"

#include <QString>

#include <optional>

class KaDownloadProcessorDelegate;
class KaDownloadSession;
class KaFilledFolders;
class KaStorage;

/// What a pass came to.
struct KaPassOutcome {
  KaResultCode result = KaResultCode::Success;
  quint64 savedCount = 0; ///< files that it saved and counted
};

/// What a pass over images and one over previews share: one object a pass. It renews the session, heeds its end, checks
/// folder and room, makes the folders, counts, and carries a failure over to the items that follow. Download thread.
class KaPass {
public:
  /// All of it outlives this object.
  struct Parts {
    KaDownloadProcessorDelegate &delegate;
    KaDownloadSession &session;
    KaFilledFolders &filledFolders;
    KaStorage &storage;
  };
  /// Whether the pass goes on behind an item.
  enum class Loop { GoOn, Stop };
  /// What is to be done with an item.
  enum class Verdict { Take, PassOver, Stop };

  /// @param parentFolder  the user's folder, below which all is saved.
  KaPass(const Parts &parts, const QString &parentFolder);
  KaPass(const KaPass &) = delete;
  KaPass &operator=(const KaPass &) = delete;

  /// Begins an item: logs it under @p title, and renews a session that is about to expire unless something has failed.
  /// @return whether there is a session to go on with.
  [[nodiscard]] bool beginItem(const QString &title, const QString &logLine);
  /// Whether the pass must end: the program does, or the link has.
  [[nodiscard]] bool isOver() const;
  /// Whether requests can be made at all; not once a renewal has failed, though the credentials may stand for a while.
  [[nodiscard]] bool hasCredentials() const;

  /// Whether an item of @p size bytes can be saved: PassOver while a failure is carried over, and for lack of room,
  /// which becomes one (DiskFull); Stop when the parent folder cannot be used (FileNotSaved).
  [[nodiscard]] Verdict judgeItem(qint64 size);
  /// Makes a folder below the parent folder. @return where it is; absent, with FileNotSaved, when that cannot be.
  [[nodiscard]] std::optional<QString> makeFolder(const QString &folder);

  /// The code that is carried over.
  [[nodiscard]] KaResultCode carried() const { return outcomeSoFar.result; }
  void carry(KaResultCode result) { outcomeSoFar.result = result; }
  /// @param path  where it lies; empty when it was there before.
  void countSaved(const QString &path);
  /// The item is behind the pass, which is told.
  void endItem();

  [[nodiscard]] const QString &parentFolder() const { return parent; }
  [[nodiscard]] KaPassOutcome outcome() const { return outcomeSoFar; }
  /// GoOn, unless the pass must end.
  [[nodiscard]] Loop next() const { return isOver() ? Loop::Stop : Loop::GoOn; }

private:
  const Parts with;
  const platform::ThreadBound thread;
  const QString parent;
  KaPassOutcome outcomeSoFar;
  QString saved; ///< by this item
  bool hasRenewalFailed = false;
};
