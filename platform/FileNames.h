#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// A name that came from outside, one component of a path, becomes one that a file system takes: the same each time.

/// What @p utf8 holds of at most @p size bytes, cut at a whole character.
[[nodiscard]] QByteArray cutAtCodePoint(const QByteArray &utf8, qsizetype size);

/// @p name with less in it that a file system could refuse: without what those of other systems refuse, then in ASCII
/// alone; itself when nothing is left to give up. A plainer one is never empty, "." or "..".
[[nodiscard]] QString plainerName(const QString &name);

} // namespace platform
