#pragma once

#include <QString>
#include <QStringList>

/// What was already taken of one storage kind of one user.
struct KaDownloadData {
  [[nodiscard]] static QString defaultLastDateTime() { return QStringLiteral("19700101/00"); }

  QString LastDateTime = defaultLastDateTime(); ///< newest "yyyyMMdd/HH" already taken
  QStringList ContentIds;                       ///< taken within it, oldest first, duplicates kept

  friend bool operator==(const KaDownloadData &, const KaDownloadData &) = default;
};
