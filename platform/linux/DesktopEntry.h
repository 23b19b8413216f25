#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// One argument of an Exec line, with what a desktop entry's own syntax would read escaped; in quotes where it must be.
[[nodiscard]] QString execArgument(const QString &argument);

/// The text of an entry; empty when there is none.
[[nodiscard]] QByteArray writtenEntry(const QString &path);
/// The text of an entry without the line that names the program: what is left is the same for one that was moved.
[[nodiscard]] QByteArray withoutProgram(QByteArray entry);

} // namespace platform
