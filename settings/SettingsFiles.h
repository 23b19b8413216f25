#pragma once

#include "settings/KaDownloadData.h"
#include "settings/KaDownloadOption.h"
#include "settings/KaWaitTimes.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

/// The files of the app folder. Each is replaced as a whole and readable by the user alone; a file that cannot be read,
/// deciphered or parsed, or is too large, is absent, and an entry of the error log names it. Any thread: of two that
/// save one file at once, the later one's content stays.

/// The app folder's path, whether it exists or not.
[[nodiscard]] QString appFolder();
[[nodiscard]] bool ensureAppFolder();
/// At start, before anything is saved: makes the app folder and removes what a kill has left of the saving of settings
/// and @p records. @return whether files can be kept in it.
[[nodiscard]] bool openAppFolder(const QStringList &records);

/// The settings of a new user; makes both default folders.
[[nodiscard]] KaDownloadOption defaultDownloadOption();

/// Writes "DownloadSettingData.plist". The first null value ends the list: it and what follows it are not written.
bool saveDownloadOption(const KaDownloadOption &option);
/// Absent also when either parent folder is missing in the file; missing check boxes are null.
[[nodiscard]] std::optional<KaDownloadOption> loadDownloadOption();

/// Writes one target's record, enciphered, as the whole of the file.
[[nodiscard]] bool saveBookkeeping(const QString &fileName, const QString &uuidKey, const KaDownloadData &data);
/// Every target in the file.
[[nodiscard]] std::optional<QHash<QString, KaDownloadData>> loadBookkeeping(const QString &fileName);

/// @p builtIn, but for each wait that the user defaults override with a whole number of seconds above 0.
[[nodiscard]] KaWaitTimes loadWaitTimes(const KaWaitTimes &builtIn);
