#pragma once

#include "tests/support/TestProfile.h"

#include <QJsonDocument>
#include <QJsonObject>

/// Answers that other implementations gave.
inline QJsonObject signingVectors() {
  return QJsonDocument::fromJson(contentOf(QStringLiteral(KA_TEST_DATA "/signing.json"))).object();
}
