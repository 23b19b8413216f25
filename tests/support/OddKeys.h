#pragma once

#include "tests/support/TestProfile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

/// Keys with characters that a URL does not take, and how other implementations encode and sign them. All belong to the
/// account and device of kOddAccount.
inline constexpr char kOddAccount[] = "auth0|5f7c";
[[nodiscard]] inline QJsonObject oddKeys() {
  return QJsonDocument::fromJson(contentOf(QStringLiteral(KA_TEST_DATA "/odd-keys.json"))).object();
}
