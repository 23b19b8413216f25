#pragma once

#include <QString>

namespace platform {

/// Makes @p executable the user's handler of "downloaderpictora:" URLs, unless an installed desktop entry is already.
/// @return whether there is a handler now.
bool registerUrlScheme(const QString &executable);

} // namespace platform
