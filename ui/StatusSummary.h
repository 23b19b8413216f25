#pragma once

#include "app/KaSnapshot.h"
#include "settings/KaDownloadOption.h"
#include "ui/StatusTables.h"

#include <QHash>
#include <QList>

/// What the one button of the status view does.
enum class StatusRemedy { None, LogIn, ChooseFolder, Choose10GFolder, LookNow, OpenHelp };

/// A text that is still to be put into the user's language.
struct StatusText {
  QLatin1StringView key{};
  std::optional<qsizetype> count{}; ///< of what decides the form of the text
  QStringList arguments{};          ///< what takes the places %1 and %2

  friend bool operator==(const StatusText &, const StatusText &) = default;
};

struct StatusProgress {
  qsizetype done = 0;
  qsizetype all = 0;

  friend bool operator==(const StatusProgress &, const StatusProgress &) = default;
};

/// What the status view says of the agent, as one plain value.
struct StatusSummary {
  StatusFrame frame = StatusFrame::Standby;
  StatusText headline{};
  std::optional<StatusText> explanation{}; ///< what that means, or what to do
  QList<StatusText> facts{};
  std::optional<StatusProgress> progress{};
  StatusRemedy remedy = StatusRemedy::None;
  bool isRemedyEnabled = true;

  friend bool operator==(const StatusSummary &, const StatusSummary &) = default;
};

/// Not logged in comes before what only the user can mend, that before what is being done, that before what passes by
/// itself. "Up to date" is said of an agent that has looked, stands in no fault and has nothing to try again.
/// @param now  local time.
[[nodiscard]] StatusSummary statusSummary(const KaSnapshot &snapshot, const QDateTime &now);

/// Free bytes by folder: nothing for one that is not there, no entry for one that was not asked yet.
using FolderRoom = QHash<QString, std::optional<qint64>>;

struct StatusFolder {
  QString path;
  QString name;      ///< as it is shown
  StatusText room{}; ///< without a key while it is not known

  friend bool operator==(const StatusFolder &, const StatusFolder &) = default;
};

/// The folders that pictures go to, one or two.
[[nodiscard]] QList<StatusFolder> statusFolders(const KaDownloadOption &option, const FolderRoom &room);
