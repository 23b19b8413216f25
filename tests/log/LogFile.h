#pragma once

#include "tests/support/TestProfile.h"

#include <QDir>
#include <QRegularExpression>

/// What stands in the profile's log, its time stamps replaced by "[TIME]".
inline QStringList loggedLines(const TestProfile &profile) {
  QStringList lines;
  const QDir folder(profile.appFolder() + QStringLiteral("/Log"));
  for (const QFileInfo &log : folder.entryInfoList(QDir::Files, QDir::Name))
    lines << QString::fromUtf8(contentOf(log.filePath())).split(u'\n', Qt::SkipEmptyParts);
  const QRegularExpression stamp(QStringLiteral(R"(^\[\d{4}/\d\d/\d\d \d\d:\d\d:\d\d\])"));
  return lines.replaceInStrings(stamp, QStringLiteral("[TIME]"));
}
