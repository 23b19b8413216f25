#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

/// Where below the user's folder a file lands. Everything here is text; KaFilledFolders makes the folders.

/// The folder of a capture date, in local time, with a leading "/" and none at its end.
/// @param childFolder  0 day, 1 year and month, 2 year and day, 3 year, month and day; any other: empty.
[[nodiscard]] QString getOutputDateFolderString(const QDateTime &captureDate, qint64 childFolder);

/// A folder per sort rule, each its name, verbatim, behind a "/".
[[nodiscard]] QStringList getOutputRuleFolderArray(const QStringList &ruleNames);

/// Whether @p destination, joined from @p parentFolder and more, still lies in or below it.
[[nodiscard]] bool staysInParentFolder(const QString &destination, const QString &parentFolder);

/// Where a file lands whose object carries no usable name: the date in @p folder, with @p extension unless it is empty.
[[nodiscard]] QString defaultFilePath(const QString &folder, const QDateTime &date, const QString &extension);

/// @name Levels of an object key
/// @{
inline constexpr qint64 kFileNameLevel = 0;
inline constexpr qint64 kHourFolderLevel = 1;
inline constexpr qint64 kDateFolderLevel = 2;
/// @}

/// The last component of @p path once @p level components were taken off its end, as a part of @p path; "/" or the
/// first component when there are not so many.
[[nodiscard]] QStringView getFolderNameFromPath(QStringView path, qint64 level);
