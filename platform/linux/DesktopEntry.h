#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace platform {

/// One argument of an Exec line, with what a desktop entry's own syntax would read escaped; in quotes where it must be.
[[nodiscard]] QString execArgument(const QString &argument);

/// Writes an entry as a whole, in a folder that is made when it is missing, and removes what a kill has left of that.
[[nodiscard]] bool writeEntry(const QString &path, const QByteArray &text);
/// The text of an entry; empty when there is none.
[[nodiscard]] QByteArray writtenEntry(const QString &path);
/// The text of an entry without the line that names the program: what is left is the same for one that was moved.
[[nodiscard]] QByteArray withoutProgram(QByteArray entry);
/// The same with @p program, an argument for an Exec line, in the place of a program of the same file name; absent when
/// the entry names another program, or arguments.
[[nodiscard]] std::optional<QByteArray> withProgram(QByteArray entry, const QByteArray &program);

} // namespace platform
