#pragma once

#include <QString>
#include <QStringList>

namespace platform {

/// An id of this user on this machine that stays the same for good, 64 hexadecimal digits; empty only when none can be
/// made or kept. Reads files each time. Any thread; where an id has yet to be made, one at a time: of two, one is lost.
[[nodiscard]] QString stableUserId();

/// The same from @p machineIdFiles (the first that holds an id counts), with @p keptIdFile in their place.
[[nodiscard]] QString stableUserId(const QStringList &machineIdFiles, const QString &keptIdFile);

} // namespace platform
