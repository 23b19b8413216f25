#pragma once

#include <QString>

/// The user's download settings. Check boxes travel as the words "true" and "false"; a null string is a value that the
/// settings file did not hold.
struct KaDownloadOption {
  QString parentFolder;    ///< root for ordinary contents
  QString parent10GFolder; ///< root for the 10G storage and the previews
  QString checkBox10GDownload = QStringLiteral("true");
  QString checkBoxCreateSubfolder = QStringLiteral("true");
  QString checkBoxDownloadMetadata = QStringLiteral("true");
  qint64 childFolder = 0; ///< the date sub-folder scheme, 0 to 4

  friend bool operator==(const KaDownloadOption &, const KaDownloadOption &) = default;
};
