#pragma once

#include <QString>

/// The first page of the help in the user's language, English where there is none; a "file" URL.
[[nodiscard]] QString helpPageUrl();
