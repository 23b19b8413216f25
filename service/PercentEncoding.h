#pragma once

#include <QString>

/// Percent-encoding of text for a URL: of what does not stand plain, each byte of its UTF-8 becomes "%XX", upper case.

/// Leaves letters, digits and "-_.~/": how a key, or a part of one, travels and is signed.
[[nodiscard]] QString percentEncodedKey(const QString &key);

/// Leaves letters and digits alone: for a value that is nobody's path.
[[nodiscard]] QString percentEncodedWhole(const QString &text);
