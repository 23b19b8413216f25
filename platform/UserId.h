#pragma once

#include <QString>
#include <QStringList>

namespace platform {

/// What tells this user on this machine from every other for good, 64 hexadecimal digits each: first the id in use,
/// then those that were in use before or would be if this one were not kept, so that what they enciphered stays
/// readable. Empty when none can be made or kept, or when one that is there cannot be read at the moment; then ask
/// again later. Once known, the same for the life of the process. Any thread.
[[nodiscard]] QStringList stableUserIds();

/// The same from @p machineIdFiles (the first that holds an id counts), with @p keptIdFile in their place; read anew.
/// Only where none of the files holds an id one is made and kept. Of two threads that make one, one's is lost.
[[nodiscard]] QStringList stableUserIds(const QStringList &machineIdFiles, const QString &keptIdFile);

} // namespace platform
