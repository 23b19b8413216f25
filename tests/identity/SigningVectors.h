#pragma once

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

/// Answers that other implementations gave.
inline QJsonObject signingVectors() {
  QFile file(QStringLiteral(KA_TEST_DATA "/signing.json"));
  if (!file.open(QFile::ReadOnly)) qFatal("the known answers are not there");
  return QJsonDocument::fromJson(file.readAll()).object();
}
