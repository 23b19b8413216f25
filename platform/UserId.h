#pragma once

#include <QString>
#include <QStringList>

namespace platform {

/// An id of this user on this machine that stays the same for good; empty only when none can be made or kept.
[[nodiscard]] QString stableUserId();

/// The same from @p machineIdFiles (the first that holds an id counts), with @p keptIdFile in their place.
[[nodiscard]] QString stableUserId(const QStringList &machineIdFiles, const QString &keptIdFile);

} // namespace platform
