#pragma once

#include <QDateTime>
#include <QString>

/// What an image's object key tells, and the keys made from it. A key is a path: an area, a variant, any number of
/// components, the upload date "yyyyMMdd", the upload hour "HH" (UTC) and the file name.

/// The file name without its extension.
[[nodiscard]] QString contentIdFromPath(const QString &imagePath);
/// Without the dot; empty when there is none.
[[nodiscard]] QString extensionFromPath(const QString &imagePath);
/// Invalid when the date and hour components tell none.
[[nodiscard]] QDateTime uploadHourFromPath(const QString &imagePath);
/// The same of a date "yyyyMMdd" and an hour "HH".
[[nodiscard]] QDateTime uploadHour(const QString &date, const QString &hour);

/// The key of the "expand" variant.
[[nodiscard]] QString expandImagePathFromImagePath(const QString &imagePath);
/// The key of the metadata file. @param expand  that of the expand variant.
[[nodiscard]] QString exifPathFromImagePath(const QString &imagePath, bool expand);
