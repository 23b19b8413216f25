#pragma once

#include "sandbox/Service.h"

#include <QHash>
#include <QString>

/// Points this process and its children at a home below @p folder, whose agent is linked to @p service and fetches
/// each original with its metadata document and nothing else. Throws std::runtime_error.
void makeLinkedHome(const QString &folder, sandbox::Service &service);

/// Replaces the user defaults of that home.
void useDefaults(QHash<QString, QString> defaults);
