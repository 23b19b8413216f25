#pragma once

#include <QString>

namespace platform {

/// One argument of an Exec line: quoted, with what a desktop entry's own syntax would read escaped.
[[nodiscard]] QString execArgument(const QString &argument);

} // namespace platform
