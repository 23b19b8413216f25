#pragma once

#include <QString>

namespace platform {

/// One argument of an Exec line, with what a desktop entry's own syntax would read escaped; in quotes where it must be.
[[nodiscard]] QString execArgument(const QString &argument);

} // namespace platform
