#pragma once

#include "sandbox/Service.h"

#include <QHash>
#include <QString>

/// What a home's agent fetches: by default each picture's expand variant and expand metadata where there are any, into
/// folders by rule; plain, each original with its metadata document and nothing else.
enum class HomeSettings { Default, Plain };

/// Points this process and its children at a home below @p folder, whose agent is linked to @p service. Throws
/// std::runtime_error.
/// @param besides  user defaults that it has besides those that lead to the service.
void makeLinkedHome(const QString &folder, sandbox::Service &service, HomeSettings settings = HomeSettings::Default,
                    const QHash<QString, QString> &besides = {});

/// Replaces the user defaults of that home.
void useDefaults(QHash<QString, QString> defaults);
