#pragma once

#include <QString>

/// The text of a localisation key in the user's language. @p key is a literal.
[[nodiscard]] QString localised(QLatin1StringView key);
/// In the form that the language has for so many; the number takes its place in the text.
[[nodiscard]] QString localised(QLatin1StringView key, qsizetype count);

/// Makes the string tables known to the application object: English whole, the user's language over it.
void installTexts();
