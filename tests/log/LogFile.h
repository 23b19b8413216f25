#pragma once

#include "tests/support/TestProfile.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

/// What stands in the profile's log, its time stamps replaced by "[TIME]".
inline QStringList loggedLines(const TestProfile &profile) {
  static const QRegularExpression stamp(QStringLiteral(R"(^\[\d{4}/\d\d/\d\d \d\d:\d\d:\d\d\])"));
  QStringList lines;
  const QDir folder(profile.appFolder() + QStringLiteral("/Log"));
  for (const QString &name : folder.entryList(QDir::Files, QDir::Name)) {
    QFile file(folder.filePath(name));
    if (!file.open(QFile::ReadOnly)) continue;
    for (QString line : QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts))
      lines << line.replace(stamp, QStringLiteral("[TIME]"));
  }
  return lines;
}
