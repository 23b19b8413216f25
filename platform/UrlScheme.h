#pragma once

#include <QString>

namespace platform {

/// Makes @p executable the user's handler of "downloaderpictora:" URLs, unless an installed desktop entry is already.
/// To be called at start, before a login can need it; returns before all of the desktop has taken notice. Main thread.
/// @return whether there is a handler now.
bool registerUrlScheme(const QString &executable);

} // namespace platform
